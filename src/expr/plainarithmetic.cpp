#include "plainarithmetic.h"

#include "operators.h"

// Most expressions of a document are a few numbers: $(i)+1, 3 < 10. Tokens, nodes and values that
// can hold a text cost ten times what there is to compute, so these are read and computed at once,
// by the same descent as in expressionparser.cpp and with the same operators.
//
// It takes decimal, hexadecimal and binary numbers, the operators that compute, parentheses and white
// space, to the end of the text. All else it leaves to the parser, which starts over: an odd
// character or order of them, what stands behind a whole expression, and what begins behind the
// thousandth character. So it needs no rule of the grammar but those it follows:
//
// - The lexer prefers long operators, and an operand cannot begin with "=", "<", ">" or "|". So two
//   characters tell which operator it is: what "<<=", ">>>" or "->" goes on with is no operand.
//   "++" and "--", which are no operators here, are told from two signs.
// - A thousand characters make fewer calls and nodes than the parser's bounds allow.
// - Operators do not short-circuit and nothing has an effect, so the order of evaluation does not
//   show, nor whether an operand is missing before or behind a division by zero.
// - A name where an operand can be has no value, whatever it turns out to be a part of.

namespace
{

constexpr std::ptrdiff_t maximumLength = 1000;

bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r') || c == '\xA0';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '$';
}

bool isHexadecimal(char c)
{
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// Behind the number that begins at \a digits with a digit.
const char *endOfNumber(const char *digits)
{
    const char *end = digits + 1;
    if (*digits == '0' && *end == 'x') {
        while (isHexadecimal(*++end)) {
        }
    } else if (*digits == '0' && *end == 'b') {
        while (*++end == '0' || *end == '1') {
        }
    } else {
        while (isDigit(*end))
            ++end;
    }
    return end;
}

class PlainReader
{
public:
    /// \a text must not be null.
    explicit PlainReader(const char *text) : start(text), at(text) { assert(text); }

    PlainResult read()
    {
        PlainValue value;
        if (readBinary(Token::loosestLevel, &value) && *at == '\0')
            result = {PlainResult::Done, value, 0, result.tokens};
        result.characters = static_cast<std::size_t>(at - start);
        return result;
    }

private:
    // These return false where there is no value, or none that is known.

    bool readBinary(std::int32_t level, PlainValue *value)
    {
        if (!readUnary(value))
            return false;
        while (next && next->level >= level) {
            const OperatorRow *row = next;
            at += row->text[1] == '\0' ? 1 : 2;
            PlainValue right;
            const bool isRead = row->level == Token::tightestLevel
                                    ? readUnary(&right)
                                    : readBinary(row->level + 1, &right);
            if (!isRead || !succeeds(row->apply(value, right)))
                return false;
        }
        return true;
    }

    bool readUnary(PlainValue *value)
    {
        skipSpace();
        ++result.tokens;
        if (at - start > maximumLength)
            return false;
        if (isDigit(*at))
            return readNumber(value);
        switch (*at) {
        case '(':
            return readParenthesis(value);
        case '-':
            return at[1] != '-' && readOperand(value) && succeeds(negate(value));
        case '+':
            return at[1] != '+' && readOperand(value);
        case '!':
            return readOperand(value) && succeeds(logicalNot(value));
        case '~':
            return readOperand(value) && succeeds(bitNot(value));
        default:
            if (*at == '\0' || *at == ')' || isLetter(*at))
                result.outcome = PlainResult::Failure;
            return false;
        }
    }

    /// What follows the sign at which the reader stands.
    bool readOperand(PlainValue *value)
    {
        ++at;
        return readUnary(value);
    }

    bool readParenthesis(PlainValue *value)
    {
        ++at;
        if (!readBinary(Token::loosestLevel, value) || *at != ')')
            return false;
        ++at;
        findOperator();
        return true;
    }

    bool readNumber(PlainValue *value)
    {
        const char *digits = at;
        at = endOfNumber(at);
        const std::string_view text(digits, static_cast<std::size_t>(at - digits));
        *value = {PlainValue::Signed, 8, ::readNumber(text)};
        findOperator();
        return *at != '.';  // else a floating number, perhaps
    }

    /// The operator behind an operand; none at the end, and at what the parser has to look at.
    void findOperator()
    {
        skipSpace();
        ++result.tokens;
        next = *at == '\0' ? nullptr : ::findOperator(at[0], at[1]);
    }

    void skipSpace()
    {
        while (isSpace(*at))
            ++at;
    }

    bool succeeds(const char *failure)
    {
        if (failure)
            result.outcome = PlainResult::Failure;
        return !failure;
    }

    const char *start;
    const char *at;
    const OperatorRow *next = nullptr;
    PlainResult result;
};

}  // namespace

PlainResult evaluatePlain(const char *text)
{
    return PlainReader(text).read();
}
