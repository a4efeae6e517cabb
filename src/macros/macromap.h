#pragma once

#include <QMap>
#include <QString>

#include <cstddef>
#include <string_view>

/// Macro values by name, ordered by the UTF-16 code units of the names. Names are
/// case-sensitive and any text can be one, the empty text included; a name with an empty value
/// is defined. Copies share their data until one of them changes, so a map is passed by value
/// at next to no cost, but the first change of a shared one copies all of it.
using MacroMap = QMap<QString, QString>;

/// A Latin-1 name as a key to look up, made without an allocation when it is short. The key
/// points into this object: it is only ever looked up, never stored in a map.
class MacroKey
{
public:
    explicit MacroKey(std::string_view name);
    MacroKey(const MacroKey &) = delete;
    MacroKey &operator=(const MacroKey &) = delete;

    operator const QString &() const { return key; }

private:
    static constexpr std::size_t longestInPlace = 64;

    char16_t buffer[longestInPlace];
    QString key;
};

/// Where names are looked up that are not, or not all, in one map.
class MacroLookup
{
public:
    virtual ~MacroLookup() = default;

    /// The value of the macro \a name, null when there is none. Valid until the next call.
    virtual const QString *find(const QString &name) = 0;
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

    const QString *find(const QString &name) override;

private:
    const MacroMap &first;
    const MacroMap *second;
};

/// The value of the macro \a name (Latin-1, null meaning the empty name), null when \a macros
/// has none. Never inserts; the result is valid until \a macros changes.
const QString *findMacro(const MacroMap &macros, const char *name);
