#include "expr_support.h"

#include "lexer.h"

TEST(ExprParser, LevelsNestFromLooseToTight)
{
    expectDumps(
        {"1 + 2 * 3 => PlusExpression(Constant(1),MultiplyExpression(Constant(2),Constant(3)))",
         "a||b&&c|d^e&f==g<h<<i+j*k => "
         "LogicalOrExpression(Identifier(a),LogicalAndExpression(Identifier(b),"
         "BitOrExpression(Identifier(c),BitXorExpression(Identifier(d),"
         "BitAndExpression(Identifier(e),EqExpression(Identifier(f),LtExpression(Identifier(g),"
         "LshiftExpression(Identifier(h),PlusExpression(Identifier(i),"
         "MultiplyExpression(Identifier(j),Identifier(k)))))))))))",
         "1%2-3>>4>=5!=6&7^8|9&&1||0 => "
         "LogicalOrExpression(LogicalAndExpression(BitOrExpression(BitXorExpression("
         "BitAndExpression(NeExpression(GeExpression(RshiftExpression(MinusExpression("
         "ModExpression(Constant(1),Constant(2)),Constant(3)),Constant(4)),Constant(5)),"
         "Constant(6)),Constant(7)),Constant(8)),Constant(9)),Constant(1)),Constant(0))",
         "1<=2 => LeExpression(Constant(1),Constant(2))",
         "1>2 => GtExpression(Constant(1),Constant(2))",
         "1/2 => DivideExpression(Constant(1),Constant(2))"});
}

TEST(ExprParser, EqualLevelsGroupToTheLeft)
{
    expectDumps(
        {"1-2+3 => PlusExpression(MinusExpression(Constant(1),Constant(2)),Constant(3))",
         "1*2/3 => DivideExpression(MultiplyExpression(Constant(1),Constant(2)),Constant(3))",
         "a=b=c => =(=(Identifier(a),Identifier(b)),Identifier(c))",
         "1=2+=3 => "
         "=(=(Constant(1),Constant(2)),PlusExpression(=(Constant(1),Constant(2)),Constant(3)))",
         "1+=2=3 => =(Constant(1),PlusExpression(Constant(1),=(Constant(2),Constant(3))))"});
}

TEST(ExprParser, CompoundAssignmentsUseTheirTargetTwice)
{
    const std::pair<const char *, const char *> operators[] = {
        {"*=", "Multiply"}, {"/=", "Divide"},  {"%=", "Mod"},    {"+=", "Plus"},   {"-=", "Minus"},
        {"<<=", "Lshift"},  {">>=", "Rshift"}, {"&=", "BitAnd"}, {"^=", "BitXor"}, {"|=", "BitOr"}};
    for (const auto &[symbol, name] : operators) {
        expectDumps({std::string("a") + symbol + "1 => =(Identifier(a)," + name +
                     "Expression(Identifier(a),Constant(1)))"});
    }
    expectDumps({"a++ => =(Identifier(a),PlusExpression(Identifier(a),Constant(1)))",
                 "--a => =(Identifier(a),MinusExpression(Identifier(a),Constant(1)))",
                 "++a[1] => =(LeftSquareBracket(Identifier(a),Constant(1)),"
                 "PlusExpression(LeftSquareBracket(Identifier(a),Constant(1)),Constant(1)))"});
}

TEST(ExprParser, UnaryAndPrimaryForms)
{
    expectDumps({"0x10 => Constant(16)", "0xffffffffffffffff => Constant(-1)",
                 "0.5 => Constant(0.5)", "\"a\\n\" => Constant(a\\n)",
                 "-~!+1 => NegateExpression(BitNotExpression(LogicalNotExpression(Constant(1))))",
                 "-a[0] => NegateExpression(LeftSquareBracket(Identifier(a),Constant(0)))",
                 "(-a)[0] => LeftSquareBracket(NegateExpression(Identifier(a)),Constant(0))",
                 "*p+1 => PlusExpression(LeftSquareBracket(Identifier(p),Constant(0)),Constant(1))",
                 "&a&b => BitAndExpression(&Identifier(a),Identifier(b))",
                 "sizeof(a+1) => sizeof(PlusExpression(Identifier(a),Constant(1)))",
                 "addressof(\"a.c\",010) => addressof(\"a.c\", 8)", "@r0 => Identifier(r0)",
                 "@ => Identifier()", "::a => Identifier(a)", "a::b::c => Identifier(a::b::c)",
                 "sizeofx => Identifier(sizeofx)"});
}

TEST(ExprParser, PostfixForms)
{
    SimpleExpressionParser parser;
    const std::unique_ptr<Expression> dereference = parser.parse("*p");
    EXPECT_EQ(describe(dereference->asBinary()->right->evaluate()), "unsigned/2 0");

    expectDumps(
        {"a.b->c => Dot(Dot(Identifier(a),Identifier(b)),Identifier(c))",
         "a[1].b::c => Dot(LeftSquareBracket(Identifier(a),Constant(1)),Identifier(b::c))",
         "f() => Identifier(f)()", "f(1)(2) => Identifier(f)(Constant(1))(Constant(2))",
         R"(f(1,"x" -2,) => Identifier(f)(Constant(1)Constant(x)NegateExpression(Constant(2))))",
         "f(1*2) => Identifier(f)(Constant(1)LeftSquareBracket(Constant(2),Constant(0)))",
         "1 2 => Constant(1)", "3) => Constant(3)"});
}

TEST(ExprParser, CastsTakeAllThatFollows)
{
    expectDumps(
        {"(int)a + b => (int)PlusExpression(Identifier(a),Identifier(b))",
         "2*(char)a=b => MultiplyExpression(Constant(2),(char)=(Identifier(a),Identifier(b)))",
         "(foo)1 => Identifier(foo)",
         "((int)1)+2 => PlusExpression((int)Constant(1),Constant(2))"});
}

TEST(ExprParser, SyntaxErrors)
{
    expectEach("! expression expected",
               {" ", ")", "1 +", "1 + ", "1 + + ", "f(,)", "f(1,", "1,", "(int[])1", "a[", "1 ="});
    expectEach("! '(' expected", {"sizeof 1", "addressof", R"(addressof "a")"});
    expectEach("! ')' expected", {"(1", "(1 2)", "sizeof(1", R"(addressof("a",1)", "(int 1"});
    expectEach("! string expected", {"addressof(1", "addressof(a"});
    expectEach("! ',' expected", {"addressof(\"a\" 1)", "addressof(\"a\")"});
    expectEach("! int expected", {"addressof(\"a\",0x1)", "addressof(\"a\",)"});
    expectEach("! identifier expected", {"a.1", "a->", "::1", "a.::b"});
    expectEach("! identifier expected after '::'", {"a::", "::a::1"});
    expectEach("! expected ']'", {"a[1", "a[1)"});
    expectEach("! operator not supported", {"1, 2", "a ? 1 : 2", "1 >>> 2", "a >>>= 2", "1 ? 2)"});
    expectEach("! unrecognised token: #", {"1 ? #", "1 #", "(int #", "f(#"});
}

TEST(ExprParser, PositionIsBehindTheTokenThatEndedReading)
{
    SimpleExpressionParser parser;
    const std::pair<const char *, qsizetype> cases[] = {
        {"1", 1}, {"1 ", 2}, {"1 23 4", 4}, {"", 0}, {"a[1] ]", 6}};
    for (const auto &[text, expected] : cases) {
        qsizetype position = -1;
        parser.parse(text, &position);
        EXPECT_EQ(position, expected) << text;
    }
    EXPECT_EQ(parser.parse(nullptr), nullptr);
    EXPECT_EQ(parser.parse(""), nullptr);
}

TEST(ExprParser, OneParserReadsOneTextAfterTheOther)
{
    SimpleExpressionParser parser;
    const std::unique_ptr<Expression> first = parser.parse("1 + 2");
    EXPECT_THROW(parser.parse("((3"), ParserException);
    EXPECT_EQ(describe(parser.evaluate("4")), "signed/8 4");
    EXPECT_EQ(describe(first->evaluate()), "signed/8 3");
    EXPECT_EQ(SimpleExpressionParser::instance(), SimpleExpressionParser::instance());
}
