#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <cstdint>
#include <string_view>

/// Macro values by name, ordered by the UTF-16 code units of the names. Names are
/// case-sensitive and any text can be one, the empty text included; a name with an empty value
/// is defined.
using MacroMap = QMap<QString, QString>;

/// Thrown where a value that is asked for in Latin-1 has a character above 0xFF.
struct NotLatin1 {
};

/// Where an expansion looks names up. A value that is found is valid until the next call.
class MacroLookup
{
public:
    virtual ~MacroLookup() = default;

    /// Whether there is a macro of that Latin-1 name. *value receives its value: a view of nothing
    /// at all for a null text. Throws NotLatin1.
    virtual bool findLatin1(std::string_view name, std::string_view *value) = 0;

    /// The value of any macro, null when there is none. Unless this is overridden, Latin-1 can
    /// spell all names and values.
    virtual const QString *find(const QString &name);

    /// What expansions with this lookup have cost so far, in steps of about a nanosecond.
    std::uint64_t work = 0;

protected:
    QString wideValue;  ///< room for what find() returns
};

/// Looks names up in a map and then, if there is one, in a second.
class MapLookup : public MacroLookup
{
public:
    explicit MapLookup(const MacroMap *firstMap, const MacroMap *secondMap = nullptr)
        : first(*firstMap),
          second(secondMap)
    {
    }

    bool findLatin1(std::string_view name, std::string_view *value) override;
    const QString *find(const QString &name) override;

private:
    QByteArray narrowValue;
    const MacroMap &first;
    const MacroMap *second;
};
