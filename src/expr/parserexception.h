#pragma once

#include <string>
#include <utility>

/// The one way in which this library fails: text that is no expression, or has no value. The three
/// operations of SimpleExpressionParser turn it into a flag.
class ParserException
{
public:
    explicit ParserException(std::string message) : text(std::move(message)) {}

    /// One line, complete, without a position.
    const std::string &message() const { return text; }

private:
    std::string text;
};
