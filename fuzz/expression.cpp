// Expressions: parse, dump, evaluate, with a parser that knows no names and one that knows all.

#include "expression.h"
#include "check.h"
#include "parserexception.h"
#include "recordingparser.h"

#include <algorithm>

namespace
{

/// The tree, and the value in words or the message.
std::string outcomeOf(ExpressionParser *parser, const std::string &text, Value *value)
{
    // What a step such as ++ stands for doubles with each of them when it is written out.
    const bool canDump =
        std::ranges::count_if(text, [](char c) { return c == '+' || c == '-' || c == '='; }) < 20;
    std::string words;
    try {
        if (const auto root = parser->parse(text.c_str()); root && canDump)
            words = root->dump();
        *value = parser->evaluate(text.c_str());
        return words + ' ' + describe(*value) + toString(*value, 16, true);
    } catch (const ParserException &error) {
        *value = {};
        return words + " ! " + error.message();
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    // A text ends at its first NUL.
    const std::string text(std::string(reinterpret_cast<const char *>(data), size).c_str());
    SimpleExpressionParser simple;
    Value value;
    const std::string first = outcomeOf(&simple, text, &value);
    bool isSigned = false;
    bool isUnsigned = false;
    bool isBool = false;
    if (simple.evaluateSigned(text.c_str(), &isSigned) != (isSigned ? value.toInt64() : 0) ||
        simple.evaluateUnsigned(text.c_str(), &isUnsigned) != (isUnsigned ? value.toUInt64() : 0) ||
        simple.evaluateBool(text.c_str(), &isBool) != (isBool && value.toBool()) ||
        isSigned != value.isNumeric() || isUnsigned != isSigned || isBool != value.isBoolean())
        requireEqual(text, "is evaluated in different ways");
    requireEqual(outcomeOf(&simple, text, &value), first);

    RecordingParser knowing;
    outcomeOf(&knowing, text, &value);
    return 0;
}
