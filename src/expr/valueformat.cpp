#include "valueformat.h"

#include <cmath>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace
{

struct Notation {
    int base;
    QLatin1StringView prefix;
    quint32 bitsPerDigit;
};

constexpr Notation notations[] = {{16, "0x"_L1, 4}, {8, "0"_L1, 3}, {2, "0b"_L1, 1}};

const Notation *findNotation(int base)
{
    for (const Notation &notation : notations) {
        if (notation.base == base)
            return &notation;
    }
    return nullptr;
}

QString characterText(quint16 code)
{
    if (code >= 32 && code <= 126)
        return {QChar(code)};
    return QString::asprintf("\\u%04x", static_cast<unsigned int>(code));
}

QString floatingText(double value, const char *format)
{
    if (std::isnan(value))
        return QStringLiteral("NaN");
    if (std::isinf(value))
        return QStringLiteral("Inf");
    // Not QString::asprintf, whose "%g" is Qt's own and not the C library's.
    const char *used = format ? format : "%g";
    const int length = std::snprintf(nullptr, 0, used, value);
    QByteArray text(qMax(length, 0), '\0');
    std::snprintf(text.data(), static_cast<std::size_t>(text.size()) + 1, used, value);
    return QString::fromLatin1(text);
}

QString decimalText(const ExpressionValue &value, const char *format)
{
    if (value.kind == ExpressionValue::Floating)
        return floatingText(value.toDouble(), format);
    return value.kind == ExpressionValue::Signed ? QString::number(value.toInt64())
                                                 : QString::number(value.toUInt64());
}

QString notationText(const ExpressionValue &value, const Notation &notation, bool zeroPad)
{
    const quint32 width = value.bitWidth ? value.bitWidth : static_cast<quint32>(value.size) * 8;
    const quint32 bits = qMin(width, 64U);
    const quint32 digits = (bits + notation.bitsPerDigit - 1) / notation.bitsPerDigit;
    const QString number = QString::number(value.toUInt64(), notation.base);
    return notation.prefix + (zeroPad ? number.rightJustified(digits, u'0') : number);
}

QString numberText(const ExpressionValue &value, int base, bool zeroPad, bool asCharacter,
                   const char *format)
{
    if (asCharacter)
        return characterText(static_cast<quint16>(value.payload));
    const Notation *notation = findNotation(base);
    return notation ? notationText(value, *notation, zeroPad) : decimalText(value, format);
}

}  // namespace

QString toString(const ExpressionValue &value, int base, bool zeroPad, bool asCharacter,
                 const char *format)
{
    switch (value.kind) {
    case ExpressionValue::Boolean:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case ExpressionValue::String:
        return value.text;
    case ExpressionValue::Object:
        return value.object.get()->text();
    case ExpressionValue::Void:
        return {};
    default:
        return numberText(value, base, zeroPad, asCharacter, format);
    }
}
