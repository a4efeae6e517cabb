#pragma once

#include "expressionvalue.h"

enum class BinaryOperator {
    Lt,
    Le,
    Gt,
    Ge,
    Eq,
    Ne,
    LogicalAnd,
    LogicalOr,
    Plus,
    Minus,
    Multiply,
    Divide,
    Mod,
    Rshift,
    Lshift,
    BitAnd,
    BitXor,
    BitOr,
};

/// The value of an operator whose operands are evaluated. Objects are replaced in place by their
/// current values; then the kind of the left value alone decides how to compute, and the right value is
/// converted to that kind. The result has the size of the left value, a boolean result size 0.
/// Integers wrap modulo 2^64. Throws ParserException where a kind has no such operator, where the
/// divisor is zero once converted, and where a shift count is no signed integer.
ExpressionValue applyOperator(BinaryOperator binaryOperator, ExpressionValue &&left,
                              ExpressionValue &&right);

/// The name of the operator's class.
QLatin1StringView operatorName(BinaryOperator binaryOperator);
