#pragma once

#include "arithmetic.h"
#include "expression.h"
#include "lexer.h"

/// The value of \a root, which must be one of the operators with two operands below. Both are always
/// evaluated, the right one first, and a chain that leans to the left takes no stack.
ExpressionValue evaluateOperators(const BinaryExpression &root);

template <UnaryOperator Operator>
class UnaryOperatorExpression final : public UnaryExpression
{
public:
    using UnaryExpression::UnaryExpression;
    ExpressionValue evaluate() const override
    {
        return applyOperator(Operator, operand->evaluate());
    }

protected:
    const char *dumpName() const override { return operatorName(Operator); }
};

using NegateExpression = UnaryOperatorExpression<UnaryOperator::Negate>;
using LogicalNotExpression = UnaryOperatorExpression<UnaryOperator::LogicalNot>;
using BitNotExpression = UnaryOperatorExpression<UnaryOperator::BitNot>;

template <BinaryOperator Operator>
class BinaryOperatorExpression final : public BinaryExpression
{
public:
    BinaryOperatorExpression(std::unique_ptr<Expression> leftOperand,
                             std::unique_ptr<Expression> rightOperand)
        : BinaryExpression(std::move(leftOperand), std::move(rightOperand), Operator)
    {
    }
    ExpressionValue evaluate() const override { return evaluateOperators(*this); }

protected:
    const char *dumpName() const override { return operatorName(Operator); }
};

using LtExpression = BinaryOperatorExpression<BinaryOperator::Lt>;
using LeExpression = BinaryOperatorExpression<BinaryOperator::Le>;
using GtExpression = BinaryOperatorExpression<BinaryOperator::Gt>;
using GeExpression = BinaryOperatorExpression<BinaryOperator::Ge>;
using EqExpression = BinaryOperatorExpression<BinaryOperator::Eq>;
using NeExpression = BinaryOperatorExpression<BinaryOperator::Ne>;
using LogicalAndExpression = BinaryOperatorExpression<BinaryOperator::LogicalAnd>;
using LogicalOrExpression = BinaryOperatorExpression<BinaryOperator::LogicalOr>;
using PlusExpression = BinaryOperatorExpression<BinaryOperator::Plus>;
using MinusExpression = BinaryOperatorExpression<BinaryOperator::Minus>;
using MultiplyExpression = BinaryOperatorExpression<BinaryOperator::Multiply>;
using DivideExpression = BinaryOperatorExpression<BinaryOperator::Divide>;
using ModExpression = BinaryOperatorExpression<BinaryOperator::Mod>;
using RshiftExpression = BinaryOperatorExpression<BinaryOperator::Rshift>;
using LshiftExpression = BinaryOperatorExpression<BinaryOperator::Lshift>;
using BitAndExpression = BinaryOperatorExpression<BinaryOperator::BitAnd>;
using BitXorExpression = BinaryOperatorExpression<BinaryOperator::BitXor>;
using BitOrExpression = BinaryOperatorExpression<BinaryOperator::BitOr>;

/// What a token between two operands does: it computes, it assigns, or both, and then it assigns
/// what it computes of the target and the right operand.
struct OperatorRow {
    Token::Kind kind;
    bool assigns;
    std::optional<BinaryOperator> computes;
};

/// Null where a token of this kind is no operator.
const OperatorRow *findOperator(Token::Kind kind);

/// The node of an operator with two operands.
std::unique_ptr<Expression> makeOperator(BinaryOperator binaryOperator,
                                         std::unique_ptr<Expression> left,
                                         std::unique_ptr<Expression> right);
