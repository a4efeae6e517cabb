#include "simpleexpressionparser.h"

#include "parserexception.h"

using namespace Qt::StringLiterals;

namespace
{

/// The value of \a text if it has one and \a isWanted accepts it, else the void value, which every
/// conversion reads as 0.
ExpressionValue evaluateWanted(ExpressionParser *parser, const char *text,
                               bool (ExpressionValue::*isWanted)() const, bool *ok)
{
    *ok = false;
    try {
        ExpressionValue value = parser->evaluate(text);
        *ok = (value.*isWanted)();
        if (*ok)
            return value;
    } catch (const ParserException &) {
        // No value either; the caller decides what that means.
    }
    return {};
}

}  // namespace

SimpleExpressionParser *SimpleExpressionParser::instance()
{
    static auto *const parser = new SimpleExpressionParser;
    return parser;
}

ExpressionObject *SimpleExpressionParser::lookupScopedSymbol(const QStringList &parts)
{
    throw ParserException(parts.join("::"_L1) + " symbol not found"_L1);
}

ExpressionObject *SimpleExpressionParser::lookupSymbol(const char *name)
{
    throw ParserException(QLatin1StringView(name) + " symbol not found"_L1);
}

ExpressionObject *SimpleExpressionParser::lookupRegister(const QString &)
{
    throw ParserException("unknown register"_L1);
}

bool SimpleExpressionParser::isTypeName(const QString &)
{
    return false;
}

ExpressionValue SimpleExpressionParser::castValue(const BaseType &, const ExpressionValue &)
{
    throw ParserException("cannot cast"_L1);
}

ExpressionValue SimpleExpressionParser::dereferenceValue(ExpressionObject *, qint32)
{
    throw ParserException("cannot dereference"_L1);
}

ExpressionValue SimpleExpressionParser::memberValue(const ExpressionValue &, const QString &)
{
    throw ParserException("cannot dereference"_L1);
}

ExpressionValue SimpleExpressionParser::scopedMemberValue(const ExpressionValue &,
                                                          const QStringList &)
{
    throw ParserException("cannot dereference"_L1);
}

void SimpleExpressionParser::assignValue(ExpressionObject *, const ExpressionValue &)
{
    throw ParserException("this symbol not found"_L1);
}

ExpressionValue SimpleExpressionParser::objectValue(ExpressionObject *)
{
    throw ParserException("this symbol not found"_L1);
}

quint64 SimpleExpressionParser::evaluateUnsigned(const char *text, bool *ok)
{
    return evaluateWanted(this, text, &ExpressionValue::isNumeric, ok).toUInt64();
}

qint64 SimpleExpressionParser::evaluateSigned(const char *text, bool *ok)
{
    return evaluateWanted(this, text, &ExpressionValue::isNumeric, ok).toInt64();
}

bool SimpleExpressionParser::evaluateBool(const char *text, bool *ok)
{
    return evaluateWanted(this, text, &ExpressionValue::isBoolean, ok).toBool();
}
