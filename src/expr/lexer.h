#pragma once

#include "tokenpattern.h"

/// What a token is. The numbers are part of the interface; 1 is not used.
namespace Token
{
enum Kind : std::int32_t {
    EndOfInput = 0,
    Whitespace = 2,  ///< scanned, but never left as the current token
    DecimalNumber = 3,
    HexadecimalNumber = 4,
    BinaryNumber = 5,
    FloatingNumber = 6,
    String = 7,
    Identifier = 8,
    Register = 9,
    Semicolon = 10,
    Colon = 11,
    Scope = 12,
    LeftParenthesis = 13,
    RightParenthesis = 14,
    LeftBracket = 15,
    RightBracket = 16,
    LeftBrace = 17,
    RightBrace = 18,
    Dot = 19,
    Arrow = 20,
    Increment = 21,
    Decrement = 22,
    Tilde = 23,
    Exclamation = 24,
    Star = 25,
    Slash = 26,
    Percent = 27,
    Plus = 28,
    Minus = 29,
    ShiftLeft = 30,
    ShiftRight = 31,
    UnsignedShiftRight = 32,
    Less = 33,
    LessEqual = 34,
    Greater = 35,
    GreaterEqual = 36,
    Equal = 37,
    NotEqual = 38,
    Ampersand = 39,
    Caret = 40,
    Bar = 41,
    AndAnd = 42,
    OrOr = 43,
    Question = 44,
    Assign = 45,
    PlusAssign = 46,
    MinusAssign = 47,
    StarAssign = 48,
    SlashAssign = 49,
    PercentAssign = 50,
    ShiftRightAssign = 51,
    ShiftLeftAssign = 52,
    UnsignedShiftRightAssign = 53,
    AmpersandAssign = 54,
    CaretAssign = 55,
    BarAssign = 56,
    Comma = 57,
};

/// The level of a token is the precedence of the binary operator that it is.
constexpr std::int32_t loosestLevel = -4;
constexpr std::int32_t tightestLevel = 9;
constexpr std::int32_t noOperator = 10;
}  // namespace Token

/// One rule of the table: text of this form is a token of this kind and precedence.
struct LexerToken {
    TokenPattern pattern;
    std::int32_t kind;
    std::int32_t precedence;
};

/// The number that \a text spells: white space, a sign, then "0x" (base 16), "0b" (base 2) or "0"
/// (base 8) and digits, or digits of base 10. Every character up to the end counts as a digit,
/// whatever the base: "08" is 8, and 'z' is 35. The value wraps modulo 2^64, and a number with a
/// minus sign is its two's complement. Cannot fail; text without digits is 0.
std::uint64_t readNumber(std::string_view text);

/// Cuts the text of an expression into tokens, by an ordered list of rules: where several match, the
/// first wins, even against a longer match. Text is Latin-1, and a token is a range of it. What no
/// rule matches ends in a ParserException, with the position at the offending character. One thread
/// at a time; making a lexer or a token allocates nothing.
class Lexer
{
public:
    /// Appends a rule behind those that this lexer has; see TokenPattern for the notation. One whose
    /// pattern is invalid is listed and never applies. Other lexers do not see it.
    void addToken(std::string_view pattern, std::int32_t kind, std::int32_t precedence);
    /// The rules in their order, those of the grammar first.
    std::vector<LexerToken> rules() const;

    /// Starts over with a copy of \a newText and makes its first token current.
    void setText(std::string_view newText);
    /// The same without a copy: \a newText must stay until the last token is taken.
    void borrowText(std::string_view newText);
    /// Makes the next token that is not white space current. At the end of the text the kind is
    /// Token::EndOfInput, and precedence and characters stay those of the last token scanned.
    void next();
    /// Consumes one token, white space included, and returns its kind without making it the
    /// current kind. Requires text to be left.
    Token::Kind scanToken();

    /// Any number where addToken() was used.
    Token::Kind kind() const { return currentKind; }
    /// The level of the last token scanned; Token::noOperator before the first.
    std::int32_t precedence() const { return currentPrecedence; }
    /// Index of the first character not yet consumed.
    std::size_t position() const { return nextPosition; }
    /// Tokens that were scanned since the text was set, white space included.
    std::size_t scanned() const { return scans; }

    /// The characters of the current token.
    std::string token() const { return std::string(characters); }
    /// The same; gone with the text.
    std::string_view tokenBytes() const { return characters; }
    bool tokenIs(std::string_view word) const { return characters == word; }

    // The current token as a decimal number, as a hexadecimal or binary one, and as strtod reads it.
    std::int64_t tokenToInt64() const { return static_cast<std::int64_t>(readNumber(characters)); }
    std::uint64_t tokenToUInt64() const { return readNumber(characters); }
    double tokenToDouble() const;

private:
    Token::Kind take(std::size_t length, std::int32_t kind, std::int32_t precedence);

    std::vector<LexerToken> ownRules;
    std::vector<char> copy;  ///< of the text; no string, because moving one moves short texts
    std::string_view text;
    std::string_view characters;  ///< of the current token
    std::size_t nextPosition = 0;
    std::size_t scans = 0;
    Token::Kind currentKind = Token::EndOfInput;
    std::int32_t currentPrecedence = Token::noOperator;
};
