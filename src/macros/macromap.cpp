#include "macromap.h"

#include <algorithm>

MacroKey::MacroKey(std::string_view name)
{
    if (name.size() > longestInPlace) {
        key = QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
        return;
    }
    std::transform(name.begin(), name.end(), buffer,
                   [](char c) { return static_cast<char16_t>(static_cast<unsigned char>(c)); });
    key = QString::fromRawData(reinterpret_cast<const QChar *>(buffer),
                               static_cast<qsizetype>(name.size()));
}

const QString *MapLookup::find(const QString &name)
{
    auto found = first.constFind(name);
    if (found != first.cend())
        return &found.value();
    if (!second || (found = second->constFind(name)) == second->cend())
        return nullptr;
    return &found.value();
}

const QString *findMacro(const MacroMap &macros, const char *name)
{
    const MacroKey key(name ? std::string_view(name) : std::string_view());
    const auto found = macros.constFind(key);
    return found == macros.cend() ? nullptr : &found.value();
}
