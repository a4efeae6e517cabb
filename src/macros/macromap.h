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

/// What looking for a value in Latin-1 can end in.
enum class Lookup {
    Missing,
    Found,
    NotLatin1,  ///< there is one, with a character above 0xFF
};

/// Where an expansion looks names up. A value that is found is valid until the next call.
class MacroLookup
{
public:
    virtual ~MacroLookup() = default;

    /// Looks for a macro by its Latin-1 name. *value receives what is found: a view of nothing at
    /// all for a null text.
    virtual Lookup findLatin1(std::string_view name, std::string_view *value) = 0;

    /// The value of any macro, null when there is none. Unless this is overridden, it finds what
    /// findLatin1() does.
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

    Lookup findLatin1(std::string_view name, std::string_view *value) override;
    const QString *find(const QString &name) override;

private:
    QByteArray narrowValue;
    const MacroMap &first;
    const MacroMap *second;
};
