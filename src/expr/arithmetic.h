#pragma once

#include "expressionvalue.h"

enum class UnaryOperator { Negate, LogicalNot, BitNot };

/// The comparisons come first.
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

// The rules by which values are computed, for all that computes. An operator puts its result in
// the place of its only or its left operand and returns null, or returns why there is none, a text
// that is never released.

/// Minus: integers wrap, a boolean becomes the signed integer 0 or -1. Not: whether the operand is
/// false or zero. Both of these and the inversion of all 64 bits keep the operand's size, but for
/// not, whose result is a boolean.
const char *apply(UnaryOperator unaryOperator, PlainValue *operand);

/// The kind of the left value alone decides how to compute, and the right value is converted to that
/// kind. The result has the size of the left value, a boolean result size 0. Integers wrap modulo
/// 2^64. There is no result where a kind has no such operator, where the divisor is zero once
/// converted, and where a shift count is no signed integer.
const char *apply(BinaryOperator binaryOperator, PlainValue *left, const PlainValue &right);

/// The same for whole values: objects count as what they are worth at the moment, and strings are
/// compared as the bytes of their texts. Throws ParserException where there is no result.
ExpressionValue applyOperator(UnaryOperator unaryOperator, ExpressionValue operand);
ExpressionValue applyOperator(BinaryOperator binaryOperator, ExpressionValue &&left,
                              ExpressionValue &&right);

/// The names of the operators' classes.
const char *operatorName(UnaryOperator unaryOperator);
const char *operatorName(BinaryOperator binaryOperator);
