#include "lexer.h"

#include "parserexception.h"

#include <array>
#include <bit>
#include <cassert>
#include <cstdlib>
#include <iterator>

namespace
{

struct Rule {
    const char *pattern;
    Token::Kind kind;
    std::int32_t precedence;
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

/// The rules as the compiler reads them, so that no run of the program does.
struct CompiledRules {
    using Step = TokenPattern::Step;

    std::array<Step, 128> steps = {};  ///< of all patterns, one behind the other
    std::array<std::size_t, std::size(grammar) + 1> begins = {};  ///< of each pattern in steps
    /// By character, a bit for each rule that can match where a text begins with it.
    std::array<std::uint64_t, 256> candidates = {};
    bool isValid = true;

    constexpr CompiledRules()
    {
        for (std::size_t rule = 0; rule < std::size(grammar); ++rule) {
            std::size_t end = begins[rule];
            for (std::string_view rest = grammar[rule].pattern; !rest.empty();)
                isValid = TokenPattern::takeStep(&rest, &steps[end++]) && isValid;
            begins[rule + 1] = end;
            for (std::size_t code = 0; code < candidates.size(); ++code) {
                if (steps[begins[rule]].set.contains(static_cast<char>(code)))
                    candidates[code] |= 1ULL << rule;
            }
        }
    }

    std::span<const Step> stepsOf(std::size_t rule) const
    {
        return {&steps[begins[rule]], &steps[begins[rule + 1]]};
    }
};

constexpr CompiledRules compiled;
static_assert(compiled.isValid && std::size(grammar) <= 64, "a rule is a bit of a candidate");

bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Upper-case letters are counted from 'A', and so is every other character.
std::uint64_t digitValue(char c)
{
    const std::uint64_t code = static_cast<unsigned char>(c);
    if (c >= '0' && c <= '9')
        return code - '0';
    return c >= 'a' && c <= 'z' ? code - 87 : code - 55;
}

/// Takes the prefix that selects the base.
std::uint64_t takeBase(std::string_view *text)
{
    if (!text->starts_with('0'))
        return 10;
    text->remove_prefix(1);
    const std::uint64_t base = text->starts_with('x') ? 16 : text->starts_with('b') ? 2 : 8;
    if (base != 8)
        text->remove_prefix(1);
    return base;
}

}  // namespace

void Lexer::addToken(std::string_view pattern, std::int32_t kind, std::int32_t precedence)
{
    ownRules.push_back({TokenPattern(pattern), kind, precedence});
}

std::vector<LexerToken> Lexer::rules() const
{
    std::vector<LexerToken> all;
    for (const Rule &rule : grammar)
        all.push_back({TokenPattern(rule.pattern), rule.kind, rule.precedence});
    all.insert(all.end(), ownRules.begin(), ownRules.end());
    return all;
}

void Lexer::setText(std::string_view newText)
{
    copy.assign(newText.begin(), newText.end());
    borrowText({copy.data(), copy.size()});
}

void Lexer::borrowText(std::string_view newText)
{
    text = newText;
    characters = {};
    nextPosition = 0;
    scans = 0;
    next();
}

void Lexer::next()
{
    while (nextPosition < text.size()) {
        const Token::Kind kind = scanToken();
        if (kind != Token::Whitespace) {
            currentKind = kind;
            return;
        }
    }
    currentKind = Token::EndOfInput;
}

Token::Kind Lexer::scanToken()
{
    assert(nextPosition < text.size());
    const std::string_view rest = text.substr(nextPosition);
    std::uint64_t candidates = compiled.candidates[static_cast<unsigned char>(rest.front())];
    for (; candidates != 0; candidates &= candidates - 1) {
        const auto rule = static_cast<std::size_t>(std::countr_zero(candidates));
        if (const std::size_t length = TokenPattern::match(compiled.stepsOf(rule), rest))
            return take(length, grammar[rule].kind, grammar[rule].precedence);
    }
    for (const LexerToken &rule : ownRules) {
        if (const std::size_t length = rule.pattern.match(rest))
            return take(length, rule.kind, rule.precedence);
    }
    throw ParserException(std::string("unrecognised token: ").append(rest));
}

Token::Kind Lexer::take(std::size_t length, std::int32_t kind, std::int32_t precedence)
{
    characters = text.substr(nextPosition, length);
    nextPosition += length;
    ++scans;
    currentPrecedence = precedence;
    return static_cast<Token::Kind>(kind);
}

std::int64_t Lexer::tokenToInt64() const
{
    return static_cast<std::int64_t>(readNumber(characters));
}

std::uint64_t Lexer::tokenToUInt64() const
{
    return readNumber(characters);
}

double Lexer::tokenToDouble() const
{
    // A copy, because strtod needs an end: in "1.5e3" it would read on into the next token.
    return std::strtod(token().c_str(), nullptr);
}

std::uint64_t readNumber(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    const std::uint64_t base = takeBase(&text);
    std::uint64_t value = 0;
    for (const char c : text)
        value = value * base + digitValue(c);
    return negative ? 0 - value : value;
}
