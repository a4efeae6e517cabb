#include "macromap.h"

#include "latin1.h"

const QString *MacroLookup::find(const QString &name)
{
    std::string_view value;
    if (!isLatin1(name) || findLatin1(name.toLatin1().toStdString(), &value) != Lookup::Found)
        return nullptr;
    wideValue = fromLatin1(value);
    return &wideValue;
}

Lookup MapLookup::findLatin1(std::string_view name, std::string_view *value)
{
    const QString *found = find(fromLatin1(name));
    if (!found)
        return Lookup::Missing;
    if (!isLatin1(*found))
        return Lookup::NotLatin1;
    narrowValue = found->toLatin1();
    *value = {found->isNull() ? nullptr : narrowValue.constData(),
              static_cast<std::size_t>(narrowValue.size())};
    return Lookup::Found;
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
