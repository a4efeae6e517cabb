#include "operators.h"
#include "recordingparser.h"
#include "rows.h"

#include <cmath>

namespace
{

using Call = std::function<std::string(const std::string &)>;

/// What \a call returns for \a text, or "! " and the message that it ends with.
std::string outcomeOf(const Call &call, const std::string &text)
{
    try {
        return call(text);
    } catch (const ParserException &error) {
        return "! " + error.message();
    }
}

void expectOutcome(const Call &call, const std::vector<std::string> &texts,
                   const std::string &outcome)
{
    for (const std::string &text : texts)
        EXPECT_EQ(outcomeOf(call, text), outcome) << text.substr(0, 80);
}

/// The tokens with a blank between them.
std::string tokensOf(const std::string &text)
{
    std::string all;
    Lexer lexer;
    for (lexer.setText(text); lexer.kind() != Token::EndOfInput; lexer.next())
        all += (all.empty() ? "" : " ") + lexer.token();
    return all;
}

std::string dumpOf(const std::string &text)
{
    return RecordingParser().parse(text.c_str())->dump();
}

template <typename Parser>
std::string valueOf(const std::string &text)
{
    return describe(Parser().evaluate(text.c_str()));
}

/// The same value in every type.
std::string viewsOf(const std::string &text)
{
    const Value value = RecordingParser().evaluate(text.c_str());
    return std::to_string(value.toInt64()) + " " + std::to_string(value.toUInt64()) + " " +
           std::to_string(value.toDouble());
}

/// With a tree, and the same without one.
std::string plainValuesOf(const std::string &text)
{
    TreeOnly tree;
    std::string values = threeValues(&tree, text);
    EXPECT_EQ(threeValues(SimpleExpressionParser::instance(), text), values) << text;
    return values;
}

std::string times(int count, const std::string &text)
{
    std::string all;
    while (count-- > 0)
        all += text;
    return all;
}

}  // namespace

TEST(Expr, ComesOutAsTheFileSays)
{
    RecordingParser parser;
    const auto notesOf = [&parser](const std::string &text) {
        parser.notes.clear();
        Value value = parser.evaluate(text.c_str());
        value.resolve();
        return parser.notes + describe(value);
    };
    const std::map<std::string, Call> calls = {
        {"number", [](const std::string &text) { return std::to_string(readNumber(text)); }},
        {"tree", dumpOf},
        {"value", valueOf<RecordingParser>},
        {"value to a parser without names", valueOf<SimpleExpressionParser>},
        {"what a parser is asked", notesOf},
        {"unsigned, signed and boolean", plainValuesOf},
        {"signed, unsigned and floating", viewsOf},
    };
    expectRows("expressions", [&](const std::string &heading, const std::string &text) {
        return outcomeOf(calls.at(heading), text);
    });
}

TEST(Expr, ComesOutTheSameWithATreeAndWithout)
{
    const std::vector<std::string> operators = {
        "*",  "/",  "%",  "+",  "-", "<<", ">>", "<",  ">",
        "<=", ">=", "==", "!=", "&", "^",  "|",  "&&", "||"};
    const auto around = [](std::string before, const std::string &text, const char *behind) {
        return before.append(text).append(behind);
    };
    for (const std::string &one : operators) {
        for (const std::string &other : operators)
            plainValuesOf(around(around("9 ", one, " -5\xA0"), other, "0xA"));
        const std::int32_t level = findOperator(one[0], one[1])->level;
        if (level > 6 || (level > 1 && level < 5)) {
            EXPECT_EQ(dumpOf(around("1", one, "=2")),
                      around("=(Constant(1),", dumpOf(around("1", one, "2")), ")"));
        }
    }
    expectOutcome(plainValuesOf, {"\"\xE4\">\"b\""}, "none none 1");
    expectOutcome(plainValuesOf, {times(999, " ") + "8"}, "8 8 none");
    RecordingParser knowing;
    EXPECT_EQ(threeValues(&knowing, "(a=8)+0"), "8 8 none");
}

TEST(ExprLexer, TheFirstRuleThatMatchesWins)
{
    expectOutcome(tokensOf, {"a<<=b->+++"}, "a <<= b -> ++ +");
    expectOutcome(tokensOf, {"1.e5"}, "1 . e5");
    expectOutcome(tokensOf, {"0b 0b12"}, "0b 0b1 2");
    expectOutcome(tokensOf, {"0xg@1-@"}, "0x g @1 - @");
    expectOutcome(tokensOf, {"\t\n\v\f\r \xA0 1\xA0"}, "1");
    expectOutcome(tokensOf, {"1 \xE4 1"}, "! unrecognised token: \xE4 1");
}

TEST(ExprLexer, AddedRulesComeLastAndInvalidOnesNever)
{
    Lexer lexer;
    for (const char *invalid : {"a|b", "(#)", "#?", "[#", "#\\", "*#", "[]#", "#."})
        lexer.addToken(invalid, 99, 10);
    lexer.addToken("#[^;\\s]*", 100, 10);
    lexer.addToken("\\+\\+", 101, 10);
    lexer.addToken("'[a-c\\-\\]x-]+'", 102, 10);
    EXPECT_EQ(lexer.rules().back().pattern.text(), "'[a-c\\-\\]x-]+'");
    lexer.setText(std::string("#x!; # ++ 'ab-]c'"));  // of which it has its own copy
    for (const int kind : {100, 10, 100, 21, 102}) {
        EXPECT_EQ(lexer.kind(), kind);
        lexer.next();
    }
    EXPECT_THROW(lexer.setText("  'd'"), ParserException);
    EXPECT_EQ(lexer.position(), 2U);
}

TEST(ExprParser, OneParserReadsOneTextAfterTheOther)
{
    SimpleExpressionParser parser;
    const std::unique_ptr<Expression> first = parser.parse("1 + 2");
    EXPECT_THROW(parser.parse("((3"), ParserException);
    EXPECT_EQ(parser.parse(nullptr), nullptr);
    EXPECT_EQ(describe(parser.evaluate("")), "void16");
    EXPECT_EQ(describe(first->evaluate()), "int64 3");
    for (const auto &[text, behind] : {std::pair("1\t", 2U), {"1 23 4", 4U}}) {
        std::size_t position = 99;
        parser.parse(text, &position);
        EXPECT_EQ(position, behind) << text;
    }
}

TEST(ExprParser, DepthAndSizeAreBounded)
{
    const Call value = valueOf<SimpleExpressionParser>;
    expectOutcome(value, {times(1000, "(") + "1" + times(1000, ")"), times(2000, "- ") + "1"},
                  "int64 1");
    expectOutcome(value, {"1" + times(999999, "+1")}, "int64 1000000");
    expectOutcome(value, {"x" + times(3999, "[0]"), "x" + times(10, "++")}, "! x symbol not found");
    expectOutcome(value, {"(int" + times(3998, "*") + ")1", "(int" + times(3998, "[1]") + ")1"},
                  "! cannot cast");
    expectOutcome(value,
                  {"x" + times(4000, "[0]"), "x" + times(4000, "()"), "x" + times(4000, "=1"),
                   "(int" + times(4000, "*") + ")1", "(int" + times(4000, "[1]") + ")1",
                   times(9999, "("), times(9999, "- "), times(9999, "(int)"), times(9999, "1+2*(")},
                  "! expression nested too deeply");
    expectOutcome(value,
                  {times(99, "--") + "x", "1" + times(2100000, "+1"), "a" + times(2100000, "::a"),
                   "(register 8 " + times(2100000, "A 0 1 ") + ";)1",
                   '"' + times(70000000, "a") + '"'},
                  "! expression too large");
    EXPECT_EQ(dumpOf("1" + times(99999, "<1")).size(), 99999 * 26U + 11);
}

TEST(ExprValues, HaveATextInEveryBase)
{
    Value value = Value::fromInt64(0xAB, 2);
    EXPECT_EQ(toString(value, 2), "0b10101011");
    value.bitWidth = 9;
    EXPECT_EQ(toString(value, 16, true), "0x0ab");
    EXPECT_EQ(toString(value, 8, true), "0253");
    EXPECT_EQ(toString(Value::fromDouble(1234567)), "1.23457e+06");
    EXPECT_EQ(toString(Value::fromDouble(std::nan(""))), "NaN");
    EXPECT_EQ(toString(Value::fromDouble(-HUGE_VAL)), "Inf");
    EXPECT_EQ(toString(Value::fromDouble(1e300), 10, false, false, "%.1f").size(), 303U);
    EXPECT_EQ(Value::fromDouble(std::nan("")).toInt64(), INT64_MIN);
    EXPECT_EQ(describe(RecordingParser().parse("*p")->asBinary()->right->evaluate()), "uint16 0");
    for (const auto &[code, text] :
         {std::pair(32, " "), {126, "~"}, {127, "\\u007f"}, {0x1001F, "\\u001f"}})
        EXPECT_EQ(toString(Value::fromInt64(code), 10, false, true), text);
}

TEST(ExprTree, HoldsNodesOfOtherClasses)
{
    class Answer : public Expression
    {
        Value evaluate() const override { return Value::fromInt64(42); }
        std::string dump() const override { return "42"; }
    };
    const PlusExpression sum(std::make_unique<NegateExpression>(std::make_unique<Answer>()),
                             std::make_unique<Answer>());
    EXPECT_EQ(describe(sum.evaluate()), "int64 0");
    EXPECT_EQ(sum.dump(), "PlusExpression(NegateExpression(42),42)");
    EXPECT_EQ(sum.height(), 3);
}
