#pragma once

#include <QString>

#include <utility>

/// The one way in which this library fails: text that is no expression, and an expression that
/// has no value. It leaves the library through parse() and evaluate() only; the three operations
/// of SimpleExpressionParser turn it into a flag.
class ParserException
{
public:
    explicit ParserException(QString message) : text(std::move(message)) {}
    explicit ParserException(QLatin1StringView message) : text(message) {}

    /// One line, complete, without a position.
    const QString &message() const { return text; }

private:
    QString text;
};
