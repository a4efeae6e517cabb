#include "arithmetic.h"

#include "parserexception.h"

#include <compare>
#include <functional>

using namespace Qt::StringLiterals;

namespace
{

/// An operator in each kind of left value; null where that kind has none.
struct Arithmetic {
    qint64 (*onSigned)(qint64, qint64);
    quint64 (*onUnsigned)(quint64, quint64);
    double (*onFloating)(double, double);
    bool (*onBoolean)(int, int);
    bool divides = false;      ///< a converted right value of zero is an error
    bool needsNumber = false;  ///< so is a right value of a kind that is no number
};

// Signed values are computed as unsigned ones, which wrap, wherever the bits come out the same.
template <template <typename> class Operation>
constexpr Arithmetic onIntegers = {
    .onSigned =
        [](qint64 left, qint64 right) {
            return static_cast<qint64>(
                Operation<quint64>()(static_cast<quint64>(left), static_cast<quint64>(right)));
        },
    .onUnsigned = [](quint64 left, quint64 right) -> quint64 {
        return Operation<quint64>()(left, right);
    },
    .onFloating = nullptr,
    .onBoolean = [](int left, int right) { return Operation<int>()(left, right) != 0; },
};

template <template <typename> class Operation>
constexpr Arithmetic onNumbers = {
    .onSigned = onIntegers<Operation>.onSigned,
    .onUnsigned = onIntegers<Operation>.onUnsigned,
    .onFloating = [](double left, double right) { return Operation<double>()(left, right); },
    .onBoolean = onIntegers<Operation>.onBoolean,
};

// Dividing the least integer by -1 leaves the 64 bits, where negating wraps.
qint64 quotient(qint64 left, qint64 right)
{
    return right == -1 ? static_cast<qint64>(0 - static_cast<quint64>(left)) : left / right;
}

qint64 remainder(qint64 left, qint64 right)
{
    return right == -1 ? 0 : left % right;
}

constexpr Arithmetic division = {
    .onSigned = quotient,
    .onUnsigned = onNumbers<std::divides>.onUnsigned,
    .onFloating = onNumbers<std::divides>.onFloating,
    .onBoolean = onNumbers<std::divides>.onBoolean,
    .divides = true,
    .needsNumber = true,
};

constexpr Arithmetic modulo = {
    .onSigned = remainder,
    .onUnsigned = onIntegers<std::modulus>.onUnsigned,
    .onFloating = nullptr,
    .onBoolean = onIntegers<std::modulus>.onBoolean,
    .divides = true,
};

using Ordering = std::strong_ordering;
using enum BinaryOperator;

/// A row has either what the operator computes or which orderings of its operands make it true;
/// the shifts, whose operands are not converted, have neither.
struct Operator {
    BinaryOperator binaryOperator;
    QLatin1StringView name;
    const Arithmetic *arithmetic = nullptr;
    bool (*accepts)(Ordering) = nullptr;
};

constexpr Operator operators[] = {
    {Lt, "LtExpression"_L1, nullptr, [](Ordering order) { return std::is_lt(order); }},
    {Le, "LeExpression"_L1, nullptr, [](Ordering order) { return std::is_lteq(order); }},
    {Gt, "GtExpression"_L1, nullptr, [](Ordering order) { return std::is_gt(order); }},
    {Ge, "GeExpression"_L1, nullptr, [](Ordering order) { return std::is_gteq(order); }},
    {Eq, "EqExpression"_L1, nullptr, [](Ordering order) { return std::is_eq(order); }},
    {Ne, "NeExpression"_L1, nullptr, [](Ordering order) { return std::is_neq(order); }},
    {LogicalAnd, "LogicalAndExpression"_L1, &onIntegers<std::logical_and>},
    {LogicalOr, "LogicalOrExpression"_L1, &onIntegers<std::logical_or>},
    {Plus, "PlusExpression"_L1, &onNumbers<std::plus>},
    {Minus, "MinusExpression"_L1, &onNumbers<std::minus>},
    {Multiply, "MultiplyExpression"_L1, &onNumbers<std::multiplies>},
    {Divide, "DivideExpression"_L1, &division},
    {Mod, "ModExpression"_L1, &modulo},
    {Rshift, "RshiftExpression"_L1},
    {Lshift, "LshiftExpression"_L1},
    {BitAnd, "BitAndExpression"_L1, &onIntegers<std::bit_and>},
    {BitXor, "BitXorExpression"_L1, &onIntegers<std::bit_xor>},
    {BitOr, "BitOrExpression"_L1, &onIntegers<std::bit_or>},
};

constexpr bool rowsAreInOrder()
{
    std::size_t index = 0;
    for (const Operator &row : operators) {
        if (static_cast<std::size_t>(row.binaryOperator) != index++)
            return false;
    }
    return true;
}
static_assert(rowsAreInOrder(), "a row is found by its operator");

const Operator &rowOf(BinaryOperator binaryOperator)
{
    return operators[static_cast<std::size_t>(binaryOperator)];
}

template <typename Number>
Number checkedDivisor(const Arithmetic &arithmetic, Number right)
{
    if (arithmetic.divides && right == 0)
        throw ParserException("divide by zero"_L1);
    return right;
}

ExpressionValue compute(const Arithmetic &arithmetic, const ExpressionValue &left,
                        const ExpressionValue &right)
{
    const bool accepted = !arithmetic.needsNumber || right.isNumeric() || right.isBoolean();
    // The left payload takes part whole, whatever its size.
    switch (accepted ? left.kind : ExpressionValue::Void) {
    case ExpressionValue::Signed: {
        const qint64 operand = checkedDivisor(arithmetic, right.toInt64());
        const qint64 result = arithmetic.onSigned(static_cast<qint64>(left.payload), operand);
        return ExpressionValue::fromInt64(result, left.size);
    }
    case ExpressionValue::Unsigned: {
        const quint64 operand = checkedDivisor(arithmetic, right.toUInt64());
        return ExpressionValue::fromUInt64(arithmetic.onUnsigned(left.payload, operand), left.size);
    }
    case ExpressionValue::Floating: {
        if (!arithmetic.onFloating)
            break;
        const double operand = checkedDivisor(arithmetic, right.toDouble());
        const double result = arithmetic.onFloating(left.toDouble(), operand);
        return ExpressionValue::fromDouble(result, left.size);
    }
    case ExpressionValue::Boolean: {
        const int operand = checkedDivisor<int>(arithmetic, right.firstByte());
        return ExpressionValue::fromBool(arithmetic.onBoolean(left.firstByte(), operand));
    }
    default:
        break;
    }
    throw ParserException("unsupported binary numeric operation"_L1);
}

Ordering compare(const ExpressionValue &left, const ExpressionValue &right)
{
    switch (left.kind) {
    case ExpressionValue::Signed:
        return static_cast<qint64>(left.payload) <=> right.toInt64();
    case ExpressionValue::Unsigned:
        return left.payload <=> right.toUInt64();
    case ExpressionValue::String:
        return left.text.compare(right.text) <=> 0;
    case ExpressionValue::Boolean:
        return left.firstByte() <=> right.firstByte();
    default:
        throw ParserException("unsupported comparison operation"_L1);
    }
}

ExpressionValue shift(bool toTheLeft, const ExpressionValue &left, const ExpressionValue &right)
{
    if (right.kind != ExpressionValue::Signed)
        throw ParserException("integer shift value expected"_L1);
    const auto count = static_cast<int>(right.toInt64() & 63);
    if (left.kind != ExpressionValue::Signed && left.kind != ExpressionValue::Unsigned)
        throw ParserException("can only shift numeric values"_L1);
    ExpressionValue result = left;
    result.bitWidth = 0;
    if (toTheLeft)
        result.payload = left.payload << count;
    else if (left.kind == ExpressionValue::Unsigned)
        result.payload = left.payload >> count;
    else
        result.payload = static_cast<quint64>(static_cast<qint64>(left.payload) >> count);
    return result;
}

}  // namespace

ExpressionValue applyOperator(BinaryOperator binaryOperator, ExpressionValue &&left,
                              ExpressionValue &&right)
{
    left.resolve();
    right.resolve();
    const Operator &row = rowOf(binaryOperator);
    if (row.arithmetic)
        return compute(*row.arithmetic, left, right);
    if (row.accepts)
        return ExpressionValue::fromBool(row.accepts(compare(left, right)));
    return shift(binaryOperator == BinaryOperator::Lshift, left, right);
}

QLatin1StringView operatorName(BinaryOperator binaryOperator)
{
    return rowOf(binaryOperator).name;
}
