// Arithmetic without a tree: it ends as the parser does, or leaves the text to it.

#include "check.h"
#include "plainarithmetic.h"
#include "recordingparser.h"

namespace
{

/// Goes the long way, as any class does that may have rules of its own.
class TreeOnly : public SimpleExpressionParser
{
};

std::string outcomeOf(ExpressionParser *parser, const std::string &text)
{
    try {
        const Value value = parser->evaluate(text.c_str());
        return describe(value) + ' ' + std::to_string(value.payload);
    } catch (const ParserException &) {
        return "failure";
    }
}

std::string outcomeOf(const PlainResult &plain)
{
    const Value value(plain.value);
    return plain.outcome == PlainResult::Failure
               ? "failure"
               : describe(value) + ' ' + std::to_string(value.payload);
}

/// What the three operations give, each with its flag.
std::string flagsOf(SimpleExpressionParser *parser, const std::string &text)
{
    std::string all;
    const auto add = [&](auto evaluate) {
        bool ok = false;
        const auto value = (parser->*evaluate)(text.c_str(), &ok);
        all += std::to_string(value) + (ok ? " ok " : " ");
    };
    add(&SimpleExpressionParser::evaluateUnsigned);
    add(&SimpleExpressionParser::evaluateSigned);
    add(&SimpleExpressionParser::evaluateBool);
    return all;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    // A text ends at its first NUL.
    const std::string text(std::string(reinterpret_cast<const char *>(data), size).c_str());
    SimpleExpressionParser simple;
    TreeOnly tree;
    const PlainResult plain = evaluatePlain(text.c_str());
    if (plain.outcome != PlainResult::Unusual && !text.empty())
        requireEqual(outcomeOf(plain), outcomeOf(&tree, text));
    requireEqual(flagsOf(&simple, text), flagsOf(&tree, text));
    return 0;
}
