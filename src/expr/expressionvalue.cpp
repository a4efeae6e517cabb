#include "expressionvalue.h"

#include <limits>

static_assert(std::numeric_limits<double>::is_iec559 && std::numeric_limits<float>::is_iec559);

namespace
{

/// The high bits of a payload that an integer of \a size bytes does not use.
int unusedBits(std::int32_t size)
{
    return size == 1 || size == 2 || size == 4 ? 64 - 8 * size : 0;
}

std::int64_t truncated(double value)
{
    constexpr double limit = 9223372036854775808.0;  // 2^63
    // Written so that a NaN, for which every comparison is false, is out of range too.
    const bool inRange = value >= -limit && value < limit;
    return inRange ? static_cast<std::int64_t>(value) : std::numeric_limits<std::int64_t>::min();
}

}  // namespace

std::int64_t PlainValue::toInt64() const
{
    if (isInteger())
        return static_cast<std::int64_t>(payload << unusedBits(size)) >> unusedBits(size);
    if (kind == Floating)
        return truncated(std::bit_cast<double>(payload));
    return isBoolean() && toBool() ? 1 : 0;
}

std::uint64_t PlainValue::toUInt64() const
{
    if (isInteger())
        return payload << unusedBits(size) >> unusedBits(size);
    if (kind == Floating)
        return size == 4 ? std::bit_cast<std::uint32_t>(
                               static_cast<float>(std::bit_cast<double>(payload)))
                         : payload;
    return isBoolean() && toBool() ? 1 : 0;
}

double PlainValue::toDouble() const
{
    if (kind == Floating)
        return std::bit_cast<double>(payload);
    return kind == Unsigned ? static_cast<double>(toUInt64()) : static_cast<double>(toInt64());
}
