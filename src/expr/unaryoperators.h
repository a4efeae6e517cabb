#pragma once

#include "expression.h"

/// Minus: integers wrap, a boolean becomes the signed integer 0 or -1. The size is the operand's.
class NegateExpression : public UnaryExpression
{
public:
    using UnaryExpression::UnaryExpression;
    ExpressionValue evaluate() const override;

protected:
    QLatin1StringView dumpName() const override;
};

/// Whether the operand is false or zero.
class LogicalNotExpression : public UnaryExpression
{
public:
    using UnaryExpression::UnaryExpression;
    ExpressionValue evaluate() const override;

protected:
    QLatin1StringView dumpName() const override;
};

/// All 64 bits of an integer inverted.
class BitNotExpression : public UnaryExpression
{
public:
    using UnaryExpression::UnaryExpression;
    ExpressionValue evaluate() const override;

protected:
    QLatin1StringView dumpName() const override;
};
