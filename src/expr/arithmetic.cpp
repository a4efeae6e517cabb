#include "arithmetic.h"

#include "parserexception.h"

#include <algorithm>
#include <bit>
#include <compare>
#include <functional>

namespace
{

constexpr const char *unsupportedNumeric = "unsupported binary numeric operation";
constexpr const char *unsupportedUnary = "unsupported unary num operation";

PlainValue booleanOf(bool value)
{
    return {PlainValue::Boolean, 0, value ? 1U : 0U};
}

// The operators with two operands. The left payload takes part whole, whatever its size. Signed
// values are computed as unsigned ones, which wrap, wherever the bits come out the same.

template <typename Operation>
const char *onIntegers(PlainValue *left, const PlainValue &right)
{
    if (left->isBoolean())
        *left = booleanOf(Operation()(int{left->firstByte()}, int{right.firstByte()}) != 0);
    else if (left->kind == PlainValue::Signed)
        left->payload = Operation()(left->payload, static_cast<std::uint64_t>(right.toInt64()));
    else if (left->kind == PlainValue::Unsigned)
        left->payload = Operation()(left->payload, right.toUInt64());
    else
        return unsupportedNumeric;
    return nullptr;
}

template <typename Operation>
const char *onNumbers(PlainValue *left, const PlainValue &right)
{
    if (left->kind != PlainValue::Floating)
        return onIntegers<Operation>(left, right);
    left->payload = std::bit_cast<std::uint64_t>(Operation()(left->toDouble(), right.toDouble()));
    return nullptr;
}

// Dividing the least integer by -1 leaves the 64 bits, where negating wraps.
struct Quotient {
    double operator()(double left, double right) const { return left / right; }
    std::uint64_t operator()(std::uint64_t left, std::uint64_t right) const { return left / right; }
    std::int64_t operator()(std::int64_t left, std::int64_t right) const
    {
        return right == -1 ? static_cast<std::int64_t>(0 - static_cast<std::uint64_t>(left))
                           : left / right;
    }
};

struct Remainder {
    std::uint64_t operator()(std::uint64_t left, std::uint64_t right) const { return left % right; }
    std::int64_t operator()(std::int64_t left, std::int64_t right) const
    {
        return right == -1 ? 0 : left % right;
    }
};

/// The payload of \a left once it is divided; the divisor is zero or not as it is converted.
template <typename Operation, typename Number>
const char *divideBy(Number divisor, PlainValue *left)
{
    if (divisor == 0)
        return "divide by zero";
    left->payload =
        std::bit_cast<std::uint64_t>(Operation()(std::bit_cast<Number>(left->payload), divisor));
    return nullptr;
}

template <typename Operation>
const char *onDivisors(PlainValue *left, const PlainValue &right)
{
    if (left->kind == PlainValue::Signed)
        return divideBy<Operation>(right.toInt64(), left);
    if (left->kind == PlainValue::Unsigned)
        return divideBy<Operation>(right.toUInt64(), left);
    if (!left->isBoolean())
        return unsupportedNumeric;
    left->payload = left->firstByte();
    const char *failure = divideBy<Operation>(std::uint64_t{right.firstByte()}, left);
    *left = booleanOf(left->payload != 0);
    return failure;
}

const char *divide(PlainValue *left, const PlainValue &right)
{
    if (!right.isNumeric() && !right.isBoolean())
        return unsupportedNumeric;
    return left->kind == PlainValue::Floating ? divideBy<Quotient>(right.toDouble(), left)
                                              : onDivisors<Quotient>(left, right);
}

template <typename Comparison>
const char *compare(PlainValue *left, const PlainValue &right)
{
    const Comparison holds;
    if (left->kind == PlainValue::Signed)
        *left = booleanOf(holds(static_cast<std::int64_t>(left->payload), right.toInt64()));
    else if (left->kind == PlainValue::Unsigned)
        *left = booleanOf(holds(left->payload, right.toUInt64()));
    else if (left->isBoolean())
        *left = booleanOf(holds(left->firstByte(), right.firstByte()));
    else
        return "unsupported comparison operation";
    return nullptr;
}

template <bool toTheLeft>
const char *shift(PlainValue *left, const PlainValue &right)
{
    if (right.kind != PlainValue::Signed)
        return "integer shift value expected";
    const std::int64_t count = right.toInt64() & 63;
    if (toTheLeft && left->isInteger())
        left->payload <<= count;
    else if (left->kind == PlainValue::Unsigned)
        left->payload >>= count;
    else if (left->kind == PlainValue::Signed)
        left->payload =
            std::bit_cast<std::uint64_t>(std::bit_cast<std::int64_t>(left->payload) >> count);
    else
        return "can only shift numeric values";
    return nullptr;
}

struct Operator {
    BinaryOperator binaryOperator;
    const char *name;
    const char *(*apply)(PlainValue *left, const PlainValue &right);
};

using enum BinaryOperator;

constexpr Operator operators[] = {
    {Lt, "LtExpression", compare<std::less<>>},
    {Le, "LeExpression", compare<std::less_equal<>>},
    {Gt, "GtExpression", compare<std::greater<>>},
    {Ge, "GeExpression", compare<std::greater_equal<>>},
    {Eq, "EqExpression", compare<std::equal_to<>>},
    {Ne, "NeExpression", compare<std::not_equal_to<>>},
    {LogicalAnd, "LogicalAndExpression", onIntegers<std::logical_and<>>},
    {LogicalOr, "LogicalOrExpression", onIntegers<std::logical_or<>>},
    {Plus, "PlusExpression", onNumbers<std::plus<>>},
    {Minus, "MinusExpression", onNumbers<std::minus<>>},
    {Multiply, "MultiplyExpression", onNumbers<std::multiplies<>>},
    {Divide, "DivideExpression", divide},
    {Mod, "ModExpression", onDivisors<Remainder>},
    {Rshift, "RshiftExpression", shift<false>},
    {Lshift, "LshiftExpression", shift<true>},
    {BitAnd, "BitAndExpression", onIntegers<std::bit_and<>>},
    {BitXor, "BitXorExpression", onIntegers<std::bit_xor<>>},
    {BitOr, "BitOrExpression", onIntegers<std::bit_or<>>},
};

constexpr const Operator &rowOf(BinaryOperator binaryOperator)
{
    return operators[static_cast<std::size_t>(binaryOperator)];
}

static_assert(std::ranges::all_of(operators,
                                  [](const Operator &row) {
                                      return &row == &rowOf(row.binaryOperator);
                                  }),
              "a row is found by its operator");

const char *negate(PlainValue *operand)
{
    if (operand->isInteger())
        operand->payload = 0 - operand->payload;
    else if (operand->isBoolean())
        *operand = {PlainValue::Signed, operand->size, operand->toBool() ? ~0ULL : 0ULL};
    else if (operand->kind == PlainValue::Floating)
        operand->payload ^= 1ULL << 63;  // the sign bit alone, of a NaN too
    else
        return unsupportedUnary;
    return nullptr;
}

const char *logicalNot(PlainValue *operand)
{
    if (operand->isInteger())
        *operand = booleanOf(operand->payload == 0);
    else if (operand->isBoolean())
        *operand = booleanOf(!operand->toBool());
    else if (operand->kind == PlainValue::Floating)
        *operand = booleanOf(operand->toDouble() == 0.0);
    else
        return unsupportedUnary;
    return nullptr;
}

const char *bitNot(PlainValue *operand)
{
    if (!operand->isInteger())
        return unsupportedUnary;
    operand->payload = ~operand->payload;
    return nullptr;
}

/// What an operator has made of an operand, unless there is a \a failure.
ExpressionValue result(const PlainValue &value, const char *failure)
{
    if (failure)
        throw ParserException(failure);
    return ExpressionValue(value);
}

}  // namespace

const char *apply(UnaryOperator unaryOperator, PlainValue *operand)
{
    static constexpr const char *(*functions[])(PlainValue *) = {negate, logicalNot, bitNot};
    return functions[static_cast<std::size_t>(unaryOperator)](operand);
}

const char *apply(BinaryOperator binaryOperator, PlainValue *left, const PlainValue &right)
{
    return rowOf(binaryOperator).apply(left, right);
}

ExpressionValue applyOperator(UnaryOperator unaryOperator, ExpressionValue operand)
{
    operand.resolve();
    const char *failure = apply(unaryOperator, &operand);
    return result(operand, failure);
}

ExpressionValue applyOperator(BinaryOperator binaryOperator, ExpressionValue &&left,
                              ExpressionValue &&right)
{
    left.resolve();
    right.resolve();
    if (binaryOperator <= Ne && left.kind == PlainValue::String) {
        // Texts compare as the number that says which is greater does with zero.
        const int order = left.text.compare(right.text);
        left = ExpressionValue::fromInt64(order);
        right = ExpressionValue::fromInt64(0);
    }
    const char *failure = apply(binaryOperator, &left, right);
    return result(left, failure);
}

const char *operatorName(UnaryOperator unaryOperator)
{
    static constexpr const char *names[] = {"NegateExpression", "LogicalNotExpression",
                                            "BitNotExpression"};
    return names[static_cast<std::size_t>(unaryOperator)];
}

const char *operatorName(BinaryOperator binaryOperator)
{
    return rowOf(binaryOperator).name;
}
