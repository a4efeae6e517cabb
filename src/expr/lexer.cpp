#include "lexer.h"

#include "numberreader.h"
#include "parserexception.h"

#include <cstdlib>

using namespace Qt::StringLiterals;

void Lexer::addToken(QByteArrayView pattern, qint32 kind, qint32 precedence)
{
    if (!ownTable) {
        ownTable = std::make_unique<TokenRules>(*table);
        table = ownTable.get();
    }
    ownTable->addToken(pattern.toByteArray(), kind, precedence);
}

void Lexer::setText(const QByteArray &newText)
{
    text = newText;
    nextPosition = 0;
    start = 0;
    length = 0;
    next();
}

void Lexer::next()
{
    while (nextPosition < text.size()) {
        const qint32 scanned = scanToken();
        if (scanned != Token::Whitespace) {
            currentKind = scanned;
            return;
        }
    }
    currentKind = Token::EndOfInput;
}

qint32 Lexer::scanToken()
{
    const char *first = text.constData() + nextPosition;
    const char *last = text.constData() + text.size();
    qsizetype taken = 0;
    const LexerToken *rule = table->find(first, last, &taken);
    if (!rule)
        throw ParserException("unrecognised token: "_L1 + QLatin1StringView(first, last));
    start = nextPosition;
    length = taken;
    nextPosition += taken;
    currentPrecedence = rule->precedence;
    return rule->kind;
}

qint64 Lexer::tokenToInt64() const
{
    return static_cast<qint64>(readNumber(tokenBytes()));
}

quint64 Lexer::tokenToUInt64() const
{
    return readNumber(tokenBytes());
}

double Lexer::tokenToDouble() const
{
    // A copy, because strtod needs an end: in "1.5e3" it would read on into the next token.
    return std::strtod(tokenBytes().toByteArray().constData(), nullptr);
}
