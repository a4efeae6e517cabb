#include "expressionvalue.h"

#include <cassert>
#include <limits>

static_assert(std::numeric_limits<double>::is_iec559 && std::numeric_limits<float>::is_iec559);

namespace
{

std::int64_t signExtended(std::uint64_t payload, std::int32_t size)
{
    switch (size) {
    case 1:
        return static_cast<std::int8_t>(payload);
    case 2:
        return static_cast<std::int16_t>(payload);
    case 4:
        return static_cast<std::int32_t>(payload);
    default:
        return static_cast<std::int64_t>(payload);
    }
}

std::uint64_t zeroExtended(std::uint64_t payload, std::int32_t size)
{
    const bool isNarrow = size == 1 || size == 2 || size == 4;
    return isNarrow ? payload & ((1ULL << (8 * size)) - 1) : payload;
}

std::int64_t truncated(double value)
{
    constexpr double limit = 9223372036854775808.0;  // 2^63
    // Written so that a NaN, for which every comparison is false, is out of range too.
    const bool inRange = value >= -limit && value < limit;
    return inRange ? static_cast<std::int64_t>(value) : std::numeric_limits<std::int64_t>::min();
}

std::uint64_t bitPattern(double value, std::int32_t size)
{
    return size == 4 ? std::bit_cast<std::uint32_t>(static_cast<float>(value))
                     : std::bit_cast<std::uint64_t>(value);
}

}  // namespace

std::int64_t PlainValue::toInt64() const
{
    switch (kind) {
    case Boolean:
        return toBool() ? 1 : 0;
    case Signed:
    case Unsigned:
        return signExtended(payload, size);
    case Floating:
        return truncated(std::bit_cast<double>(payload));
    case String:
    case Object:
    case Void:
        break;
    }
    return 0;
}

std::uint64_t PlainValue::toUInt64() const
{
    switch (kind) {
    case Boolean:
        return toBool() ? 1 : 0;
    case Signed:
    case Unsigned:
        return zeroExtended(payload, size);
    case Floating:
        return bitPattern(std::bit_cast<double>(payload), size);
    case String:
    case Object:
    case Void:
        break;
    }
    return 0;
}

double PlainValue::toDouble() const
{
    if (kind == Floating)
        return std::bit_cast<double>(payload);
    return kind == Unsigned ? static_cast<double>(toUInt64()) : static_cast<double>(toInt64());
}

ExpressionValue ExpressionValue::fromText(std::string_view text)
{
    ExpressionValue value({String, 0, 0});
    value.text = text;
    return value;
}

ExpressionValue ExpressionValue::fromObject(ExpressionObject *object)
{
    assert(object);
    ExpressionValue value({Object, 0, 0});
    value.object = ObjectReference(object);
    return value;
}

void ExpressionValue::resolve()
{
    if (isObject())
        *this = object.get()->value();
}
