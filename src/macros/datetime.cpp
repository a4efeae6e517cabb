#include "datetime.h"

#include <algorithm>
#include <ctime>
#include <iterator>

namespace
{

/// The names and what makes their values, as strftime() takes it.
constexpr struct {
    std::string_view name;
    const char *format;
} builtinMacros[] = {
    {"Date", "%e %B %Y"}, {"DateYear", "%Y"}, {"DateMonth", "%m"},  {"DateDay", "%d"},
    {"Time", "%H:%M:%S"}, {"TimeHour", "%H"}, {"TimeMinute", "%M"}, {"TimeSecond", "%S"},
};

/// The local time. Asking what it is takes twenty times as long as asking which second it is, so
/// it is asked once a second.
const std::tm &localNow()
{
    static std::time_t brokenDown = -1;
    static std::tm local;
    const std::time_t now = std::time(nullptr);
    if (now != brokenDown && localtime_r(&now, &local))
        brokenDown = now;
    return local;
}

}  // namespace

bool builtinMacroValue(std::string_view name, std::string &value)
{
    const auto *const macro = std::find_if(std::begin(builtinMacros), std::end(builtinMacros),
                                           [&](const auto &row) { return row.name == name; });
    if (macro == std::end(builtinMacros))
        return false;
    char text[64];
    const std::size_t length = std::strftime(text, sizeof text, macro->format, &localNow());
    const std::size_t padding = text[0] == ' ';  // of a day of one digit
    value.assign(text + padding, length - padding);
    return true;
}
