#include "expr_support.h"

#include "binaryoperators.h"
#include "unaryoperators.h"

#include <limits>

namespace
{

using Value = ExpressionValue;
using enum BinaryOperator;

struct OperatorCase {
    Value left;
    BinaryOperator binaryOperator;
    Value right;
    const char *expected;
};

void expectOperators(std::initializer_list<OperatorCase> cases)
{
    for (const OperatorCase &each : cases) {
        const std::string trace = describe(each.left) + " " +
                                  operatorName(each.binaryOperator).data() + " " +
                                  describe(each.right);
        EXPECT_EQ(outcomeOf([&] {
                      return describe(
                          applyOperator(each.binaryOperator, Value(each.left), Value(each.right)));
                  }),
                  each.expected)
            << trace;
    }
}

/// The result of one of the parser's evaluating operations; "-" for a zero that is not ok.
template <typename Result>
std::string shown(Result (SimpleExpressionParser::*evaluate)(const char *, bool *),
                  SimpleExpressionParser *parser, const char *expression)
{
    bool ok = true;
    const Result result = (parser->*evaluate)(expression, &ok);
    return ok || result != 0 ? std::to_string(result) + (ok ? "" : " not ok") : "-";
}

const Value yes = Value::fromBool(true);
const Value no = Value::fromBool(false);
const Value seven = Value::fromText(QStringLiteral("7"));
const Value nothing;

}  // namespace

TEST(ExprEvaluation, SignedArithmeticWraps)
{
    expectValues({"7 / 2 => signed/8 3", "-7 / 2 => signed/8 -3", "-7 % 2 => signed/8 -1",
                  "7 % -2 => signed/8 1",
                  "-9223372036854775807 - 2 => signed/8 9223372036854775807",
                  "9223372036854775807 + 1 => signed/8 -9223372036854775808",
                  "4611686018427387904 * 2 => signed/8 -9223372036854775808",
                  "-9223372036854775808 => signed/8 -9223372036854775808",
                  "-9223372036854775808 / -1 => signed/8 -9223372036854775808",
                  "-9223372036854775808 % -1 => signed/8 0", "7 / -1 => signed/8 -7",
                  "12 & 10 => signed/8 8", "12 | 10 => signed/8 14", "12 ^ 10 => signed/8 6",
                  "1 && 2 => signed/8 1", "1 && 0 => signed/8 0", "0 || 2 => signed/8 1",
                  "0 || 0 => signed/8 0"});
}

TEST(ExprEvaluation, TheLeftKindDecides)
{
    expectEach("signed/8 2", {"1 + 1.9", "1 + (1==1)", R"(2 + "9")", "3 + -1.9"});
    expectEach("floating/8 2.5", {"1.5 + 1", "3.5 - (1==1)", "5.0 / 2", R"(2.5 + "9")"});
    expectEach("boolean/0 true", {"2 > 1.5", "(1==1) + 255", "(1==1) % 2", R"((1==1) | "x")",
                                  "(1==2) || 1", "(1==1) && 1", "(1==1) && (2==2)"});
    expectEach("boolean/0 false", {"(1==1) - 257", "(1==1) * 256", "(1==1) / 2", "(1==1) & 2",
                                   "(1==1) ^ 1", "(1==1) && 1.0", "(1==1) && 256"});
    expectEach("signed/8 -9223372036854775808", {"0 + 99999999999999999999.0"});
}

TEST(ExprEvaluation, OperandsOfOtherSizesAndKinds)
{
    expectOperators(
        {{Value::fromInt64(0xFF, 1), Plus, Value::fromInt64(0xFF, 1), "signed/1 -2"},
         {Value::fromInt64(0xFF, 1), Gt, Value::fromInt64(0), "boolean/0 true"},
         {Value::fromInt64(0x1FF, 1), Divide, Value::fromInt64(2), "signed/1 -1"},
         {Value::fromInt64(1, 2), Minus, Value::fromUInt64(0xFFFF, 2), "signed/2 2"},
         {Value::fromUInt64(1, 4), Minus, Value::fromInt64(2), "unsigned/4 4294967295"},
         {Value::fromUInt64(0), Plus, Value::fromInt64(-1, 1), "unsigned/8 255"},
         {Value::fromUInt64(0), Plus, Value::fromDouble(1.0), "unsigned/8 4607182418800017408"},
         {Value::fromUInt64(0), Plus, Value::fromDouble(1.0, 4), "unsigned/8 1065353216"},
         {Value::fromUInt64(3), Multiply, yes, "unsigned/8 3"},
         {Value::fromUInt64(~0ULL), Divide, Value::fromInt64(2), "unsigned/8 9223372036854775807"},
         {Value::fromUInt64(~0ULL), Mod, Value::fromInt64(10), "unsigned/8 5"},
         {Value::fromUInt64(5), LogicalAnd, Value::fromDouble(0.5), "unsigned/8 1"},
         {Value::fromUInt64(6), BitXor, Value::fromInt64(3), "unsigned/8 5"},
         {Value::fromDouble(1.0, 4), Plus, Value::fromInt64(0xFF, 1), "floating/4 0"},
         {Value::fromDouble(1.0), Plus, Value::fromUInt64(0xFF, 1), "floating/8 256"},
         {Value::fromDouble(1.0), Divide,
          Value::fromDouble(std::numeric_limits<double>::quiet_NaN()), "floating/8 NaN"},
         {yes, Eq, Value::fromInt64(0x101), "boolean/0 true"},
         {yes, Lt, Value::fromInt64(0xFF), "boolean/0 true"},
         {Value::fromUInt64(1), Gt, Value::fromInt64(-1), "boolean/0 false"},
         {Value::fromUInt64(1), Lt, Value::fromDouble(0.5), "boolean/0 true"}});
}

TEST(ExprEvaluation, Comparisons)
{
    expectEach("boolean/0 true", {"1 < 2", "2 <= 2", "3 > 2", "2 >= 2", "2 == 2", "1 != 2",
                                  "-1 < 0", "(1==2) < (1==1)", R"(0 == "7")"});
    expectEach("boolean/0 false", {"2 < 2", "3 <= 2", "2 > 2", "1 >= 2", "1 == 2", "2 != 2",
                                   R"(7 == "7")", "(1==1) != (2==2)"});
    expectEach("boolean/0 true", {R"("a" == "a")", R"("a" < "b")", R"("ab" > "a")", R"("" == 7)"});
    expectEach("boolean/0 false", {R"("B" > "a")", R"("7" == 7)", R"("a" != "a")"});
}

TEST(ExprEvaluation, Shifts)
{
    expectValues({"1 << 3 => signed/8 8", "-8 >> 1 => signed/8 -4", "-1 >> 127 => signed/8 -1"});
    expectEach("signed/8 1", {"1 << 64", "1 >> 0", "2 >> 65"});
    expectEach("signed/8 -9223372036854775808", {"1 << 63", "1 << -1"});
    expectEach("! integer shift value expected", {"1 << 1.0", "1 >> (1==1)", R"("a" << "a")"});
    expectEach("! can only shift numeric values", {"1.5 << 1", "(1==1) >> 1"});
    expectOperators(
        {{Value::fromUInt64(0x8000000000000000), Rshift, Value::fromInt64(63), "unsigned/8 1"},
         {Value::fromInt64(1, 2), Lshift, Value::fromInt64(0x1FF, 1), "signed/2 0"},
         {Value::fromInt64(1), Rshift, Value::fromUInt64(1), "! integer shift value expected"}});
}

TEST(ExprEvaluation, UnaryOperators)
{
    expectValues({"-5 => signed/8 -5", "-1.5 => floating/8 -1.5", "-0.0 => floating/8 -0",
                  "-(1==1) => signed/0 -1", "-(1==2) => signed/0 0", "+(1==1) => boolean/0 true",
                  "~0 => signed/8 -1", "~5 => signed/8 -6", R"(+"a" => string/0 a)"});
    expectEach("boolean/0 true", {"!0", "!0.0", "!(1==2)"});
    expectEach("boolean/0 false", {"!2", "!0.5", "!(1==1)"});
    expectEach("! unsupported unary num operation", {"~1.0", "~(1==1)", R"(-"a")", R"(!"a")"});
    const auto constant = [] {
        return std::make_unique<ConstantExpression>(Value::fromUInt64(1, 4));
    };
    EXPECT_EQ(describe(NegateExpression(constant()).evaluate()), "unsigned/4 4294967295");
    EXPECT_EQ(describe(BitNotExpression(constant()).evaluate()), "unsigned/4 4294967294");
    EXPECT_EQ(describe(LogicalNotExpression(constant()).evaluate()), "boolean/0 false");
}

TEST(ExprEvaluation, DivisionByWhatConvertsToZero)
{
    expectEach("! divide by zero",
               {"7 / 0", "7.0 / 0", "7.0 / -0.0", "7 / 0.5", "7 / (1==2)", "(1==1) / 256", "7 % 0",
                "7 % 0.5", R"(7 % "3")", "(1==1) % 256"});
    expectEach("! unsupported binary numeric operation",
               {R"(7 / "0")", R"(7.0 / "0")", R"((1==1) / "0")", R"("7" / 0)", "1.5 % 0"});
    expectOperators(
        {{Value::fromUInt64(7), Divide, Value::fromDouble(0.5), "unsigned/8 0"},
         {Value::fromUInt64(7), Divide, Value::fromDouble(0.0), "! divide by zero"},
         {Value::fromUInt64(7), Mod, no, "! divide by zero"},
         {Value::fromInt64(7), Divide, nothing, "! unsupported binary numeric operation"},
         {Value::fromInt64(7), Divide, Value::fromInt64(0x100, 1), "! divide by zero"}});
}

TEST(ExprEvaluation, KindsWithoutTheOperator)
{
    for (const BinaryOperator each : {Mod, LogicalAnd, LogicalOr, BitAnd, BitXor, BitOr}) {
        expectOperators(
            {{Value::fromDouble(1.5), each, yes, "! unsupported binary numeric operation"}});
    }
    for (const BinaryOperator each : {Plus, Minus, Multiply, Divide, Mod, LogicalAnd, BitOr}) {
        expectOperators({{seven, each, yes, "! unsupported binary numeric operation"},
                         {nothing, each, yes, "! unsupported binary numeric operation"}});
    }
    for (const BinaryOperator each : {Lt, Le, Gt, Ge, Eq, Ne}) {
        expectOperators({{Value::fromDouble(1.5), each, yes, "! unsupported comparison operation"},
                         {nothing, each, nothing, "! unsupported comparison operation"}});
    }
}

TEST(ExprEvaluation, BothOperandsAreEvaluatedTheRightOneFirst)
{
    expectEach("! a symbol not found", {"a + 1", "1 + 2 + a", "(1==2) && a", "(1==1) || a",
                                        "1 / 0 + a", "a / 0", R"("s" + a)", "a * 1 - 2 << 3"});
    expectEach("! c symbol not found", {"b + c", "a - b - c", "a - b * c", "a < b == c"});
}

TEST(ExprEvaluation, WithoutSymbolsOnlyLiteralsHaveAValue)
{
    expectValues({" => void/2 ", "::a => ! a symbol not found", "a::b => ! a::b symbol not found",
                  "@r0 => ! unknown register", "(int)1 => ! cannot cast"});
    expectEach("! x symbol not found", {"x", "(int)x", "x[0]", "x = y", "&x", "*x", "x.y", "x++",
                                        "sizeof(x)", "1(x)", "x(y)"});
    expectEach("! cannot dereference", {"1.b", "1->a::b"});
    expectEach("! bad expression type", {"*5", "5[x]", "1 = x", "1 += x", "1++", "--1"});
    expectEach("! cannot take address of a constant", {"&1", "&(1 + 1)"});
    expectEach("! cannot determine sizeof of a constant", {"sizeof(1)", "sizeof(\"a\")"});
    expectEach("! addressof not implemented", {"addressof(\"a.c\", 1)"});
    expectEach("! function calling not implemented", {"1(2)", "\"f\"()"});
}

TEST(ExprEvaluation, OnlyTheWantedKindIsOk)
{
    // The unsigned, the signed and the boolean result.
    expectAll({"1 == 1 => - - 1", "1 != 1 => - - 0", "1 => 1 1 -", "1 && 1 => 1 1 -",
               "0x10 + 1 => 17 17 -", "-1 => 18446744073709551615 -1 -",
               "1.5 => 4609434218613702656 1 -", R"("1" => - - -)", " => - - -", "   => - - -",
               "1 + => - - -", "# => - - -", "x => - - -", "1 / 0 => - - -"},
              [](const char *text) {
                  SimpleExpressionParser parser;
                  return shown(&SimpleExpressionParser::evaluateUnsigned, &parser, text) + " " +
                         shown(&SimpleExpressionParser::evaluateSigned, &parser, text) + " " +
                         shown(&SimpleExpressionParser::evaluateBool, &parser, text);
              });
    bool ok = true;
    EXPECT_EQ(SimpleExpressionParser::instance()->evaluateSigned(nullptr, &ok), 0);
    EXPECT_FALSE(ok);
}
