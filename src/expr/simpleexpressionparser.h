#pragma once

#include "expressionparser.h"

/// A parser that knows no names: only literals and operators have a value, and everything else is
/// a ParserException. Making one costs next to nothing.
class SimpleExpressionParser : public ExpressionParser
{
public:
    /// One for the whole process, made when it is first asked for and never released.
    static SimpleExpressionParser *instance();

    ExpressionObject *lookupScopedSymbol(const QStringList &parts) override;
    ExpressionObject *lookupSymbol(const char *name) override;
    ExpressionObject *lookupRegister(const QString &name) override;
    bool isTypeName(const QString &name) override;
    ExpressionValue castValue(const BaseType &type, const ExpressionValue &value) override;
    ExpressionValue dereferenceValue(ExpressionObject *base, qint32 index) override;
    ExpressionValue memberValue(const ExpressionValue &value, const QString &name) override;
    ExpressionValue scopedMemberValue(const ExpressionValue &value,
                                      const QStringList &parts) override;
    void assignValue(ExpressionObject *target, const ExpressionValue &value) override;
    ExpressionValue objectValue(ExpressionObject *object) override;

    // These never throw a ParserException: where there is no value of the kind asked for, they
    // return 0 or false, and *ok, which must not be null, is false.

    /// A number as ExpressionValue::toUInt64() reads it: for a floating value its bit pattern.
    quint64 evaluateUnsigned(const char *text, bool *ok);
    /// A number as ExpressionValue::toInt64() reads it.
    qint64 evaluateSigned(const char *text, bool *ok);
    /// A boolean; no number counts as one.
    bool evaluateBool(const char *text, bool *ok);
};
