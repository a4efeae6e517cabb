#include "operators.h"

#include "parserexception.h"

#include <array>
#include <bit>
#include <functional>
#include <vector>

namespace
{

constexpr const char *unsupportedNumeric = "unsupported binary numeric operation";
constexpr const char *unsupportedUnary = "unsupported unary num operation";
constexpr const char *divideByZero = "divide by zero";

PlainValue booleanOf(bool value)
{
    return {PlainValue::Boolean, 0, value};
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

template <typename Operation>
const char *onDivisors(PlainValue *left, const PlainValue &right)
{
    if (!left->isInteger() && !left->isBoolean())
        return unsupportedNumeric;
    const bool isSigned = left->kind == PlainValue::Signed;
    const std::int64_t divisor = right.toInt64();
    const std::uint64_t bits = isSigned            ? static_cast<std::uint64_t>(divisor)
                               : left->isBoolean() ? right.firstByte()
                                                   : right.toUInt64();
    if (bits == 0)
        return divideByZero;
    if (left->isBoolean())
        *left = booleanOf(Operation()(left->firstByte(), bits) != 0);
    else if (!isSigned)
        left->payload = Operation()(left->payload, bits);
    else if (divisor == -1)
        // The least integer has no quotient, but negating it wraps.
        left->payload = Operation()(0 - left->payload, std::uint64_t{1});
    else
        left->payload = std::bit_cast<std::uint64_t>(
            Operation()(std::bit_cast<std::int64_t>(left->payload), divisor));
    return nullptr;
}

const char *divide(PlainValue *left, const PlainValue &right)
{
    if (!right.isNumeric() && !right.isBoolean())
        return unsupportedNumeric;
    if (left->kind != PlainValue::Floating)
        return onDivisors<std::divides<>>(left, right);
    const double divisor = right.toDouble();
    if (divisor == 0)
        return divideByZero;
    left->payload = std::bit_cast<std::uint64_t>(left->toDouble() / divisor);
    return nullptr;
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

template <Token::Kind Operator>
constexpr OperatorRow row(const char *text, std::int32_t level, Token::Kind assignment,
                          const char *name, const char *(*apply)(PlainValue *, const PlainValue &))
{
    const auto make = [](OwnedExpression left, OwnedExpression right) -> OwnedExpression {
        return std::make_unique<BinaryOperatorExpression<Operator>>(std::move(left),
                                                                    std::move(right));
    };
    return {text, level, Operator, assignment, name, apply, make};
}

using enum Token::Kind;

// A token that has a level and no row here is no operator, but for "=".
constexpr OperatorRow rows[] = {
    row<OrOr>("||", 0, {}, "LogicalOrExpression", onIntegers<std::logical_or<>>),
    row<AndAnd>("&&", 1, {}, "LogicalAndExpression", onIntegers<std::logical_and<>>),
    row<Bar>("|", 2, BarAssign, "BitOrExpression", onIntegers<std::bit_or<>>),
    row<Caret>("^", 3, CaretAssign, "BitXorExpression", onIntegers<std::bit_xor<>>),
    row<Ampersand>("&", 4, AmpersandAssign, "BitAndExpression", onIntegers<std::bit_and<>>),
    row<Equal>("==", 5, {}, "EqExpression", compare<std::equal_to<>>),
    row<NotEqual>("!=", 5, {}, "NeExpression", compare<std::not_equal_to<>>),
    row<Less>("<", 6, {}, "LtExpression", compare<std::less<>>),
    row<LessEqual>("<=", 6, {}, "LeExpression", compare<std::less_equal<>>),
    row<Greater>(">", 6, {}, "GtExpression", compare<std::greater<>>),
    row<GreaterEqual>(">=", 6, {}, "GeExpression", compare<std::greater_equal<>>),
    row<ShiftLeft>("<<", 7, ShiftLeftAssign, "LshiftExpression", shift<true>),
    row<ShiftRight>(">>", 7, ShiftRightAssign, "RshiftExpression", shift<false>),
    row<Plus>("+", 8, PlusAssign, "PlusExpression", onNumbers<std::plus<>>),
    row<Minus>("-", 8, MinusAssign, "MinusExpression", onNumbers<std::minus<>>),
    row<Star>("*", 9, StarAssign, "MultiplyExpression", onNumbers<std::multiplies<>>),
    row<Slash>("/", 9, SlashAssign, "DivideExpression", divide),
    row<Percent>("%", 9, PercentAssign, "ModExpression", onDivisors<std::modulus<>>),
};

constexpr auto rowsByKind = [] {
    std::array<const OperatorRow *, Comma + 1> byKind = {};
    for (const OperatorRow &row : rows) {
        byKind[static_cast<std::size_t>(row.assignment)] = &row;
        byKind[static_cast<std::size_t>(row.token)] = &row;
    }
    byKind[EndOfInput] = nullptr;
    return byKind;
}();

/// An operator is its character alone, twice, or in front of "=".
enum Form { Alone, Twice, WithEqual };

constexpr Form formOf(char first, char second)
{
    return second == first ? Twice : second == '=' ? WithEqual : Alone;
}

constexpr auto rowsByForm = [] {
    std::array<std::array<const OperatorRow *, 256>, 3> byForm = {};
    for (const OperatorRow &row : rows)
        byForm[formOf(row.text[0], row.text[1])][static_cast<unsigned char>(row.text[0])] = &row;
    return byForm;
}();

/// What \a value is once an operator was applied to it, unless there is a \a failure.
ExpressionValue result(const PlainValue &value, const char *failure)
{
    if (failure)
        throw ParserException(failure);
    return ExpressionValue(value);
}

ExpressionValue applyOperator(const OperatorRow &row, ExpressionValue &&left,
                              ExpressionValue &&right)
{
    left.resolve();
    right.resolve();
    if (left.kind == PlainValue::String && row.token >= Less && row.token <= NotEqual) {
        // Texts compare as the number that says which is greater does with zero.
        const int order = left.text.compare(right.text);
        left = ExpressionValue::fromInt64(order);
        right = ExpressionValue::fromInt64(0);
    }
    const char *failure = row.apply(&left, right);
    return result(left, failure);
}

/// The left operand of \a node if it is an operator too, else null.
const BinaryExpression *leftOperator(const BinaryExpression &node)
{
    const BinaryExpression *left = node.left->asBinary();
    return left && left->computes ? left : nullptr;
}

ExpressionValue evaluateChain(const BinaryExpression &root)
{
    struct Pending {
        const OperatorRow *row;
        ExpressionValue right;
    };
    std::size_t length = 0;
    for (const BinaryExpression *node = &root; node; node = leftOperator(*node))
        ++length;
    std::vector<Pending> pending;
    pending.reserve(length);
    const Expression *innermost = &root;
    for (const BinaryExpression *node = &root; node; node = leftOperator(*node)) {
        pending.push_back({node->computes, node->right->evaluate()});
        innermost = node->left.get();
    }
    ExpressionValue value = innermost->evaluate();
    for (; !pending.empty(); pending.pop_back())
        value =
            applyOperator(*pending.back().row, std::move(value), std::move(pending.back().right));
    return value;
}

}  // namespace

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

const OperatorRow *findOperator(Token::Kind kind)
{
    // A parser may have added kinds of its own to its lexer.
    return kind >= 0 && kind <= Comma ? rowsByKind[static_cast<std::size_t>(kind)] : nullptr;
}

const OperatorRow *findOperator(char first, char second)
{
    return rowsByForm[formOf(first, second)][static_cast<unsigned char>(first)];
}

ExpressionValue evaluateOperators(const BinaryExpression &root)
{
    assert(root.computes);
    if (leftOperator(root))
        return evaluateChain(root);
    ExpressionValue right = root.right->evaluate();
    return applyOperator(*root.computes, root.left->evaluate(), std::move(right));
}

ExpressionValue evaluateOperator(const Expression &operand, const char *(*apply)(PlainValue *))
{
    ExpressionValue value = operand.evaluate();
    value.resolve();
    const char *failure = apply(&value);
    return result(value, failure);
}
