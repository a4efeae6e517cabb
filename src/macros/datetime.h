#pragma once

#include <string>
#include <string_view>

/// Sets \a value to the current local date or time when \a name is one of the names below and
/// returns true; otherwise leaves \a value alone and returns false. English month names, as the
/// process never leaves the "C" locale.
///
///     Date      21 June 2011     Time        15:34:03
///     DateYear  2011             TimeHour    15
///     DateMonth 06               TimeMinute  34
///     DateDay   21               TimeSecond  03
bool builtinMacroValue(std::string_view name, std::string &value);
