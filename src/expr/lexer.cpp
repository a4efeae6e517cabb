#include "lexer.h"

#include "parserexception.h"

#include <bit>
#include <cstdlib>
#include <iterator>

namespace
{

struct Rule {
    const char *pattern;
    Token::Kind kind;
    std::int32_t precedence;
};

using enum Token::Kind;

// The order is the tie-break: an operator stands before the shorter ones that it begins with.
constexpr Rule grammar[] = {
    {R"([\s]+)", Whitespace, 10},
    {R"re("[^"]*")re", String, 10},
    {R"(0x[0-9A-Fa-f]*)", HexadecimalNumber, 10},
    {R"(0b[0-1]*)", BinaryNumber, 10},
    {R"(\d+\.\d+)", FloatingNumber, 10},
    {R"(\d+)", DecimalNumber, 10},
    {R"([A-Za-z_$][A-Za-z_0-9$]*)", Identifier, 10},
    {R"(@[A-Za-z_0-9]*)", Register, 10},
    {R"(;)", Semicolon, 10},
    {R"(::)", Scope, 10},
    {R"(:)", Colon, 10},
    {R"(\()", LeftParenthesis, 10},
    {R"(\))", RightParenthesis, 10},
    {R"(\[)", LeftBracket, 10},
    {R"(\])", RightBracket, 10},
    {R"(\{)", LeftBrace, 10},
    {R"(\})", RightBrace, 10},
    {R"(\.)", Dot, 10},
    {R"(->)", Arrow, 10},
    {R"(\+\+)", Increment, 10},
    {R"(\-\-)", Decrement, 10},
    {R"(!=)", NotEqual, 5},
    {R"(!)", Exclamation, 10},
    {R"(~)", Tilde, 10},
    {R"(\*=)", StarAssign, -3},
    {R"(\*)", Star, 9},
    {R"(/=)", SlashAssign, -3},
    {R"(/)", Slash, 9},
    {R"(%=)", PercentAssign, -3},
    {R"(%)", Percent, 9},
    {R"(\+=)", PlusAssign, -3},
    {R"(\+)", Plus, 8},
    {R"(\-=)", MinusAssign, -3},
    {R"(-)", Minus, 8},
    {R"(<<=)", ShiftLeftAssign, -3},
    {R"(<<)", ShiftLeft, 7},
    {R"(>>>=)", UnsignedShiftRightAssign, -3},
    {R"(>>>)", UnsignedShiftRight, 7},
    {R"(>>=)", ShiftRightAssign, -3},
    {R"(>>)", ShiftRight, 7},
    {R"(<=)", LessEqual, 6},
    {R"(<)", Less, 6},
    {R"(>=)", GreaterEqual, 6},
    {R"(>)", Greater, 6},
    {R"(==)", Equal, 5},
    {R"(\^=)", CaretAssign, -3},
    {R"(\^)", Caret, 3},
    {R"(&=)", AmpersandAssign, -3},
    {R"(&&)", AndAnd, 1},
    {R"(&)", Ampersand, 4},
    {R"(\|=)", BarAssign, -3},
    {R"(\|\|)", OrOr, 0},
    {R"(\|)", Bar, 2},
    {R"(\?)", Question, -1},
    {R"(=)", Assign, -2},
    {R"(,)", Comma, -4},
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

double Lexer::tokenToDouble() const
{
    // A copy, because strtod needs an end: in "1.5e3" it would read on into the next token.
    return std::strtod(token().c_str(), nullptr);
}

std::uint64_t readNumber(std::string_view text)
{
    const char *next = text.data();
    const char *const end = next + text.size();
    const auto isAt = [&](char c) { return next != end && *next == c; };
    while (next != end && (*next == ' ' || (*next >= '\t' && *next <= '\r')))
        ++next;
    const bool negative = isAt('-');
    if (negative || isAt('+'))
        ++next;
    std::uint64_t base = 10;
    if (isAt('0')) {
        ++next;
        base = isAt('x') ? 16 : isAt('b') ? 2 : 8;
        next += base != 8;
    }
    std::uint64_t value = 0;
    for (; next != end; ++next) {
        const char c = *next;
        // Upper-case letters are counted from 'A', and so is every other character.
        const std::uint64_t zero = c >= '0' && c <= '9' ? '0' : c >= 'a' && c <= 'z' ? 87 : 55;
        value = value * base + static_cast<unsigned char>(c) - zero;
    }
    return negative ? 0 - value : value;
}
