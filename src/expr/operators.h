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

/// An operator with two operands: how it is written, and what to make of it.
struct OperatorRow {
    const char *text;
    std::int32_t level;  ///< of its token
    BinaryOperator computes;
    std::unique_ptr<Expression> (*make)(std::unique_ptr<Expression> left,
                                        std::unique_ptr<Expression> right);
    Token::Kind token;
    Token::Kind assignment;  ///< the token that assigns what this computes; 0: none does
};

template <BinaryOperator Operator>
constexpr OperatorRow operatorRow(const char *text, std::int32_t level, Token::Kind token,
                                  Token::Kind assignment = Token::EndOfInput)
{
    const auto make = [](std::unique_ptr<Expression> left,
                         std::unique_ptr<Expression> right) -> std::unique_ptr<Expression> {
        return std::make_unique<BinaryOperatorExpression<Operator>>(std::move(left),
                                                                    std::move(right));
    };
    return {text, level, Operator, make, token, assignment};
}

// A token that has a level and no row here is no operator, but for "=".
inline constexpr OperatorRow operatorRows[] = {
    operatorRow<BinaryOperator::LogicalOr>("||", 0, Token::OrOr),
    operatorRow<BinaryOperator::LogicalAnd>("&&", 1, Token::AndAnd),
    operatorRow<BinaryOperator::BitOr>("|", 2, Token::Bar, Token::BarAssign),
    operatorRow<BinaryOperator::BitXor>("^", 3, Token::Caret, Token::CaretAssign),
    operatorRow<BinaryOperator::BitAnd>("&", 4, Token::Ampersand, Token::AmpersandAssign),
    operatorRow<BinaryOperator::Eq>("==", 5, Token::Equal),
    operatorRow<BinaryOperator::Ne>("!=", 5, Token::NotEqual),
    operatorRow<BinaryOperator::Lt>("<", 6, Token::Less),
    operatorRow<BinaryOperator::Le>("<=", 6, Token::LessEqual),
    operatorRow<BinaryOperator::Gt>(">", 6, Token::Greater),
    operatorRow<BinaryOperator::Ge>(">=", 6, Token::GreaterEqual),
    operatorRow<BinaryOperator::Lshift>("<<", 7, Token::ShiftLeft, Token::ShiftLeftAssign),
    operatorRow<BinaryOperator::Rshift>(">>", 7, Token::ShiftRight, Token::ShiftRightAssign),
    operatorRow<BinaryOperator::Plus>("+", 8, Token::Plus, Token::PlusAssign),
    operatorRow<BinaryOperator::Minus>("-", 8, Token::Minus, Token::MinusAssign),
    operatorRow<BinaryOperator::Multiply>("*", 9, Token::Star, Token::StarAssign),
    operatorRow<BinaryOperator::Divide>("/", 9, Token::Slash, Token::SlashAssign),
    operatorRow<BinaryOperator::Mod>("%", 9, Token::Percent, Token::PercentAssign),
};

/// The operator that a token of this kind is or assigns with; null where it is none.
const OperatorRow *findOperator(Token::Kind kind);
