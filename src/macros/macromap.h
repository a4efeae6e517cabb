#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

/// Macro values by name. Names are case-sensitive and any text can be one, the empty text
/// included; a name with an empty value is defined.
using MacroMap = std::map<std::string, std::string, std::less<>>;

/// Where an expansion looks names up.
class MacroLookup
{
public:
    virtual ~MacroLookup() = default;

    /// Whether there is a macro of that name; *value receives its value, valid until the next
    /// call, and stays as it is when there is none.
    virtual bool find(std::string_view name, std::string_view *value) = 0;
};

/// Looks names up in a map and then, if there is one, in a second.
class MapLookup : public MacroLookup
{
public:
    explicit MapLookup(const MacroMap *firstMap, const MacroMap *secondMap = nullptr)
        : maps{firstMap, secondMap}
    {
    }

    bool find(std::string_view name, std::string_view *value) override
    {
        for (const MacroMap *map : maps) {
            if (!map)
                break;
            if (const auto entry = map->find(name); entry != map->end()) {
                *value = entry->second;
                return true;
            }
        }
        return false;
    }

private:
    const MacroMap *maps[2];
};
