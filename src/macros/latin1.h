#pragma once

#include <QString>

#include <algorithm>
#include <string_view>

inline QString fromLatin1(std::string_view text)
{
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

/// Whether QString::toLatin1() loses nothing of \a text.
inline bool isLatin1(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() <= 0xFF; });
}
