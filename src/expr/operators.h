#pragma once

#include "expression.h"
#include "lexer.h"

// How values are computed, and the nodes that do so. What computes puts its result in the place of
// its only or its left operand and returns null, or returns why there is none, a text that is never
// released.

/// Integers wrap, a boolean becomes the signed integer 0 or -1.
const char *negate(PlainValue *operand);
/// Whether the operand is false or zero, as a boolean.
const char *logicalNot(PlainValue *operand);
/// Inverts all 64 bits of an integer.
const char *bitNot(PlainValue *operand);

/// An operator with two operands. The kind of the left value alone decides how to compute, and the
/// right value is converted to that kind. The result has the size of the left value, a boolean
/// result size 0. Integers wrap modulo 2^64. There is no result where a kind has no such operator,
/// where the divisor is zero once converted, and where a shift count is no signed integer.
struct OperatorRow {
    const char *text;
    std::int32_t level;  ///< of its token
    Token::Kind token;
    Token::Kind assignment;  ///< the token that assigns what this computes; 0: none does
    const char *name;        ///< of its class
    const char *(*apply)(PlainValue *left, const PlainValue &right);
    OwnedExpression (*make)(OwnedExpression left, OwnedExpression right);
};

/// The operator that a token of this kind is or assigns with; null where it is none.
const OperatorRow *findOperator(Token::Kind kind);
/// The operator that two characters, or the first of them, are written as; null where it is none.
const OperatorRow *findOperator(char first, char second);

/// The value of \a root, which must be one of the operators with two operands below. Both are always
/// evaluated, the right one first, and a chain that leans to the left takes no stack. Objects count
/// as what they are worth at the moment, and strings are compared as the bytes of their texts.
ExpressionValue evaluateOperators(const BinaryExpression &root);

template <Token::Kind Operator>
class BinaryOperatorExpression final : public BinaryExpression
{
public:
    BinaryOperatorExpression(OwnedExpression leftOperand, OwnedExpression rightOperand)
        : BinaryExpression(std::move(leftOperand), std::move(rightOperand), findOperator(Operator))
    {
    }
    ExpressionValue evaluate() const override { return evaluateOperators(*this); }
    const char *dumpName() const override { return computes->name; }
};

using LtExpression = BinaryOperatorExpression<Token::Less>;
using LeExpression = BinaryOperatorExpression<Token::LessEqual>;
using GtExpression = BinaryOperatorExpression<Token::Greater>;
using GeExpression = BinaryOperatorExpression<Token::GreaterEqual>;
using EqExpression = BinaryOperatorExpression<Token::Equal>;
using NeExpression = BinaryOperatorExpression<Token::NotEqual>;
using LogicalAndExpression = BinaryOperatorExpression<Token::AndAnd>;
using LogicalOrExpression = BinaryOperatorExpression<Token::OrOr>;
using PlusExpression = BinaryOperatorExpression<Token::Plus>;
using MinusExpression = BinaryOperatorExpression<Token::Minus>;
using MultiplyExpression = BinaryOperatorExpression<Token::Star>;
using DivideExpression = BinaryOperatorExpression<Token::Slash>;
using ModExpression = BinaryOperatorExpression<Token::Percent>;
using RshiftExpression = BinaryOperatorExpression<Token::ShiftRight>;
using LshiftExpression = BinaryOperatorExpression<Token::ShiftLeft>;
using BitAndExpression = BinaryOperatorExpression<Token::Ampersand>;
using BitXorExpression = BinaryOperatorExpression<Token::Caret>;
using BitOrExpression = BinaryOperatorExpression<Token::Bar>;

/// What \a apply makes of the value of \a operand, which counts as above.
ExpressionValue evaluateOperator(const Expression &operand, const char *(*apply)(PlainValue *));

class NegateExpression : public UnaryExpression
{
public:
    using UnaryExpression::UnaryExpression;
    ExpressionValue evaluate() const override { return evaluateOperator(*operand, negate); }
    const char *dumpName() const override { return "NegateExpression"; }
};

class LogicalNotExpression : public UnaryExpression
{
public:
    using UnaryExpression::UnaryExpression;
    ExpressionValue evaluate() const override { return evaluateOperator(*operand, logicalNot); }
    const char *dumpName() const override { return "LogicalNotExpression"; }
};

class BitNotExpression : public UnaryExpression
{
public:
    using UnaryExpression::UnaryExpression;
    ExpressionValue evaluate() const override { return evaluateOperator(*operand, bitNot); }
    const char *dumpName() const override { return "BitNotExpression"; }
};
