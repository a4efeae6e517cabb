// Expressions: parse, dump, evaluate. What is computed without a tree ends as it does with one.

#include "expression.h"
#include "check.h"
#include "parserexception.h"
#include "recordingparser.h"

#include <algorithm>

namespace
{

/// Parses, evaluates and dumps. What a step such as ++ stands for doubles with each of them when it
/// is written out.
void useTree(const std::string &text)
{
    RecordingParser knowing;
    try {
        const auto root = knowing.parse(text.c_str());
        if (!root)
            return;
        if (std::ranges::count_if(text, [](char c) { return c == '+' || c == '-' || c == '='; }) <
            20)
            root->dump();
        root->evaluate();
    } catch (const ParserException &) {
        // Most texts are no expressions.
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    useTree(text);
    SimpleExpressionParser simple;
    TreeOnly tree;
    requireEqual(threeValues(&simple, text), threeValues(&tree, text));
    return 0;
}
