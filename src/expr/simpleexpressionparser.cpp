#include "simpleexpressionparser.h"

#include "parserexception.h"
#include "resolution.h"

#include <cassert>

namespace
{

// Prices of what an evaluation does, in nanoseconds.
constexpr std::uint64_t stepsPerEvaluation = 50;
constexpr std::uint64_t stepsPerCharacter = 3;
constexpr std::uint64_t stepsPerToken = 18;
constexpr std::uint64_t stepsPerException = 1500;

}  // namespace

SimpleExpressionParser *SimpleExpressionParser::instance()
{
    static auto *const parser = new SimpleExpressionParser;
    return parser;
}

ExpressionObject *SimpleExpressionParser::lookupScopedSymbol(const std::vector<std::string> &parts)
{
    throw ParserException(joined(parts).append(" symbol not found"));
}

ExpressionObject *SimpleExpressionParser::lookupSymbol(const char *name)
{
    throw ParserException(std::string(name).append(" symbol not found"));
}

void SimpleExpressionParser::fail(const char *message)
{
    throw ParserException(message);
}

std::uint64_t SimpleExpressionParser::evaluateUnsigned(const char *text, bool *ok)
{
    return evaluateWanted(text, &PlainValue::isNumeric, ok).toUInt64();
}

std::int64_t SimpleExpressionParser::evaluateSigned(const char *text, bool *ok)
{
    return evaluateWanted(text, &PlainValue::isNumeric, ok).toInt64();
}

bool SimpleExpressionParser::evaluateBool(const char *text, bool *ok)
{
    return evaluateWanted(text, &PlainValue::isBoolean, ok).toBool();
}

/// The value of \a text if it has one and \a isWanted accepts it, else the void value, which every
/// conversion reads as 0.
PlainValue SimpleExpressionParser::evaluateWanted(const char *text,
                                                  bool (PlainValue::*isWanted)() const, bool *ok)
{
    assert(ok);
    *ok = false;
    PlainValue value;
    cost = stepsPerEvaluation;
    try {
        value = evaluate(text);
        *ok = (value.*isWanted)();
    } catch (const ParserException &) {
        // No value either; the caller decides what that means.
        cost += stepsPerException;
    }
    cost += stepsPerCharacter * lexer.position() + stepsPerToken * lexer.scanned();
    return *ok ? value : PlainValue();
}
