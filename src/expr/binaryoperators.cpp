#include "binaryoperators.h"

#include <vector>

namespace
{

bool isOperator(Expression *node)
{
    const BinaryExpression *binary = node->asBinary();
    return binary && binary->binaryOperator();
}

struct PendingOperator {
    BinaryOperator binaryOperator;
    ExpressionValue right;
};

ExpressionValue evaluateChain(const BinaryExpression &root)
{
    std::vector<PendingOperator> pending;
    pending.reserve(8);
    const Expression *innermost = &root;
    for (const BinaryExpression *node = &root; node; node = node->left->asBinary()) {
        const std::optional<BinaryOperator> binaryOperator = node->binaryOperator();
        if (!binaryOperator)
            break;
        pending.push_back({*binaryOperator, node->right->evaluate()});
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
    if (isOperator(root.left.get()))
        return evaluateChain(root);
    ExpressionValue right = root.right->evaluate();
    return applyOperator(*root.binaryOperator(), root.left->evaluate(), std::move(right));
}

int operatorHeight(Expression &left, const Expression &right)
{
    const int leftHeight = isOperator(&left) ? left.height() - 1 : left.height();
    return 1 + qMax(leftHeight, right.height());
}
