#include "alternatives.h"

#include <QLatin1StringView>

#include <cstring>

bool hasAlternative(const char *list, const QString &value)
{
    if (!list || value.isEmpty())
        return false;
    for (;;) {
        const std::size_t length = std::strcspn(list, ",");
        if (value == QLatin1StringView(list, static_cast<qsizetype>(length)))
            return true;
        if (list[length] == '\0')
            return false;
        list += length + 1;
    }
}
