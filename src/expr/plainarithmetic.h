#pragma once

#include "expressionvalue.h"

/// What comes of an evaluation without a tree.
struct PlainResult {
    enum Outcome {
        Done,     ///< the value is what the parser would give
        Failure,  ///< the parser would find no value either
        Unusual,  ///< nothing is known: this takes the parser
    };

    Outcome outcome = Unusual;
    PlainValue value = {};       ///< void unless it is done
    std::size_t characters = 0;  ///< that were looked at
    std::size_t tokens = 0;      ///< among them
};

/// The value of an expression that is made of whole numbers, operators that compute, and parentheses,
/// as a SimpleExpressionParser finds it. \a text must not be null.
PlainResult evaluatePlain(const char *text);
