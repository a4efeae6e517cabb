#pragma once

#include "simpleexpressionparser.h"
#include "types.h"
#include "valueformat.h"

#include <map>

using Value = ExpressionValue;

/// The kind's letter, the size and the text of a value: "s8 7" is a signed 7 of 8 bytes.
inline std::string describe(const Value &value)
{
    const std::string text = toString(value).toStdString();
    return "bsutofv"[value.kind] + std::to_string(value.size) + (text.empty() ? "" : " ") + text;
}

class Variable : public ExpressionObject
{
public:
    QString text() override { return QStringLiteral("a variable"); }
    Value value() override { return current; }
    Value current;
};

/// Knows every name, as a variable that is void until it is assigned, and notes what it is asked.
/// A cast to a simple type reads the bits anew, one to "size_t" gives single precision.
class RecordingParser : public SimpleExpressionParser
{
public:
    ExpressionObject *lookupSymbol(const char *name) override
    {
        return variable(QLatin1StringView(name));
    }
    ExpressionObject *lookupScopedSymbol(const QStringList &parts) override
    {
        return variable(QStringLiteral("::") + parts.join(u'/'));
    }
    ExpressionObject *lookupRegister(const QString &name) override { return variable(u'%' + name); }
    bool isTypeName(const QString &name) override
    {
        return name == QStringLiteral("size_t") || name == QStringLiteral("struct point");
    }
    Value castValue(const BaseType &type, const Value &value) override
    {
        const auto *simple = dynamic_cast<const SimpleType *>(&type);
        if (dynamic_cast<const UserType *>(&type))
            return Value::fromDouble(value.toDouble(), 4);
        if (!simple)
            return noted("cast " + type.name().toStdString() + " " + describe(value), value);
        const qint32 size = 1 << simple->code;
        return simple->isUnsigned ? Value::fromUInt64(value.payload, size)
                                  : Value::fromInt64(static_cast<qint64>(value.payload), size);
    }
    Value dereferenceValue(ExpressionObject *base, qint32 index) override
    {
        return noted("index " + std::to_string(index), Value::fromObject(base));
    }
    Value memberValue(const Value &value, const QString &name) override
    {
        return noted("member " + name.toStdString(), value);
    }
    Value scopedMemberValue(const Value &value, const QStringList &parts) override
    {
        return noted("member " + parts.join(u'/').toStdString(), value);
    }
    void assignValue(ExpressionObject *target, const Value &value) override
    {
        static_cast<Variable *>(target)->current = noted(":= " + describe(value), value);
    }
    Value objectValue(ExpressionObject *object) override { return object->value(); }

    std::string notes;

private:
    Variable *variable(const QString &name)
    {
        noted(name.toStdString(), {});
        return &variables[name];
    }
    Value noted(const std::string &what, const Value &value)
    {
        notes += what + "; ";
        return value;
    }
    std::map<QString, Variable> variables;
};
