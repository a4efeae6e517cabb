#include "numberreader.h"

namespace
{

bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Upper-case letters are counted from 'A', and so is every other character.
quint64 digitValue(char c)
{
    const quint64 code = static_cast<unsigned char>(c);
    if (c >= '0' && c <= '9')
        return code - '0';
    return c >= 'a' && c <= 'z' ? code - 87 : code - 55;
}

/// Takes the prefix that selects the base.
quint64 takeBase(QByteArrayView *text)
{
    if (!text->startsWith('0'))
        return 10;
    *text = text->sliced(1);
    const quint64 base = text->startsWith('x') ? 16 : text->startsWith('b') ? 2 : 8;
    if (base != 8)
        *text = text->sliced(1);
    return base;
}

}  // namespace

quint64 readNumber(QByteArrayView text)
{
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    const bool negative = text.startsWith('-');
    if (negative || text.startsWith('+'))
        text = text.sliced(1);
    const quint64 base = takeBase(&text);
    quint64 value = 0;
    for (const char c : text)
        value = value * base + digitValue(c);
    return negative ? 0 - value : value;
}
