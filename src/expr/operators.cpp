#include "operators.h"

#include <array>
#include <vector>

namespace
{

constexpr auto rowsByKind = [] {
    std::array<const OperatorRow *, Token::Comma + 1> byKind = {};
    for (const OperatorRow &row : operatorRows) {
        byKind[static_cast<std::size_t>(row.assignment)] = &row;
        byKind[static_cast<std::size_t>(row.token)] = &row;
    }
    byKind[Token::EndOfInput] = nullptr;
    return byKind;
}();

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
