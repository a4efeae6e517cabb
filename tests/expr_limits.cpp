#include "expr_support.h"

#include "treeparser.h"

namespace
{

/// Reads, dumps, evaluates and releases; the message of the first failure, or the value.
std::string lifeOf(const std::string &text)
{
    return outcomeOf([&] {
        SimpleExpressionParser parser;
        const std::unique_ptr<Expression> tree = parser.parse(text.c_str());
        EXPECT_FALSE(tree->dump().isEmpty());
        return describe(tree->evaluate());
    });
}

}  // namespace

TEST(ExprLimits, NestingWithinTheBoundHasAValue)
{
    const std::pair<std::string, const char *> cases[] = {
        {repeated("(", 1000) + "1" + repeated(")", 1000), "signed/8 1"},
        {repeated("(1+", 1000) + "1" + repeated(")", 1000), "signed/8 1001"},
        {repeated("1+2*(", 1000) + "0" + repeated(")", 1000), "signed/8 -1"},
        {repeated("-", 1) + repeated(" -", 1999) + "1", "signed/8 1"},
        {"1" + repeated("+1", 10000), "signed/8 10001"},
        {"1" + repeated("+2*3-4/5%6<<0>>0&7|8^9&&1||0==1!=0<3<=4>5>=6", 1000), "signed/8 1"},
        {"\"" + repeated("a", 100000) + "\"==1", "boolean/0 false"}};
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(lifeOf(text), expected) << text.substr(0, 20);
}

TEST(ExprLimits, ChainsOfAMillionTermsHaveAValue)
{
    EXPECT_EQ(lifeOf("1" + repeated("+1", 999999)), "signed/8 1000000");
    EXPECT_EQ(lifeOf("1" + repeated("<1", 999999)), "boolean/0 false");
}

TEST(ExprLimits, EndlessNestingIsRefused)
{
    const int many = 100000;
    const std::string parts[] = {
        "(",     "- ", "+ ", "!",       "~",     "*",     "& ",   "++",
        "(int)", "x[", "f(", "sizeof(", "(int[", "1+1*(", "-(1+", "(1,1*=1=1?1||1&&1|1^1&("};
    for (const std::string &part : parts) {
        EXPECT_EQ(lifeOf(repeated(part, many) + "1"), "! expression nested too deeply") << part;
    }
}

TEST(ExprLimits, ChainsThatAreNoOperatorsAreBounded)
{
    const int bound = TreeParser::maximumDepth;
    for (const char *part : {"[0]", ".a", "()", "=1"}) {
        EXPECT_EQ(lifeOf("x" + repeated(part, bound - 1)), "! x symbol not found") << part;
        EXPECT_EQ(lifeOf("x" + repeated(part, bound)), "! expression nested too deeply") << part;
    }
    for (const char *part : {"*", "[1]"}) {
        EXPECT_EQ(lifeOf("(int" + repeated(part, bound - 2) + ")1"), "! cannot cast") << part;
        EXPECT_EQ(lifeOf("(int" + repeated(part, bound) + ")1"), "! expression nested too deeply");
    }
}

TEST(ExprLimits, TargetsThatDoubleAreRefused)
{
    EXPECT_EQ(lifeOf("x" + repeated("++", 10)), "! x symbol not found");
    EXPECT_EQ(lifeOf("x" + repeated("++", 100)), "! expression too large");
    EXPECT_EQ(lifeOf("x" + repeated("+=1", 100)), "! expression too large");
    EXPECT_EQ(lifeOf(repeated("--", 100) + "x"), "! expression too large");
    EXPECT_EQ(lifeOf(repeated("x", 1000000) + repeated("++", 10)), "! expression too large");
}

TEST(ExprLimits, TextThatWouldTakeTooMuchMemoryIsRefused)
{
    const int many = 2'100'000;
    const std::string quoted = '"' + repeated("0123456789abcdef0123456789abcdef", many) + '"';
    const std::string cases[] = {"1" + repeated("+1", many),
                                 "f(" + repeated("1 ", many) + ")",
                                 "a" + repeated("::a", many),
                                 "(struct {" + repeated("int;", many) + "})1",
                                 "(register 8 " + repeated("A 0 1 ", many) + ";)1",
                                 quoted};
    for (const std::string &text : cases)
        EXPECT_EQ(lifeOf(text), "! expression too large") << text.substr(0, 20);
}
