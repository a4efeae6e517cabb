#pragma once

#include "arithmetic.h"
#include "expression.h"

/// The value of \a root, which must be one of the nodes below. Both operands are always evaluated,
/// the right one first, and a chain that leans to the left takes no stack.
ExpressionValue evaluateOperators(const BinaryExpression &root);

/// The height of a node with these operands; a left operand that is such a node itself adds none.
int operatorHeight(Expression &left, const Expression &right);

template <BinaryOperator Operator>
class OperatorExpression final : public BinaryExpression
{
public:
    OperatorExpression(std::unique_ptr<Expression> leftOperand,
                       std::unique_ptr<Expression> rightOperand)
        : BinaryExpression(operatorHeight(*leftOperand, *rightOperand), leftOperand, rightOperand)
    {
    }
    ExpressionValue evaluate() const override { return evaluateOperators(*this); }
    std::optional<BinaryOperator> binaryOperator() const override { return Operator; }

protected:
    QLatin1StringView dumpName() const override { return operatorName(Operator); }
};

using LtExpression = OperatorExpression<BinaryOperator::Lt>;
using LeExpression = OperatorExpression<BinaryOperator::Le>;
using GtExpression = OperatorExpression<BinaryOperator::Gt>;
using GeExpression = OperatorExpression<BinaryOperator::Ge>;
using EqExpression = OperatorExpression<BinaryOperator::Eq>;
using NeExpression = OperatorExpression<BinaryOperator::Ne>;
using LogicalAndExpression = OperatorExpression<BinaryOperator::LogicalAnd>;
using LogicalOrExpression = OperatorExpression<BinaryOperator::LogicalOr>;
using PlusExpression = OperatorExpression<BinaryOperator::Plus>;
using MinusExpression = OperatorExpression<BinaryOperator::Minus>;
using MultiplyExpression = OperatorExpression<BinaryOperator::Multiply>;
using DivideExpression = OperatorExpression<BinaryOperator::Divide>;
using ModExpression = OperatorExpression<BinaryOperator::Mod>;
using RshiftExpression = OperatorExpression<BinaryOperator::Rshift>;
using LshiftExpression = OperatorExpression<BinaryOperator::Lshift>;
using BitAndExpression = OperatorExpression<BinaryOperator::BitAnd>;
using BitXorExpression = OperatorExpression<BinaryOperator::BitXor>;
using BitOrExpression = OperatorExpression<BinaryOperator::BitOr>;
