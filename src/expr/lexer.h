#pragma once

#include "tokenrules.h"

#include <QByteArray>
#include <QString>

#include <memory>

/// Cuts the text of an expression into tokens. Text is Latin-1. The lexer keeps a copy of it, and
/// a token is a range of that copy: making one allocates nothing. What no rule matches ends in a
/// ParserException, with the position at the offending character. Making a lexer costs nothing
/// either; one thread at a time.
class Lexer
{
public:
    Lexer() = default;

    /// Appends a rule behind those that this lexer has; see TokenPattern for the notation. Other
    /// lexers do not see it.
    void addToken(QByteArrayView pattern, qint32 kind, qint32 precedence);
    /// The rules in their order; the standard ones unless addToken() was used.
    const std::vector<LexerToken> &rules() const { return table->list(); }

    /// Starts over with \a newText and makes its first token current.
    void setText(const QByteArray &newText);
    /// Makes the next token that is not white space current. At the end of the text the kind is
    /// Token::EndOfInput, and precedence and characters stay those of the last token scanned.
    void next();
    /// Consumes one token, white space included, and returns its kind without making it the
    /// current kind. Requires text to be left.
    qint32 scanToken();

    qint32 kind() const { return currentKind; }
    /// The level of the last token scanned; Token::noOperator before the first.
    qint32 precedence() const { return currentPrecedence; }
    /// Index of the first character not yet consumed.
    qsizetype position() const { return nextPosition; }

    /// The characters of the current token.
    QString token() const { return QString::fromLatin1(tokenBytes()); }
    /// The same; gone with the next setText().
    QByteArrayView tokenBytes() const { return QByteArrayView(text).sliced(start, length); }
    bool tokenIs(const char *word) const { return tokenBytes() == QByteArrayView(word); }

    /// The current token as a decimal number; see readNumber().
    qint64 tokenToInt64() const;
    /// The current token as a hexadecimal or binary number; see readNumber().
    quint64 tokenToUInt64() const;
    /// The current token as a floating-point number, as strtod reads it.
    double tokenToDouble() const;

private:
    const TokenRules *table = &TokenRules::standard();
    std::unique_ptr<TokenRules> ownTable;  ///< made when a rule is added
    QByteArray text;
    qsizetype nextPosition = 0;
    qsizetype start = 0;   ///< of the current token
    qsizetype length = 0;  ///< of the current token
    qint32 currentKind = Token::EndOfInput;
    qint32 currentPrecedence = Token::noOperator;
};
