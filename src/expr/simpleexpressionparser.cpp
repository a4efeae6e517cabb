#include "simpleexpressionparser.h"

#include "plainarithmetic.h"
#include "resolution.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <typeinfo>

// Prices in nanoseconds, as measured in optimised code. Leaving an open call by an exception costs
// more than all that the call does.
constexpr std::uint64_t stepsPerEvaluation = 15;
constexpr std::uint64_t stepsPerPlainToken = 6;
constexpr std::uint64_t stepsPerToken = 28;      ///< its nodes and values included
constexpr std::uint64_t stepsPerLateToken = 60;  ///< more, where the nodes fill the caches
constexpr std::size_t earlyTokens = 16'384;
constexpr std::uint64_t stepsPerCharacter = 1;
constexpr std::size_t unreadCharactersPerStep = 32;
constexpr std::uint64_t stepsPerException = 1500;
constexpr std::uint64_t stepsPerCallOfReading = 1000;
constexpr std::uint64_t stepsPerLevelOfTree = 400;

SimpleExpressionParser *SimpleExpressionParser::instance()
{
    static auto *const parser = new SimpleExpressionParser;
    return parser;
}

ExpressionObject *SimpleExpressionParser::lookupScopedSymbol(const std::vector<std::string> &parts)
{
    throw ParserException(joined(parts).append(" symbol not found"));
}

std::string SimpleExpressionParser::failureOf(const char *text, bool hasValue)
{
    try {
        const PlainValue value = evaluate(text);
        if (hasValue)
            return lexer.kind() == Token::EndOfInput ? "" : "text is left over behind it";
        return value.isNumeric()                  ? "a number is no truth value"
               : value.isBoolean()                ? "a truth value is no number"
               : value.kind == PlainValue::String ? "a string is no number and no truth value"
                                                  : "it is empty";
    } catch (const ParserException &error) {
        return error.message();
    }
}

PlainValue SimpleExpressionParser::evaluateWanted(const char *text,
                                                  bool (PlainValue::*isWanted)() const, bool *ok)
{
    assert(ok);
    text = text ? text : "";
    PlainResult plain;
    // A subclass may know names, or have added rules.
    if (typeid(*this) == typeid(SimpleExpressionParser))
        plain = evaluatePlain(text);
    cost = stepsPerEvaluation + stepsPerCharacter * plain.characters +
           stepsPerPlainToken * plain.tokens;
    if (plain.outcome == PlainResult::Unusual)
        plain.value = evaluateWithTree(text);
    *ok = (plain.value.*isWanted)();
    return *ok ? plain.value : PlainValue();
}

PlainValue SimpleExpressionParser::evaluateWithTree(const char *text)
{
    PlainValue value;
    try {
        value = evaluate(text);
    } catch (const ParserException &error) {
        // The message can hold the rest of the text.
        cost += stepsPerException + stepsPerCharacter * error.message().size();
        cost += treeHeight != 0 ? stepsPerLevelOfTree * static_cast<std::uint64_t>(treeHeight)
                                : stepsPerCallOfReading * static_cast<std::uint64_t>(readingDepth);
    }
    cost += stepsPerCharacter * lexer.position() + stepsPerToken * lexer.scanned();
    cost += stepsPerLateToken * (std::max(lexer.scanned(), earlyTokens) - earlyTokens);
    cost += std::strlen(text) / unreadCharactersPerStep;
    return value;
}
