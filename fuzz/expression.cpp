// Expressions: parse, dump, evaluate. What is computed without a tree ends as it does with one.

#include "expression.h"
#include "check.h"
#include "parserexception.h"
#include "plainarithmetic.h"
#include "recordingparser.h"

#include <algorithm>

namespace
{

/// Goes the long way, as any class does that may have rules of its own.
class TreeOnly : public SimpleExpressionParser
{
};

std::string words(const Value &value)
{
    return describe(value) + ' ' + std::to_string(value.payload);
}

/// The value in words, once the tree was dumped, or "failure".
std::string outcomeOf(ExpressionParser *parser, const std::string &text)
{
    // What a step such as ++ stands for doubles with each of them when it is written out.
    const bool canDump =
        std::ranges::count_if(text, [](char c) { return c == '+' || c == '-' || c == '='; }) < 20;
    try {
        if (const auto root = parser->parse(text.c_str()); root && canDump)
            root->dump();
        return words(parser->evaluate(text.c_str()));
    } catch (const ParserException &) {
        return "failure";
    }
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
    RecordingParser knowing;
    outcomeOf(&knowing, text);
    const PlainResult plain = evaluatePlain(text.c_str());
    if (plain.outcome != PlainResult::Unusual && !text.empty())
        requireEqual(plain.outcome == PlainResult::Failure ? "failure" : words(Value(plain.value)),
                     outcomeOf(&tree, text));
    requireEqual(flagsOf(&simple, text), flagsOf(&tree, text));
    return 0;
}
