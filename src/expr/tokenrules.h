#pragma once

#include "tokenpattern.h"

#include <QVarLengthArray>
#include <QtGlobal>

#include <array>
#include <cstdint>
#include <vector>

/// What a token is. The numbers are part of the interface; 1 is not used.
namespace Token
{
enum Kind : qint32 {
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
constexpr qint32 loosestLevel = -4;
constexpr qint32 tightestLevel = 9;
constexpr qint32 noOperator = 10;
}  // namespace Token

/// One rule of the table: text of this form is a token of this kind and precedence.
struct LexerToken {
    TokenPattern pattern;
    qint32 kind;
    qint32 precedence;
};

/// The ordered list of rules: where several match, the first wins, even against a longer match.
class TokenRules
{
public:
    /// The grammar's own rules, made when they are first asked for and shared by all lexers.
    static const TokenRules &standard();

    /// Appends a rule. One whose pattern is invalid is listed and never applies.
    void addToken(const QByteArray &pattern, qint32 kind, qint32 precedence);
    const std::vector<LexerToken> &list() const { return rules; }
    /// The rule that applies at the beginning of [first, last), which must not be empty, and in
    /// *length the characters that it takes, at least one. Null: none applies.
    const LexerToken *find(const char *first, const char *last, qsizetype *length) const;

private:
    std::vector<LexerToken> rules;
    /// By first character, the rules that can match there, in the order of the list. The standard
    /// ones need no memory beyond this.
    std::array<QVarLengthArray<std::uint32_t, 6>, 256> candidates;
};

// Inline for the same reason as TokenPattern::match().
inline const LexerToken *TokenRules::find(const char *first, const char *last,
                                          qsizetype *length) const
{
    for (const std::uint32_t index : candidates[static_cast<unsigned char>(*first)]) {
        *length = rules[index].pattern.match(first, last);
        if (*length > 0)
            return &rules[index];
    }
    return nullptr;
}
