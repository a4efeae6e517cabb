#include "tokenrules.h"

namespace
{

struct Rule {
    const char *pattern;
    Token::Kind kind;
    qint32 precedence;
};

// The order is the tie-break: an operator stands before the shorter ones that it begins with.
constexpr Rule grammar[] = {
    {R"([\s]+)", Token::Whitespace, 10},
    {R"re("[^"]*")re", Token::String, 10},
    {R"(0x[0-9A-Fa-f]*)", Token::HexadecimalNumber, 10},
    {R"(0b[0-1]*)", Token::BinaryNumber, 10},
    {R"(\d+\.\d+)", Token::FloatingNumber, 10},
    {R"(\d+)", Token::DecimalNumber, 10},
    {R"([A-Za-z_$][A-Za-z_0-9$]*)", Token::Identifier, 10},
    {R"(@[A-Za-z_0-9]*)", Token::Register, 10},
    {R"(;)", Token::Semicolon, 10},
    {R"(::)", Token::Scope, 10},
    {R"(:)", Token::Colon, 10},
    {R"(\()", Token::LeftParenthesis, 10},
    {R"(\))", Token::RightParenthesis, 10},
    {R"(\[)", Token::LeftBracket, 10},
    {R"(\])", Token::RightBracket, 10},
    {R"(\{)", Token::LeftBrace, 10},
    {R"(\})", Token::RightBrace, 10},
    {R"(\.)", Token::Dot, 10},
    {R"(->)", Token::Arrow, 10},
    {R"(\+\+)", Token::Increment, 10},
    {R"(\-\-)", Token::Decrement, 10},
    {R"(!=)", Token::NotEqual, 5},
    {R"(!)", Token::Exclamation, 10},
    {R"(~)", Token::Tilde, 10},
    {R"(\*=)", Token::StarAssign, -3},
    {R"(\*)", Token::Star, 9},
    {R"(/=)", Token::SlashAssign, -3},
    {R"(/)", Token::Slash, 9},
    {R"(%=)", Token::PercentAssign, -3},
    {R"(%)", Token::Percent, 9},
    {R"(\+=)", Token::PlusAssign, -3},
    {R"(\+)", Token::Plus, 8},
    {R"(\-=)", Token::MinusAssign, -3},
    {R"(-)", Token::Minus, 8},
    {R"(<<=)", Token::ShiftLeftAssign, -3},
    {R"(<<)", Token::ShiftLeft, 7},
    {R"(>>>=)", Token::UnsignedShiftRightAssign, -3},
    {R"(>>>)", Token::UnsignedShiftRight, 7},
    {R"(>>=)", Token::ShiftRightAssign, -3},
    {R"(>>)", Token::ShiftRight, 7},
    {R"(<=)", Token::LessEqual, 6},
    {R"(<)", Token::Less, 6},
    {R"(>=)", Token::GreaterEqual, 6},
    {R"(>)", Token::Greater, 6},
    {R"(==)", Token::Equal, 5},
    {R"(\^=)", Token::CaretAssign, -3},
    {R"(\^)", Token::Caret, 3},
    {R"(&=)", Token::AmpersandAssign, -3},
    {R"(&&)", Token::AndAnd, 1},
    {R"(&)", Token::Ampersand, 4},
    {R"(\|=)", Token::BarAssign, -3},
    {R"(\|\|)", Token::OrOr, 0},
    {R"(\|)", Token::Bar, 2},
    {R"(\?)", Token::Question, -1},
    {R"(=)", Token::Assign, -2},
    {R"(,)", Token::Comma, -4},
};

}  // namespace

const TokenRules &TokenRules::standard()
{
    static const TokenRules standardRules = [] {
        TokenRules made;
        made.rules.reserve(std::size(grammar));
        for (const Rule &rule : grammar) {
            const auto length = static_cast<qsizetype>(qstrlen(rule.pattern));
            made.addToken(QByteArray::fromRawData(rule.pattern, length), rule.kind,
                          rule.precedence);
        }
        return made;
    }();
    return standardRules;
}

void TokenRules::addToken(const QByteArray &pattern, qint32 kind, qint32 precedence)
{
    const auto index = static_cast<std::uint32_t>(rules.size());
    rules.push_back({TokenPattern(pattern), kind, precedence});
    rules.back().pattern.forEachFirstCharacter(
        [&](char c) { candidates[static_cast<unsigned char>(c)].append(index); });
}
