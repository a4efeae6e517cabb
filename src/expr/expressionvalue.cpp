#include "expressionvalue.h"

#include <bit>
#include <limits>

static_assert(std::numeric_limits<double>::is_iec559 && std::numeric_limits<float>::is_iec559);

namespace
{

qint64 signExtended(quint64 payload, qint32 size)
{
    switch (size) {
    case 1:
        return static_cast<qint8>(payload);
    case 2:
        return static_cast<qint16>(payload);
    case 4:
        return static_cast<qint32>(payload);
    default:
        return static_cast<qint64>(payload);
    }
}

quint64 zeroExtended(quint64 payload, qint32 size)
{
    switch (size) {
    case 1:
        return static_cast<quint8>(payload);
    case 2:
        return static_cast<quint16>(payload);
    case 4:
        return static_cast<quint32>(payload);
    default:
        return payload;
    }
}

qint64 truncated(double value)
{
    constexpr double limit = 9223372036854775808.0;  // 2^63
    // Written so that a NaN, for which every comparison is false, is out of range too.
    const bool inRange = value >= -limit && value < limit;
    return inRange ? static_cast<qint64>(value) : std::numeric_limits<qint64>::min();
}

quint64 bitPattern(double value, qint32 size)
{
    return size == 4 ? std::bit_cast<quint32>(static_cast<float>(value))
                     : std::bit_cast<quint64>(value);
}

}  // namespace

ExpressionValue ExpressionValue::fromDouble(double value, qint32 size)
{
    return {Floating, size, std::bit_cast<quint64>(value)};
}

ExpressionValue ExpressionValue::fromText(const QString &text)
{
    ExpressionValue value(String, 0, 0);
    value.text = text;
    return value;
}

ExpressionValue ExpressionValue::fromObject(ExpressionObject *object)
{
    ExpressionValue value(Object, 0, 0);
    value.object = ObjectReference(object);
    return value;
}

qint64 ExpressionValue::toInt64() const
{
    switch (kind) {
    case Boolean:
        return toBool() ? 1 : 0;
    case Signed:
    case Unsigned:
        return signExtended(payload, size);
    case Floating:
        return truncated(std::bit_cast<double>(payload));
    default:
        return 0;
    }
}

quint64 ExpressionValue::toUInt64() const
{
    switch (kind) {
    case Boolean:
        return toBool() ? 1 : 0;
    case Signed:
    case Unsigned:
        return zeroExtended(payload, size);
    case Floating:
        return bitPattern(std::bit_cast<double>(payload), size);
    default:
        return 0;
    }
}

double ExpressionValue::toDouble() const
{
    switch (kind) {
    case Floating:
        return std::bit_cast<double>(payload);
    case Unsigned:
        return static_cast<double>(toUInt64());
    default:
        return static_cast<double>(toInt64());
    }
}

void ExpressionValue::resolve()
{
    if (isObject())
        *this = object.get()->value();
}
