#include "unaryoperators.h"

#include "parserexception.h"

using namespace Qt::StringLiterals;

namespace
{

ExpressionValue resolvedOperand(const UnaryExpression &node)
{
    ExpressionValue value = node.operand->evaluate();
    value.resolve();
    return value;
}

[[noreturn]] void failUnsupported()
{
    throw ParserException("unsupported unary num operation"_L1);
}

}  // namespace

ExpressionValue NegateExpression::evaluate() const
{
    ExpressionValue value = resolvedOperand(*this);
    switch (value.kind) {
    case ExpressionValue::Boolean:
        return ExpressionValue::fromInt64(value.toBool() ? -1 : 0, value.size);
    case ExpressionValue::Signed:
        return ExpressionValue::fromInt64(static_cast<qint64>(0 - value.payload), value.size);
    case ExpressionValue::Unsigned:
        return ExpressionValue::fromUInt64(0 - value.payload, value.size);
    case ExpressionValue::Floating:
        value.payload ^= 1ULL << 63;  // the sign bit alone, of a NaN too
        return value;
    default:
        failUnsupported();
    }
}

QLatin1StringView NegateExpression::dumpName() const
{
    return "NegateExpression"_L1;
}

ExpressionValue LogicalNotExpression::evaluate() const
{
    const ExpressionValue value = resolvedOperand(*this);
    switch (value.kind) {
    case ExpressionValue::Boolean:
        return ExpressionValue::fromBool(!value.toBool());
    case ExpressionValue::Signed:
    case ExpressionValue::Unsigned:
        return ExpressionValue::fromBool(value.payload == 0);
    case ExpressionValue::Floating:
        return ExpressionValue::fromBool(value.toDouble() == 0.0);
    default:
        failUnsupported();
    }
}

QLatin1StringView LogicalNotExpression::dumpName() const
{
    return "LogicalNotExpression"_L1;
}

ExpressionValue BitNotExpression::evaluate() const
{
    const ExpressionValue value = resolvedOperand(*this);
    switch (value.kind) {
    case ExpressionValue::Signed:
        return ExpressionValue::fromInt64(static_cast<qint64>(~value.payload), value.size);
    case ExpressionValue::Unsigned:
        return ExpressionValue::fromUInt64(~value.payload, value.size);
    default:
        failUnsupported();
    }
}

QLatin1StringView BitNotExpression::dumpName() const
{
    return "BitNotExpression"_L1;
}
