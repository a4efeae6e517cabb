#include "alternatives.h"

bool hasAlternative(const char *list, std::string_view value)
{
    if (!list || value.empty())
        return false;
    std::size_t length = 0;  // of the piece so far
    bool matches = true;
    for (;; ++list) {
        if (*list != ',' && *list != '\0') {
            matches = matches && length < value.size() && *list == value[length];
            ++length;
        } else if (matches && length == value.size()) {
            return true;
        } else if (*list == '\0') {
            return false;
        } else {
            length = 0;
            matches = true;
        }
    }
}
