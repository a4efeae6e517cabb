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

/// The first characters of \a text as a number, the very first in its lowest byte. The bytes for what
/// is missing are 0, which is part of no operator.
std::uint32_t headOf(std::string_view text)
{
    std::uint32_t head = 0;
    for (std::size_t at = 0; at < text.size() && at < sizeof head; ++at)
        head |= std::uint32_t{static_cast<unsigned char>(text[at])} << (8 * at);
    return head;
}

/// The rules as the compiler reads them, so that no run of the program does.
struct CompiledRules {
    struct Pattern {
        std::size_t length = 0;  ///< in steps
        std::size_t begin = 0;   ///< in the array of steps
        /// For the operators, each step of which takes one character: these as in headOf(), and
        /// the bits that they take. No bits: a pattern with sets.
        std::uint32_t characters = 0;
        std::uint32_t bits = 0;
    };

    std::array<Pattern, std::size(grammar)> patterns = {};
    std::array<TokenPattern::Step, 24> steps = {};  ///< of the patterns with sets, and spare ones
    /// By character, a bit for each rule that can match where a text begins with it.
    std::array<std::uint64_t, 256> candidates = {};
    bool isValid = true;

    constexpr CompiledRules()
    {
        std::size_t end = 0;
        for (std::size_t rule = 0; rule < std::size(grammar); ++rule) {
            patterns[rule].begin = end;
            compile(rule);
            if (patterns[rule].bits == 0)
                end += patterns[rule].length;
        }
    }

    constexpr void compile(std::size_t rule)
    {
        Pattern &pattern = patterns[rule];
        bool isOperator = true;
        for (std::string_view rest = grammar[rule].pattern; !rest.empty(); ++pattern.length) {
            const char character = rest.front() == '\\' ? rest[1] : rest.front();
            TokenPattern::Step step;
            isValid = TokenPattern::takeStep(&rest, &step) && isValid;
            isOperator = isOperator && step.set.size() == 1;
            pattern.characters |= static_cast<std::uint32_t>(character) << (8 * pattern.length);
            pattern.bits |= 0xFFU << (8 * pattern.length);
            steps.at(pattern.begin + pattern.length) = step;
        }
        if (!isOperator)
            pattern.bits = 0;
        for (unsigned int code = 0; code < candidates.size(); ++code) {
            if (steps[pattern.begin].set.contains(static_cast<char>(code)))
                candidates[code] |= 1ULL << rule;
        }
    }

    std::size_t match(std::size_t rule, std::uint32_t head, std::string_view text) const
    {
        const Pattern &pattern = patterns[rule];
        if (pattern.bits != 0)
            return (head & pattern.bits) == pattern.characters ? pattern.length : 0;
        return TokenPattern::match({&steps[pattern.begin], pattern.length}, text);
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
    const std::uint32_t head = headOf(rest);
    std::uint64_t candidates = compiled.candidates[head & 0xFF];
    for (; candidates != 0; candidates &= candidates - 1) {
        const auto rule = static_cast<std::size_t>(std::countr_zero(candidates));
        if (const std::size_t length = compiled.match(rule, head, rest))
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
