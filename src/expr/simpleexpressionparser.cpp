#include "simpleexpressionparser.h"

#include "parserexception.h"
#include "plainarithmetic.h"
#include "resolution.h"

#include <cassert>
#include <typeinfo>

namespace
{

// What an evaluation costs, in nanoseconds.
constexpr std::uint64_t stepsPerEvaluation = 15;
constexpr std::uint64_t stepsPerPlainCharacter = 1;
constexpr std::uint64_t stepsPerPlainToken = 3;
constexpr std::uint64_t stepsPerTree = 60;
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
    const PlainValue value = evaluateSilently(text ? text : "");
    *ok = (value.*isWanted)();
    return *ok ? value : PlainValue();
}

/// The value of \a text; the void value where there is none.
PlainValue SimpleExpressionParser::evaluateSilently(const char *text)
{
    cost = stepsPerEvaluation;
    // A subclass may know names, or have added rules.
    if (typeid(*this) == typeid(SimpleExpressionParser)) {
        const PlainResult plain = evaluatePlain(text);
        cost += stepsPerPlainCharacter * plain.characters + stepsPerPlainToken * plain.tokens;
        if (plain.outcome != PlainResult::Unusual)
            return plain.value;
    }
    return evaluateWithTree(text);
}

PlainValue SimpleExpressionParser::evaluateWithTree(const char *text)
{
    PlainValue value;
    cost += stepsPerTree;
    try {
        value = evaluate(text);
    } catch (const ParserException &) {
        cost += stepsPerException;
    }
    cost += stepsPerCharacter * lexer.position() + stepsPerToken * lexer.scanned();
    return value;
}
