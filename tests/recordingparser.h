#pragma once

#include "resolution.h"
#include "simpleexpressionparser.h"
#include "types.h"
#include "valueformat.h"

#include <map>

using Value = ExpressionValue;

/// The type and the text of a value: "int64 7", "uint16 7", "float64 0.5", "bool true", "string a".
inline std::string describe(const Value &value)
{
    static constexpr const char *names[] = {"bool",   "int",   "uint", "string",
                                            "object", "float", "void"};
    const std::string text = toString(value);
    return names[value.kind] + (value.size ? std::to_string(value.size * 8) : "") +
           (text.empty() ? "" : " ") + text;
}

class Variable : public ExpressionObject
{
public:
    std::string text() override { return ""; }
    Value value() override { return current; }
    Value current;
};

/// Knows every name, as a variable that is void until it is assigned, and notes what it is asked.
/// A cast to a simple type reads the bits anew, one to "size_t" gives single precision.
class RecordingParser : public SimpleExpressionParser
{
public:
    ExpressionObject *lookupSymbol(const char *name) override { return variable(name); }
    ExpressionObject *lookupScopedSymbol(const std::vector<std::string> &parts) override
    {
        return variable("::" + joined(parts));
    }
    ExpressionObject *lookupRegister(const std::string &name) override
    {
        return variable("@" + name);
    }
    bool isTypeName(const std::string &name) override
    {
        return name == "size_t" || name == "struct point";
    }
    Value castValue(const BaseType &type, const Value &value) override
    {
        const auto *simple = dynamic_cast<const SimpleType *>(&type);
        if (type.name() == "size_t")
            return Value::fromDouble(value.toDouble(), 4);
        if (!simple)
            return noted("cast " + type.name(), value);
        const std::int32_t size = 1 << simple->code;
        return simple->isUnsigned
                   ? Value::fromUInt64(value.payload, size)
                   : Value::fromInt64(static_cast<std::int64_t>(value.payload), size);
    }
    Value dereferenceValue(ExpressionObject *base, std::int32_t index) override
    {
        return noted("index " + std::to_string(index), Value::fromObject(base));
    }
    Value scopedMemberValue(const Value &value, const std::vector<std::string> &parts) override
    {
        return noted("member " + joined(parts), value);
    }
    void assignValue(ExpressionObject *target, const Value &value) override
    {
        static_cast<Variable *>(target)->current = noted("set " + describe(value), value);
    }
    Value objectValue(ExpressionObject *object) override { return object->value(); }

    std::string notes;

private:
    Variable *variable(const std::string &name)
    {
        noted(name, {});
        return &variables[name];
    }
    Value noted(const std::string &what, const Value &value)
    {
        notes += what + "; ";
        return value;
    }
    std::map<std::string, Variable> variables;
};

/// What evaluateUnsigned(), evaluateSigned() and evaluateBool() make of \a text: "8 8 none".
inline std::string threeValues(SimpleExpressionParser *parser, const std::string &text)
{
    std::string all;
    const auto add = [&](auto evaluate) {
        bool ok = true;
        const auto value = (parser->*evaluate)(text.c_str(), &ok);
        all += all.empty() ? "" : " ";
        all += ok ? std::to_string(value) : value == 0 ? "none" : "a value though not ok";
    };
    add(&SimpleExpressionParser::evaluateUnsigned);
    add(&SimpleExpressionParser::evaluateSigned);
    add(&SimpleExpressionParser::evaluateBool);
    return all;
}

/// Makes a tree of every text, as any class does that may have rules of its own.
class TreeOnly : public SimpleExpressionParser
{
};
