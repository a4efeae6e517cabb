#include "expr_support.h"

#include "lexer.h"
#include "numberreader.h"

namespace
{

/// Every token as kind, precedence and characters: "3/10 1, 28/8 +, 3/10 2".
std::string tokensOf(Lexer *lexer, const char *text)
{
    std::string all;
    for (lexer->setText(text); lexer->kind() != Token::EndOfInput; lexer->next()) {
        all += (all.empty() ? "" : ", ") + std::to_string(lexer->kind()) + "/" +
               std::to_string(lexer->precedence()) + " " + lexer->token().toStdString();
    }
    return all;
}

void expectTokens(std::initializer_list<std::string> cases)
{
    expectAll(cases, [](const char *text) {
        Lexer lexer;
        return tokensOf(&lexer, text);
    });
}

}  // namespace

TEST(ExprLexer, KnowsEveryKindOfToken)
{
    expectTokens(
        {R"("a b" 0x1F 0b10 1.5 => 7/10 "a b", 4/10 0x1F, 5/10 0b10, 6/10 1.5)",
         "10 a_$1 @r0 => 3/10 10, 8/10 a_$1, 9/10 @r0",
         "; :: : ( ) [ ] => 10/10 ;, 12/10 ::, 11/10 :, 13/10 (, 14/10 ), 15/10 [, 16/10 ]",
         "{ } . -> ++ -- => 17/10 {, 18/10 }, 19/10 ., 20/10 ->, 21/10 ++, 22/10 --",
         "!= ! ~ *= * /= / => 38/5 !=, 24/10 !, 23/10 ~, 48/-3 *=, 25/9 *, 49/-3 /=, 26/9 /",
         "%= % += + -= - => 50/-3 %=, 27/9 %, 46/-3 +=, 28/8 +, 47/-3 -=, 29/8 -",
         "<<= << >>>= >>> => 52/-3 <<=, 30/7 <<, 53/-3 >>>=, 32/7 >>>",
         ">>= >> <= < >= > => 51/-3 >>=, 31/7 >>, 34/6 <=, 33/6 <, 36/6 >=, 35/6 >",
         "== ^= ^ &= && & => 37/5 ==, 55/-3 ^=, 40/3 ^, 54/-3 &=, 42/1 &&, 39/4 &",
         "|= || | ? = , => 56/-3 |=, 43/0 ||, 41/2 |, 44/-1 ?, 45/-2 =, 57/-4 ,"});
}

TEST(ExprLexer, FirstRuleThatMatchesWins)
{
    expectTokens({"a<<=b => 8/10 a, 52/-3 <<=, 8/10 b", "x->y => 8/10 x, 20/10 ->, 8/10 y",
                  "--x => 22/10 --, 8/10 x", "+++ => 21/10 ++, 28/8 +", "::: => 12/10 ::, 11/10 :",
                  "=== => 37/5 ==, 45/-2 =", "1. => 3/10 1, 19/10 .", ".5 => 19/10 ., 3/10 5",
                  "1.2.3 => 6/10 1.2, 19/10 ., 3/10 3", "1e5 => 3/10 1, 8/10 e5",
                  "0b12 => 5/10 0b1, 3/10 2", "0xg => 4/10 0x, 8/10 g", "0X1 => 3/10 0, 8/10 X1",
                  "@ => 9/10 @", "@1- => 9/10 @1, 29/8 -", R"("""a" => 7/10 "", 7/10 "a")"});
}

TEST(ExprLexer, WhiteSpaceSeparatesAndIsDropped)
{
    expectTokens({" => ", "    => ", "\t\n\v\f\r \xA0 1\xA0 => 3/10 1",
                  "1 \x85 => ! unrecognised token: \xC2\x85",
                  "1 \x1F => ! unrecognised token: \x1F"});
}

TEST(ExprLexer, TextThatNoRuleMatchesIsReportedToItsEnd)
{
    expectTokens({"a # b => ! unrecognised token: # b", R"("open => ! unrecognised token: "open)",
                  "\xE4 1 => ! unrecognised token: \xC3\xA4 1",
                  "1\xB2 => ! unrecognised token: \xC2\xB2"});

    Lexer lexer;
    EXPECT_THROW(lexer.setText("  # b"), ParserException);
    EXPECT_EQ(lexer.position(), 2);
}

TEST(ExprLexer, EndOfInputKeepsTheLastPrecedenceScanned)
{
    Lexer lexer;
    EXPECT_EQ(lexer.precedence(), Token::noOperator);
    for (const auto &[text, precedence] : {std::pair("1 +", 8), std::pair("1 + ", 10)}) {
        lexer.setText(text);
        lexer.next();
        lexer.next();
        EXPECT_EQ(lexer.kind(), Token::EndOfInput) << text;
        EXPECT_EQ(lexer.precedence(), precedence) << text;
    }
    lexer.setText("");
    EXPECT_EQ(lexer.kind(), Token::EndOfInput);
    EXPECT_EQ(lexer.position(), 0);
}

TEST(ExprLexer, TokenIsComparesAllCharacters)
{
    Lexer lexer;
    lexer.setText("sizeof");
    EXPECT_TRUE(lexer.tokenIs("sizeof"));
    EXPECT_FALSE(lexer.tokenIs("size"));
    EXPECT_FALSE(lexer.tokenIs("sizeofs"));
    EXPECT_FALSE(lexer.tokenIs("Sizeof"));
}

TEST(ExprLexer, ReadsNumbersWithoutCheckingDigits)
{
    expectAll(
        {"0 => 0",
         "42 => 42",
         "010 => 8",
         "08 => 8",
         "09 => 9",
         "0x1F => 31",
         "0xff => 255",
         "0b101 => 5",
         "0x => 0",
         "0b => 0",
         " => 0",
         " \t-12 => -12",
         "+7 => 7",
         "-0x10 => -16",
         "-010 => -8",
         "1z => 45",
         "1Z => 45",
         "1/ => 2",
         "0x1z => 51",
         "18446744073709551617 => 1",
         "9223372036854775808 => -9223372036854775808"},
        [](const char *text) { return std::to_string(static_cast<qint64>(readNumber(text))); });
}

TEST(ExprLexer, FloatingTokenEndsWhereItsDigitsEnd)
{
    Lexer lexer;
    lexer.setText("1.5e3");
    EXPECT_EQ(lexer.tokenToDouble(), 1.5);
}

TEST(ExprLexer, AddedRulesComeLast)
{
    Lexer lexer;
    lexer.addToken("#[^;\\s]*", 100, 10);
    lexer.addToken("\\+\\+", 101, 10);
    lexer.addToken("=>", 102, 3);
    lexer.addToken("'[a-c\\-\\]-]+'", 103, 10);
    EXPECT_EQ(tokensOf(&lexer, "#x!; # ++ ==>"),
              "100/10 #x!, 10/10 ;, 100/10 #, 21/10 ++, 37/5 ==, 35/6 >");
    EXPECT_EQ(tokensOf(&lexer, "'ab-]c'"), "103/10 'ab-]c'");
    EXPECT_EQ(lexer.rules().size(), 60U);
    EXPECT_EQ(Lexer().rules().size(), 56U);
}

TEST(ExprLexer, InvalidPatternsAndEmptyMatchesNeverApply)
{
    for (const char *pattern : {"a|b", "(#)", "#?", "[#", R"(#\)", "*#", "", "[]#", "x*"}) {
        Lexer lexer;
        lexer.addToken(pattern, 100, 10);
        EXPECT_EQ(outcomeOf([&] { return tokensOf(&lexer, "#"); }), "! unrecognised token: #")
            << pattern;
    }
}
