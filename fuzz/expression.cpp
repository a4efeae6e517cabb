// Expressions: parse, dump, evaluate, with a parser that knows no names and one that knows all.

#include "expression.h"
#include "check.h"
#include "parserexception.h"
#include "simpleexpressionparser.h"
#include "valueformat.h"

#include <algorithm>
#include <cstring>

namespace
{

/// Every name is the same variable, every other type name is known.
class KnowingParser : public SimpleExpressionParser, public ExpressionObject
{
public:
    QString text() override { return QStringLiteral("variable"); }
    ExpressionValue value() override { return current; }
    ExpressionObject *lookupSymbol(const char *) override { return this; }
    ExpressionObject *lookupRegister(const QString &) override { return this; }
    bool isTypeName(const QString &name) override { return name.size() % 2 != 0; }
    ExpressionValue castValue(const BaseType &, const ExpressionValue &value) override
    {
        return value;
    }
    ExpressionValue dereferenceValue(ExpressionObject *base, qint32) override
    {
        return ExpressionValue::fromObject(base);
    }
    void assignValue(ExpressionObject *, const ExpressionValue &value) override
    {
        current = value.isObject() ? ExpressionValue() : value;
    }
    ExpressionValue objectValue(ExpressionObject *) override { return current; }

private:
    ExpressionValue current = ExpressionValue::fromInt64(7, 4);
};

/// The tree, and the value in words or the message.
std::string describe(ExpressionParser *parser, const char *text, ExpressionValue *value)
{
    // What a step such as ++ stands for doubles with each of them when it is written out.
    const bool canDump = std::count_if(text, text + std::strlen(text), [](char c) {
                             return c == '+' || c == '-' || c == '=';
                         }) < 20;
    std::string words;
    try {
        if (const auto root = parser->parse(text); root && canDump)
            words = root->dump().toStdString();
        *value = parser->evaluate(text);
        words += ' ' + std::to_string(value->kind) + '/' + std::to_string(value->size) + ' ';
        return words + toString(*value).toStdString() + toString(*value, 16, true).toStdString();
    } catch (const ParserException &error) {
        *value = {};
        return words + " ! " + error.message().toStdString();
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    SimpleExpressionParser simple;
    ExpressionValue value;
    const std::string first = describe(&simple, text.c_str(), &value);
    bool isSigned = false;
    bool isUnsigned = false;
    bool isBool = false;
    if (simple.evaluateSigned(text.c_str(), &isSigned) != (isSigned ? value.toInt64() : 0) ||
        simple.evaluateUnsigned(text.c_str(), &isUnsigned) != (isUnsigned ? value.toUInt64() : 0) ||
        simple.evaluateBool(text.c_str(), &isBool) != (isBool && value.toBool()) ||
        isSigned != value.isNumeric() || isUnsigned != isSigned || isBool != value.isBoolean())
        requireEqual(text, "is evaluated in different ways");
    requireEqual(describe(&simple, text.c_str(), &value), first);

    KnowingParser knowing;
    describe(&knowing, text.c_str(), &value);
    return 0;
}
