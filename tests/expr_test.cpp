#include "operators.h"
#include "recordingparser.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{

/// Texts and what becomes of each: what a call returns, or "! " and the message that it ends with.
struct Row {
    std::vector<std::string> texts;
    std::string outcome;
};

void expectRows(const std::function<std::string(const char *)> &outcomeOf,
                const std::vector<Row> &rows)
{
    for (const Row &row : rows) {
        for (const std::string &text : row.texts) {
            std::string outcome;
            try {
                outcome = outcomeOf(text.c_str());
            } catch (const ParserException &error) {
                outcome = "! " + error.message();
            }
            EXPECT_EQ(outcome, row.outcome) << text.substr(0, 80);
        }
    }
}

/// The tokens with a blank between them.
std::string tokensOf(const char *text)
{
    std::string all;
    Lexer lexer;
    for (lexer.setText(text); lexer.kind() != Token::EndOfInput; lexer.next())
        all += (all.empty() ? "" : " ") + lexer.token();
    return all;
}

std::string dumpOf(const char *text)
{
    return RecordingParser().parse(text)->dump();
}

/// The value to a parser that knows every name.
std::string valueOf(const char *text)
{
    return describe(RecordingParser().evaluate(text));
}

/// The value to a parser that knows no name.
std::string plainValueOf(const char *text)
{
    return describe(SimpleExpressionParser().evaluate(text));
}

std::string times(int count, const std::string &text)
{
    std::string all;
    while (count-- > 0)
        all += text;
    return all;
}

}  // namespace

TEST(ExprLexer, KindsAreNumberedAndHavePrecedences)
{
    Lexer lexer;
    int kind = 3;
    std::string precedences;
    lexer.setText(
        "12 0x1F 0b10 1.5 \"a b\" a_$1 @r0 ; : :: ( ) [ ] { } . -> ++ -- ~ ! * / % + - "
        "<< >> >>> < <= > >= == != & ^ | && || ? = += -= *= /= %= >>= <<= >>>= &= ^= |= ,");
    for (; lexer.kind() != Token::EndOfInput; lexer.next()) {
        EXPECT_EQ(lexer.kind(), kind++) << lexer.token();
        precedences += ' ' + std::to_string(lexer.precedence());
    }
    EXPECT_EQ(precedences, times(22, " 10") + " 9 9 9 8 8 7 7 7 6 6 6 6 5 5 4 3 2 1 0 -1 -2" +
                               times(11, " -3") + " -4");
    std::string text = "1 + ";
    lexer.setText(text);
    text = "2 - ";  // the lexer has its own copy
    lexer.next();
    EXPECT_EQ(lexer.token(), "+");
    lexer.next();
    EXPECT_EQ(lexer.precedence(), 10);
}

TEST(ExprLexer, TheFirstRuleThatMatchesWins)
{
    const std::vector<Row> rows = {
        {{"a<<=b->+++"}, "a <<= b -> ++ +"}, {{"1.e5"}, "1 . e5"},
        {{"0b 0b12"}, "0b 0b1 2"},           {{"0xg@1-@"}, "0x g @1 - @"},
        {{"\t\n\v\f\r \xA0 1\xA0"}, "1"},    {{"1 \xE4 1"}, "! unrecognised token: \xE4 1"},
    };
    expectRows(tokensOf, rows);
}

TEST(ExprLexer, AddedRulesComeLastAndInvalidOnesNever)
{
    Lexer lexer;
    for (const char *invalid : {"a|b", "(#)", "#?", "[#", "#\\", "*#", "[]#", "x*"})
        lexer.addToken(invalid, 99, 10);
    lexer.addToken("#[^;\\s]*", 100, 10);
    lexer.addToken("\\+\\+", 101, 10);
    lexer.addToken("'[a-c\\-\\]x-]+'", 102, 10);
    EXPECT_EQ(lexer.rules().back().pattern.text(), "'[a-c\\-\\]x-]+'");
    EXPECT_EQ(lexer.rules().size(), Lexer().rules().size() + 11);
    lexer.setText("#x!; # ++ 'ab-]c'");
    for (const int kind : {100, 10, 100, 21, 102}) {
        EXPECT_EQ(lexer.kind(), kind);
        lexer.next();
    }
    EXPECT_THROW(lexer.setText("  'd'"), ParserException);
    EXPECT_EQ(lexer.position(), 2U);
}

TEST(ExprLexer, ReadsNumbersWithoutCheckingDigits)
{
    const std::vector<Row> rows = {
        {{"", "0x", "-"}, "0"},
        {{"08", "0b1000", "+8"}, "8"},
        {{"0x1f"}, "31"},
        {{"1Z"}, "45"},
        {{"\t-012"}, "18446744073709551606"},
        {{"18446744073709551617"}, "1"},
    };
    expectRows([](const char *text) { return std::to_string(readNumber(text)); }, rows);
}

TEST(ExprParser, MakesTrees)
{
    const std::vector<Row> rows = {
        {{"1-2+3"}, "PlusExpression(MinusExpression(Constant(1),Constant(2)),Constant(3))"},
        {{"1*=2=3"}, "=(Constant(1),MultiplyExpression(Constant(1),=(Constant(2),Constant(3))))"},
        {{"0xffffffffffffffff"}, "Constant(-1)"},
        {{"(3)"}, "Constant(3)"},
        {{"1.5e3"}, "Constant(1.5)"},
        {{"\"a\\n\""}, "Constant(a\\n)"},
        {{"@r0", "::r0"}, "Identifier(r0)"},
        {{"sizeofx"}, "Identifier(sizeofx)"},
        {{"sizeof(1)"}, "sizeof(Constant(1))"},
        {{"addressof(\"a.c\",010)"}, "addressof(\"a.c\", 8)"},
        {{"&1&2"}, "BitAndExpression(&Constant(1),Constant(2))"},
        {{"++1", "1++", "1+=1"}, "=(Constant(1),PlusExpression(Constant(1),Constant(1)))"},
        {{"--1", "1--", "1-=1"}, "=(Constant(1),MinusExpression(Constant(1),Constant(1)))"},
        {{"a.b->c::d"}, "Dot(Dot(Identifier(a),Identifier(b)),Identifier(c::d))"},
        {{"-*1[2]"},
         "NegateExpression(LeftSquareBracket(LeftSquareBracket(Constant(1),Constant(2)),"
         "Constant(0)))"},
        {{"1(2,3 -4,)()"}, "Constant(1)(Constant(2)Constant(3)NegateExpression(Constant(4)))()"},
        {{"1(2*3)"}, "Constant(1)(Constant(2)LeftSquareBracket(Constant(3),Constant(0)))"},
    };
    expectRows(dumpOf, rows);
}

TEST(ExprParser, SyntaxErrors)
{
    const std::vector<Row> rows = {
        {{" ", ")", "1(,)", "1["}, "! expression expected"},
        {{"sizeof 1", "addressof"}, "! '(' expected"},
        {{"(1", "sizeof(1", "addressof(\"a\",1", "(int 1"}, "! ')' expected"},
        {{"addressof(a"}, "! string expected"},
        {{"addressof(\"a\" 1)"}, "! ',' expected"},
        {{"addressof(\"a\",0x1)"}, "! int expected"},
        {{"1[2)"}, "! expected ']'"},
        {{"a->", "::1", "a.::b"}, "! identifier expected"},
        {{"a::", "::a::1"}, "! identifier expected after '::'"},
        {{"1, 2", "1 >>> 2"}, "! operator not supported"},
        {{"1 ? #"}, "! unrecognised token: #"},
    };
    expectRows(dumpOf, rows);
}

TEST(ExprParser, OneParserReadsOneTextAfterTheOther)
{
    SimpleExpressionParser parser;
    const std::unique_ptr<Expression> first = parser.parse("1 + 2");
    EXPECT_THROW(parser.parse("((3"), ParserException);
    EXPECT_EQ(parser.parse(nullptr), nullptr);
    EXPECT_EQ(describe(parser.evaluate("")), "void16");
    EXPECT_EQ(describe(first->evaluate()), "int64 3");
    for (const auto &[text, behind] : {std::pair("1\t", 2U), {"1 23 4", 4U}, {"", 0U}}) {
        std::size_t position = 99;
        parser.parse(text, &position);
        EXPECT_EQ(position, behind) << text;
    }
}

TEST(ExprParser, DepthAndSizeAreBounded)
{
    const std::vector<Row> rows = {
        {{times(1000, "(") + "1" + times(1000, ")"), times(2000, "- ") + "1"}, "int64 1"},
        {{"1" + times(999999, "+1")}, "int64 1000000"},
        {{"x" + times(3999, "[0]"), "x" + times(3999, "()"), "x" + times(3999, "=1"),
          "x" + times(10, "++")},
         "! x symbol not found"},
        {{"(int" + times(3998, "*") + ")1", "(int" + times(3998, "[1]") + ")1"}, "! cannot cast"},
        {{"x" + times(4000, "[0]"), "x" + times(4000, "()"), "x" + times(4000, "=1"),
          "(int" + times(4000, "*") + ")1", "(int" + times(4000, "[1]") + ")1", times(9999, "("),
          times(9999, "- "), times(9999, "1["), times(9999, "1("), times(9999, "(int)"),
          times(9999, "(int["), times(9999, "1+2*(")},
         "! expression nested too deeply"},
        {{"x" + times(99, "++"), times(99, "--") + "x", "1" + times(2100000, "+1"),
          "a" + times(2100000, "::a"), "(register 8 " + times(2100000, "A 0 1 ") + ";)1",
          '"' + times(70000000, "a") + '"'},
         "! expression too large"},
    };
    expectRows(plainValueOf, rows);
    EXPECT_EQ(dumpOf(("1" + times(99999, "<1")).c_str()).size(), 99999 * 26U + 11);
}

TEST(ExprTypes, EndAtTheWordThatCompletesThem)
{
    const std::vector<Row> rows = {
        {{"(volatile signed char)1"}, "(char)Constant(1)"},
        {{"(const)1"}, "(int)Constant(1)"},
        {{"(unsigned signed)1"}, "(unsigned int)Constant(1)"},
        {{"(long unsigned long)1"}, "(unsigned long long)Constant(1)"},
        {{"(const unsigned size_t)1"}, "(size_t)Constant(1)"},
        {{"(struct point*)1"}, "(struct point*)Constant(1)"},
        {{"(int*[1+2]*)1"}, "(int*[PlusExpression(Constant(1),Constant(2))]*)Constant(1)"},
        {{"(int)1 + 2"}, "(int)PlusExpression(Constant(1),Constant(2))"},
        {{"(int[4)1"}, "! ']' expected"},
        {{"(short int)1", "(const x)1"}, "! ')' expected"},
    };
    expectRows(dumpOf, rows);
}

TEST(ExprTypes, StructuresAndRegisters)
{
    const std::vector<Row> rows = {
        {{"(struct { int a; char b : 3; size_t; })1"}, "(int a;char b:3;size_t ;)Constant(1)"},
        {{"(struct {short:010;long c:0;}*)1"}, "(short :8;long c;*)Constant(1)"},
        {{"(struct line)1"}, "! struct type not found"},
        {{"(struct 1)1"}, "! '{' expected"},
        {{"(struct { int a : x; })1"}, "! integer must follow ':'"},
        {{"(struct {"}, "! struct parse error"},
        {{"(struct { int a, b; })1"}, "! ';' expected"},
        {{"(register 4294967295 \"a b\" 010 2;*)1"}, "(-1 \"a b\" 8 2*)Constant(1)"},
        {{"(register x)1"}, "! size expected"},
        {{"(register 8)1"}, "! fieldname expected"},
        {{"(register 8 A 0x1 1;)1"}, "! bitoffset expected"},
        {{"(register 8 A 0)1"}, "! bitsize expected"},
    };
    expectRows(dumpOf, rows);
}

TEST(ExprOperators, TheLeftKindDecides)
{
    const std::vector<Row> rows = {
        {{"7%-2", "2>>65"}, "int64 1"},
        {{"3+-1.9", "1+(1==1)", "2+\"9\""}, "int64 2"},
        {{"-7/2"}, "int64 -3"},
        {{"-8>>1"}, "int64 -4"},
        {{"12&10"}, "int64 8"},
        {{"12|10"}, "int64 14"},
        {{"12^10"}, "int64 6"},
        {{"9223372036854775807+1", "4611686018427387904*2", "-9223372036854775808/-1", "1<<-1"},
         "int64 -9223372036854775808"},
        {{"-9223372036854775808%-1"}, "int64 0"},
        {{"3.5-(1==1)", "5.0/2", "2.5+\"9\"", "1.25*2"}, "float64 2.5"},
        {{"-1.5"}, "float64 -1.5"},
        {{"(1==1)+255", "(1==2)||1"}, "bool true"},
        {{"(1==1)-257", "(1==1)/2", "(1==1)&&1.0"}, "bool false"},
        {{"-(1==1)"}, "int -1"},
        {{"((unsigned long)0)+((char)-1)"}, "uint64 255"},
        {{"((unsigned long)0)+((size_t)1)"}, "uint64 1065353216"},
        {{"((unsigned long)-1)/2", "((unsigned long)-1)>>1"}, "uint64 9223372036854775807"},
        {{"((unsigned long)-1)%10"}, "uint64 5"},
        {{"~((unsigned)1)"}, "uint32 4294967294"},
        {{"((short)1)-((unsigned short)0xFFFF)"}, "int16 2"},
        {{"((char)0x1FF)/2"}, "int8 -1"},
        {{"((size_t)1)+((unsigned char)255)"}, "float32 256"},
    };
    expectRows(valueOf, rows);
}

TEST(ExprOperators, Compare)
{
    const std::vector<Row> rows = {
        {{"1<2", "2<=2", "3>2", "2>=2", "2==2", "1!=2", "-1<0", "\"a\"<\"b\"", "\"\"==7",
          "(1==1)==257", "((unsigned long)1)<0.5", "!(1==2)"},
         "bool true"},
        {{"2<2", "3<=2", "2>2", "1>=2", "1==2", "2!=2", "\"\xE4\"<\"b\"", "(1==1)<(1==2)",
          "((unsigned long)1)>-1", "!2", "!0.5"},
         "bool false"},
    };
    expectRows(valueOf, rows);
}

TEST(ExprOperators, WhatHasNoValue)
{
    const std::vector<Row> rows = {
        {{"7.0/-0.0", "7/0.5", "(1==1)/256", "((unsigned long)7)%(1==2)", "7/((char)256)"},
         "! divide by zero"},
        {{"7/\"0\"", "1.5%0", "1.5&&1", "\"7\"+1"}, "! unsupported binary numeric operation"},
        {{"1.5<1"}, "! unsupported comparison operation"},
        {{"\"a\"<<\"a\"", "1>>((unsigned long)1)"}, "! integer shift value expected"},
        {{"1.5<<1", "(1==1)>>1"}, "! can only shift numeric values"},
        {{"~(1==1)", "-\"a\"", "!\"a\""}, "! unsupported unary num operation"},
    };
    expectRows(valueOf, rows);
}

TEST(ExprResolution, AsksItsParserInOrder)
{
    RecordingParser parser;
    const auto notesOf = [&parser](const char *text) {
        parser.notes.clear();
        Value value = parser.evaluate(text);
        value.resolve();
        return parser.notes + describe(value);
    };
    const std::vector<Row> rows = {
        {{"a=5"}, "a; set int64 5; int64 5"},
        {{"1+a"}, "a; int64 6"},
        {{"a-=1"}, "a; a; set int64 4; int64 4"},
        {{"(1==2)&&a"}, "a; bool false"},
        {{"(a=1)-(b=2)"}, "b; set int64 2; a; set int64 1; int64 -1"},
        {{"a=b=3"}, "a; b; set int64 2; set int64 3; int64 3"},
        {{"::a=a"}, "::a; a; set int64 3; int64 3"},
        {{"@r=1.5"}, "@r; set float64 1.5; float64 1.5"},
        {{"b[-1.9]", "b[4294967295]"}, "b; index -1; int64 2"},
        {{"b[b]"}, "b; b; index 2; int64 2"},
        {{"*b", "b[1==2]"}, "b; index 0; int64 2"},
        {{"b->c::d"}, "b; member c::d; int64 2"},
        {{"(long[2])-1"}, "cast long[Constant(2)]; int64 -1"},
        {{"b[\"a\"]", "b[x]"}, "! bad index type"},
        {{"a+1=2"}, "! bad expression type"},
        {{"&a"}, "! addressof not implemented"},
        {{"sizeof(a)"}, "! sizeof not implemented"},
        {{"f(a 1)"}, "! function calling not implemented"},
    };
    expectRows(notesOf, rows);
}

TEST(ExprResolution, WithoutNamesOnlyLiteralsHaveAValue)
{
    const std::vector<Row> rows = {
        {{"1/0+a", "a++", "1(a)", "(int)a"}, "! a symbol not found"},
        {{"a::b"}, "! a::b symbol not found"},
        {{"@r0"}, "! unknown register"},
        {{"(int)1"}, "! cannot cast"},
        {{"1.b", "1->a::b"}, "! cannot dereference"},
        {{"*5", "1=x"}, "! bad expression type"},
        {{"&1"}, "! cannot take address of a constant"},
        {{"sizeof(1)"}, "! cannot determine sizeof of a constant"},
        {{"addressof(\"a.c\", 1)"}, "! addressof not implemented"},
    };
    expectRows(plainValueOf, rows);
}

TEST(ExprPlain, OnlyTheWantedKindIsOkWithATreeAndWithout)
{
    class TreeOnly : public SimpleExpressionParser
    {
    } tree;
    const auto wantedOf = [](SimpleExpressionParser *parser, const char *text) {
        std::string all;
        const auto add = [&](auto evaluate) {
            bool ok = true;
            const auto value = (parser->*evaluate)(text, &ok);
            all += ok ? std::to_string(value) : value == 0 ? "none" : "a value though not ok";
            all += ' ';
        };
        add(&SimpleExpressionParser::evaluateUnsigned);
        add(&SimpleExpressionParser::evaluateSigned);
        add(&SimpleExpressionParser::evaluateBool);
        return all;
    };
    const std::vector<Row> rows = {
        {{"!(1!=1)", "2>=2", "2>1 == 1<=1 || 0 && 1"}, "none none 1 "},
        {{"3<2 || 2>=3", "(1==1)/0.1"}, "none none 0 "},
        {{"0b1000", "0x8", "2*(3+1)", "10-3+1", "5+3%4", "1<<3", "+8 9", "8)", "-(-8)", " 16>>1",
          "9 & 12 | 4 ^ 4", "8%9\xA0", times(999, " ") + "8"},
         "8 8 none "},
        {{"-1", "~0"}, "18446744073709551615 -1 none "},
        {{"1.5"}, "4609434218613702656 1 none "},
        {{"\"1\"", "", "x", "()", "(1", "1/0", "1++2", "--1", "++8", "1&&&1", "1>>>1", "1<(1==1"},
         "none none none "},
    };
    expectRows([&](auto *text) { return wantedOf(SimpleExpressionParser::instance(), text); },
               rows);
    expectRows([&](auto *text) { return wantedOf(&tree, text); }, rows);
    RecordingParser knowing;
    EXPECT_EQ(wantedOf(&knowing, "(a=8)+0"), "8 8 none ");
}

TEST(ExprPlain, CostsLessThanATreeAndFarLessThanAnException)
{
    SimpleExpressionParser parser;
    const auto stepsOf = [&parser](const std::string &text) {
        bool ok = false;
        parser.evaluateSigned(text.c_str(), &ok);
        return parser.steps();
    };
    EXPECT_LT(stepsOf("1 + x"), 50U);
    EXPECT_GT(stepsOf("1 + 2.5"), 100U);
    EXPECT_GT(stepsOf("1 + 2.5.6"), 1000U);
    EXPECT_GT(stepsOf(times(1000, "1+") + "1"), 40000U);
    EXPECT_GT(stepsOf(times(1000, "(") + "#"), 1000000U);
}

TEST(ExprValues, ViewsFollowKindAndSize)
{
    const auto views = [](const char *text) {
        const Value value = RecordingParser().evaluate(text);
        return std::to_string(value.toInt64()) + " " + std::to_string(value.toUInt64()) + " " +
               std::to_string(value.toDouble());
    };
    const std::vector<Row> rows = {
        {{"(char)0x1FF"}, "-1 255 -1.000000"},
        {{"(short)0x18000"}, "-32768 32768 -32768.000000"},
        {{"(unsigned)0x1FFFFFFFF"}, "-1 4294967295 4294967295.000000"},
        {{"(size_t)1.5"}, "1 1069547520 1.500000"},
        {{"1==1"}, "1 1 1.000000"},
        {{"1==2", "\"7\"", "x", ""}, "0 0 0.000000"},
        {{"9223372036854775808.0"},
         "-9223372036854775808 4890909195324358656 9223372036854775808.000000"},
    };
    expectRows(views, rows);
    EXPECT_EQ(Value::fromDouble(std::nan("")).toInt64(), INT64_MIN);
    EXPECT_EQ(describe(RecordingParser().parse("*p")->asBinary()->right->evaluate()), "uint16 0");
}

TEST(ExprValues, TextInEveryBase)
{
    Value value = Value::fromInt64(0xAB, 2);
    EXPECT_EQ(toString(value, 2), "0b10101011");
    EXPECT_EQ(toString(value, 8, true), "0000253");
    EXPECT_EQ(toString(value, 16, true), "0x00ab");
    value.bitWidth = 9;
    EXPECT_EQ(toString(value, 16, true), "0x0ab");
    EXPECT_EQ(toString(Value::fromDouble(1234567)), "1.23457e+06");
    EXPECT_EQ(toString(Value::fromDouble(std::nan(""))), "NaN");
    EXPECT_EQ(toString(Value::fromDouble(-HUGE_VAL)), "Inf");
    EXPECT_EQ(toString(Value::fromDouble(1e300), 10, false, false, "%.1f").size(), 303U);
    for (const auto &[code, text] :
         {std::pair(32, " "), {126, "~"}, {127, "\\u007f"}, {0x1FFFF, "\\uffff"}})
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
