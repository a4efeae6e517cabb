#pragma once

#include "expression.h"
#include "parserexception.h"
#include "simpleexpressionparser.h"
#include "valueformat.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

/// Kind, size and text of a value: "signed/8 7".
inline std::string describe(const ExpressionValue &value)
{
    static const char *const kinds[] = {"boolean", "signed",   "unsigned", "string",
                                        "object",  "floating", "void"};
    return std::string(kinds[value.kind]) + "/" + std::to_string(value.size) + " " +
           toString(value).toStdString();
}

/// What \a call returns, or "! " and the message that it ends with.
template <typename Call>
std::string outcomeOf(Call call)
{
    try {
        return call();
    } catch (const ParserException &error) {
        return "! " + error.message().toStdString();
    }
}

/// Each case is an expression, " => " and what comes of it.
template <typename Call>
void expectAll(std::initializer_list<std::string> cases, Call outcome)
{
    for (const std::string &each : cases) {
        const std::string text = each.substr(0, each.find(" => "));
        EXPECT_EQ(text + " => " + outcomeOf([&] { return outcome(text.c_str()); }), each);
    }
}

/// The outcome is the value.
inline void expectValues(std::initializer_list<std::string> cases)
{
    expectAll(cases, [](const char *text) {
        SimpleExpressionParser parser;
        return describe(parser.evaluate(text));
    });
}

/// All these expressions have the same value or end with the same failure.
inline void expectEach(const std::string &expected, std::initializer_list<std::string> texts)
{
    for (const std::string &text : texts)
        expectValues({std::string(text).append(" => ").append(expected)});
}

/// The outcome is the tree.
inline void expectDumps(std::initializer_list<std::string> cases)
{
    expectAll(cases, [](const char *text) {
        SimpleExpressionParser parser;
        return parser.parse(text)->dump().toStdString();
    });
}

inline std::string repeated(const std::string &part, int times)
{
    std::string text;
    for (int i = 0; i < times; ++i)
        text += part;
    return text;
}
