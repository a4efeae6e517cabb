#include "expression.h"

#include "valueformat.h"

#include <vector>

using namespace Qt::StringLiterals;

QString Expression::dumped() const
{
    QString text;
    dumpTo(text);
    return text;
}

BinaryExpression::BinaryExpression(int height, std::unique_ptr<Expression> &leftOperand,
                                   std::unique_ptr<Expression> &rightOperand)
    : Expression(height),
      left(std::move(leftOperand)),
      right(std::move(rightOperand))
{
}

BinaryExpression::~BinaryExpression()
{
    // Each step releases one node of the chain, which has no left operand any more.
    std::unique_ptr<Expression> node = std::move(left);
    while (BinaryExpression *binary = node ? node->asBinary() : nullptr)
        node = std::move(binary->left);
}

void BinaryExpression::dumpTo(QString &text) const
{
    std::vector<const BinaryExpression *> chain;
    const Expression *innermost = this;
    for (const BinaryExpression *node = this; node; node = node->left->asBinary()) {
        text += node->dumpName();
        text += u'(';
        chain.push_back(node);
        innermost = node->left.get();
    }
    innermost->dumpTo(text);
    for (; !chain.empty(); chain.pop_back()) {
        text += u',';
        chain.back()->right->dumpTo(text);
        text += u')';
    }
}

UnaryExpression::UnaryExpression(std::unique_ptr<Expression> operandNode)
    : Expression(operandNode->height() + 1),
      operand(std::move(operandNode))
{
}

void UnaryExpression::dumpTo(QString &text) const
{
    text += dumpName();
    text += u'(';
    operand->dumpTo(text);
    text += u')';
}

ConstantExpression::ConstantExpression(ExpressionValue constant)
    : Expression(1),
      value(std::move(constant))
{
}

void ConstantExpression::dumpTo(QString &text) const
{
    text += "Constant("_L1;
    text += toString(value);
    text += u')';
}
