#include "operators.h"

#include <array>
#include <cassert>
#include <utility>
#include <vector>

namespace
{

// Loosest first. A token that has a level and no row here is no operator.
constexpr OperatorRow operatorRows[] = {
    {Token::StarAssign, true, BinaryOperator::Multiply},
    {Token::SlashAssign, true, BinaryOperator::Divide},
    {Token::PercentAssign, true, BinaryOperator::Mod},
    {Token::PlusAssign, true, BinaryOperator::Plus},
    {Token::MinusAssign, true, BinaryOperator::Minus},
    {Token::ShiftLeftAssign, true, BinaryOperator::Lshift},
    {Token::ShiftRightAssign, true, BinaryOperator::Rshift},
    {Token::AmpersandAssign, true, BinaryOperator::BitAnd},
    {Token::CaretAssign, true, BinaryOperator::BitXor},
    {Token::BarAssign, true, BinaryOperator::BitOr},
    {Token::Assign, true, std::nullopt},
    {Token::OrOr, false, BinaryOperator::LogicalOr},
    {Token::AndAnd, false, BinaryOperator::LogicalAnd},
    {Token::Bar, false, BinaryOperator::BitOr},
    {Token::Caret, false, BinaryOperator::BitXor},
    {Token::Ampersand, false, BinaryOperator::BitAnd},
    {Token::Equal, false, BinaryOperator::Eq},
    {Token::NotEqual, false, BinaryOperator::Ne},
    {Token::Less, false, BinaryOperator::Lt},
    {Token::LessEqual, false, BinaryOperator::Le},
    {Token::Greater, false, BinaryOperator::Gt},
    {Token::GreaterEqual, false, BinaryOperator::Ge},
    {Token::ShiftLeft, false, BinaryOperator::Lshift},
    {Token::ShiftRight, false, BinaryOperator::Rshift},
    {Token::Plus, false, BinaryOperator::Plus},
    {Token::Minus, false, BinaryOperator::Minus},
    {Token::Star, false, BinaryOperator::Multiply},
    {Token::Slash, false, BinaryOperator::Divide},
    {Token::Percent, false, BinaryOperator::Mod},
};

constexpr auto rowsByKind = [] {
    std::array<const OperatorRow *, Token::Comma + 1> byKind = {};
    for (const OperatorRow &row : operatorRows)
        byKind[static_cast<std::size_t>(row.kind)] = &row;
    return byKind;
}();

using Node = std::unique_ptr<Expression>;

template <std::size_t Index>
Node makeOne(Node left, Node right)
{
    using Made = BinaryOperatorExpression<static_cast<BinaryOperator>(Index)>;
    return std::make_unique<Made>(std::move(left), std::move(right));
}

template <std::size_t... Index>
constexpr auto makersOf(std::index_sequence<Index...>)
{
    return std::array{&makeOne<Index>...};
}

/// By operator, what makes its node.
constexpr auto makers =
    makersOf(std::make_index_sequence<static_cast<std::size_t>(BinaryOperator::BitOr) + 1>());

struct PendingOperator {
    BinaryOperator binaryOperator;
    ExpressionValue right;
};

/// The left operand of \a node if it is an operator too, else null.
const BinaryExpression *leftOperator(const BinaryExpression &node)
{
    const BinaryExpression *left = node.left->asBinary();
    return left && left->binaryOperator ? left : nullptr;
}

ExpressionValue evaluateChain(const BinaryExpression &root)
{
    std::size_t length = 0;
    for (const BinaryExpression *node = &root; node; node = leftOperator(*node))
        ++length;
    std::vector<PendingOperator> pending;
    pending.reserve(length);
    const Expression *innermost = &root;
    for (const BinaryExpression *node = &root; node; node = leftOperator(*node)) {
        pending.push_back({*node->binaryOperator, node->right->evaluate()});
        innermost = node->left.get();
    }
    ExpressionValue value = innermost->evaluate();
    for (; !pending.empty(); pending.pop_back()) {
        PendingOperator &next = pending.back();
        value = applyOperator(next.binaryOperator, std::move(value), std::move(next.right));
    }
    return value;
}

}  // namespace

ExpressionValue evaluateOperators(const BinaryExpression &root)
{
    assert(root.binaryOperator);
    if (leftOperator(root))
        return evaluateChain(root);
    ExpressionValue right = root.right->evaluate();
    return applyOperator(*root.binaryOperator, root.left->evaluate(), std::move(right));
}

const OperatorRow *findOperator(Token::Kind kind)
{
    // A parser may have added kinds of its own to its lexer.
    return kind >= 0 && kind <= Token::Comma ? rowsByKind[static_cast<std::size_t>(kind)] : nullptr;
}

Node makeOperator(BinaryOperator binaryOperator, Node left, Node right)
{
    return makers[static_cast<std::size_t>(binaryOperator)](std::move(left), std::move(right));
}
