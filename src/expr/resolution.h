#pragma once

#include "expressionparser.h"
#include "types.h"

/// The nodes below reach beyond the expression: to names, registers, types, memory. Each asks its
/// parser, which must not be null, when it is evaluated, after its operands; what can be wrong is
/// what the parser throws, or an operand that is no object where an object is needed.
class AskingNode
{
public:
    ExpressionParser *parser;

protected:
    explicit AskingNode(ExpressionParser *resolver) : parser(resolver) { assert(resolver); }
    ~AskingNode() = default;

    /// The value of \a node, which must be an object; else throws \a message.
    static ExpressionValue evaluateObject(const Expression &node, const char *message)
    {
        ExpressionValue value = node.evaluate();
        if (!value.isObject())
            throw ParserException(message);
        return value;
    }
    /// The value of \a node, read by the parser where it is an object.
    ExpressionValue evaluateRead(const Expression &node) const
    {
        ExpressionValue value = node.evaluate();
        if (value.isObject())
            value = parser->objectValue(value.object.get());
        return value;
    }
};

/// A node that is a name by itself.
class NameExpression : public TreeExpression, public AskingNode
{
public:
    NameExpression(std::string itsName, ExpressionParser *resolver)
        : AskingNode(resolver),
          name(std::move(itsName))
    {
    }
    void dumpTo(std::string &text) const override
    {
        text.append("Identifier(").append(name).append(")");
    }

    std::string name;
};

class IdentifierExpression : public NameExpression
{
public:
    using NameExpression::NameExpression;
    ExpressionValue evaluate() const override
    {
        return ExpressionValue::fromObject(parser->lookupSymbol(name.c_str()));
    }
};

/// The name of a register, without the "@".
class RegisterExpression : public NameExpression
{
public:
    using NameExpression::NameExpression;
    ExpressionValue evaluate() const override
    {
        return ExpressionValue::fromObject(parser->lookupRegister(name));
    }
};

/// The parts of a name with "::" between them.
inline std::string joined(const std::vector<std::string> &parts)
{
    std::string text;
    for (const std::string &part : parts)
        text.append(&part == &parts.front() ? "" : "::").append(part);
    return text;
}

/// A name with "::" in it, or in front of it: "::x" has the one part "x".
class ScopedIdentifierExpression : public TreeExpression, public AskingNode
{
public:
    ScopedIdentifierExpression(std::vector<std::string> nameParts, ExpressionParser *resolver)
        : AskingNode(resolver),
          parts(std::move(nameParts))
    {
    }
    ExpressionValue evaluate() const override
    {
        return ExpressionValue::fromObject(parser->lookupScopedSymbol(parts));
    }
    void dumpTo(std::string &text) const override
    {
        text.append("Identifier(").append(joined(parts)).append(")");
    }

    std::vector<std::string> parts;
};

/// A node that asks about two operands.
class AskingBinaryExpression : public BinaryExpression, public AskingNode
{
public:
    AskingBinaryExpression(OwnedExpression leftOperand, OwnedExpression rightOperand,
                           ExpressionParser *resolver)
        : BinaryExpression(std::move(leftOperand), std::move(rightOperand)),
          AskingNode(resolver)
    {
    }
};

/// Stores the right value in the object that the left operand is, which is also the value. Unlike
/// an operator it evaluates the left operand first.
class AssignExpression : public AskingBinaryExpression
{
public:
    using AskingBinaryExpression::AskingBinaryExpression;
    ExpressionValue evaluate() const override
    {
        ExpressionValue target = evaluateObject(*left, "bad expression type");
        parser->assignValue(target.object.get(), evaluateRead(*right));
        return target;
    }
    const char *dumpName() const override { return "="; }
};

/// A member of the left operand; the right operand is the node of the member's name.
class DotExpression : public AskingBinaryExpression
{
public:
    using AskingBinaryExpression::AskingBinaryExpression;
    ExpressionValue evaluate() const override
    {
        const ExpressionValue base = left->evaluate();
        if (const auto *member = dynamic_cast<const IdentifierExpression *>(right.get()))
            return parser->memberValue(base, member->name);
        if (const auto *member = dynamic_cast<const ScopedIdentifierExpression *>(right.get()))
            return parser->scopedMemberValue(base, member->parts);
        throw ParserException("bad expression type");
    }
    const char *dumpName() const override { return "Dot"; }
};

/// The left operand indexed by the right one; "*x" is x indexed by 0.
class LeftSquareBracketExpression : public AskingBinaryExpression
{
public:
    using AskingBinaryExpression::AskingBinaryExpression;
    ExpressionValue evaluate() const override
    {
        const ExpressionValue base = evaluateObject(*left, "bad expression type");
        const ExpressionValue index = evaluateRead(*right);
        if (!index.isNumeric() && !index.isBoolean())
            throw ParserException("bad index type");
        return parser->dereferenceValue(base.object.get(),
                                        static_cast<std::int32_t>(index.toInt64()));
    }
    const char *dumpName() const override { return "LeftSquareBracket"; }
};

/// A node that asks about one operand.
class AskingUnaryExpression : public UnaryExpression, public AskingNode
{
public:
    AskingUnaryExpression(OwnedExpression operandNode, ExpressionParser *resolver,
                          int otherHeight = 0)
        : UnaryExpression(std::move(operandNode), otherHeight),
          AskingNode(resolver)
    {
    }
};

class SizeofExpression : public AskingUnaryExpression
{
public:
    using AskingUnaryExpression::AskingUnaryExpression;
    ExpressionValue evaluate() const override
    {
        const ExpressionValue value =
            evaluateObject(*operand, "cannot determine sizeof of a constant");
        return parser->sizeOfValue(value.object.get());
    }
    const char *dumpName() const override { return "sizeof"; }
};

class AddressofExpression : public AskingUnaryExpression
{
public:
    using AskingUnaryExpression::AskingUnaryExpression;
    ExpressionValue evaluate() const override
    {
        const ExpressionValue value = evaluateObject(*operand, "cannot take address of a constant");
        return parser->addressOfValue(value.object.get());
    }
    void dumpTo(std::string &text) const override { operand->dumpTo(text += '&'); }
};

/// The address of a line of a source file.
class AddressofLineExpression : public TreeExpression, public AskingNode
{
public:
    AddressofLineExpression(std::string file, std::int64_t lineNumber, ExpressionParser *resolver)
        : AskingNode(resolver),
          fileName(std::move(file)),
          line(lineNumber)
    {
    }
    ExpressionValue evaluate() const override { return parser->addressOfLine(fileName, line); }
    void dumpTo(std::string &text) const override
    {
        text.append("addressof(\"").append(fileName).append("\", ");
        text.append(std::to_string(line)).append(")");
    }

    std::string fileName;
    std::int64_t line;
};

class CastExpression : public AskingUnaryExpression
{
public:
    CastExpression(OwnedType target, OwnedExpression operandNode, ExpressionParser *resolver)
        : AskingUnaryExpression(std::move(operandNode), resolver, target->height()),
          type(std::move(target))
    {
    }
    ExpressionValue evaluate() const override
    {
        return parser->castValue(*type, operand->evaluate());
    }
    void dumpTo(std::string &text) const override
    {
        type->nameTo(text += '(');
        operand->dumpTo(text += ')');
    }

    OwnedType type;
};

/// The operand is the function.
class CallExpression : public AskingUnaryExpression
{
public:
    CallExpression(OwnedExpression function, std::vector<OwnedExpression> argumentNodes,
                   ExpressionParser *resolver)
        : AskingUnaryExpression(std::move(function), resolver, heightOf(argumentNodes)),
          arguments(std::move(argumentNodes))
    {
    }
    ExpressionValue evaluate() const override
    {
        const ExpressionValue functionValue = operand->evaluate();
        std::vector<ExpressionValue> values;
        values.reserve(arguments.size());
        for (const OwnedExpression &argument : arguments)
            values.push_back(argument->evaluate());
        return parser->callFunction(functionValue, values);
    }
    void dumpTo(std::string &text) const override
    {
        operand->dumpTo(text);
        text += '(';
        for (const OwnedExpression &argument : arguments)
            argument->dumpTo(text);
        text += ')';
    }

    std::vector<OwnedExpression> arguments;

private:
    static int heightOf(const std::vector<OwnedExpression> &nodes)
    {
        int height = 0;
        for (const OwnedExpression &node : nodes)
            height = std::max(height, node->height());
        return height;
    }
};
