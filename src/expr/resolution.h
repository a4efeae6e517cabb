#pragma once

#include "expression.h"

#include <string>
#include <vector>

class BaseType;
class ExpressionParser;

/// The nodes below reach beyond the expression: to names, registers, types, memory. Each asks its
/// parser, which must not be null, when it is evaluated, after its operands; what can be wrong is
/// what the parser throws, or an operand that is no object where an object is needed.
class AskingNode
{
public:
    ExpressionParser *parser;

protected:
    explicit AskingNode(ExpressionParser *resolver);
    ~AskingNode() = default;
};

class IdentifierExpression : public TreeExpression, public AskingNode
{
public:
    IdentifierExpression(std::string identifier, ExpressionParser *resolver)
        : AskingNode(resolver),
          name(std::move(identifier))
    {
    }
    ExpressionValue evaluate() const override;
    void dumpTo(std::string &text) const override;

    std::string name;
};

/// A name with "::" in it, or in front of it: "::x" has the one part "x".
class ScopedIdentifierExpression : public TreeExpression, public AskingNode
{
public:
    ScopedIdentifierExpression(std::vector<std::string> nameParts, ExpressionParser *resolver)
        : AskingNode(resolver),
          parts(std::move(nameParts))
    {
    }
    ExpressionValue evaluate() const override;
    void dumpTo(std::string &text) const override;

    std::vector<std::string> parts;
};

/// The parts of a name with "::" between them.
std::string joined(const std::vector<std::string> &parts);

class RegisterExpression : public TreeExpression, public AskingNode
{
public:
    RegisterExpression(std::string registerName, ExpressionParser *resolver)
        : AskingNode(resolver),
          name(std::move(registerName))
    {
    }
    ExpressionValue evaluate() const override;
    void dumpTo(std::string &text) const override;

    std::string name;  ///< without the "@"
};

/// Stores the right value in the object that the left operand is, which is also the value. Unlike
/// an operator it evaluates the left operand first.
class AssignExpression : public BinaryExpression, public AskingNode
{
public:
    AssignExpression(std::unique_ptr<Expression> target, std::unique_ptr<Expression> value,
                     ExpressionParser *resolver)
        : BinaryExpression(std::move(target), std::move(value)),
          AskingNode(resolver)
    {
    }
    ExpressionValue evaluate() const override;

protected:
    const char *dumpName() const override { return "="; }
};

/// A member of the left operand; the right operand is the node of the member's name.
class DotExpression : public BinaryExpression, public AskingNode
{
public:
    DotExpression(std::unique_ptr<Expression> base, std::unique_ptr<Expression> member,
                  ExpressionParser *resolver)
        : BinaryExpression(std::move(base), std::move(member)),
          AskingNode(resolver)
    {
    }
    ExpressionValue evaluate() const override;

protected:
    const char *dumpName() const override { return "Dot"; }
};

/// The left operand indexed by the right one; "*x" is x indexed by 0.
class LeftSquareBracketExpression : public BinaryExpression, public AskingNode
{
public:
    LeftSquareBracketExpression(std::unique_ptr<Expression> base, std::unique_ptr<Expression> index,
                                ExpressionParser *resolver)
        : BinaryExpression(std::move(base), std::move(index)),
          AskingNode(resolver)
    {
    }
    ExpressionValue evaluate() const override;

protected:
    const char *dumpName() const override { return "LeftSquareBracket"; }

private:
    std::int32_t evaluateIndex() const;
};

class SizeofExpression : public TreeExpression, public AskingNode
{
public:
    SizeofExpression(std::unique_ptr<Expression> operandNode, ExpressionParser *resolver)
        : TreeExpression(operandNode->height() + 1),
          AskingNode(resolver),
          operand(std::move(operandNode))
    {
    }
    ExpressionValue evaluate() const override;
    void dumpTo(std::string &text) const override;

    std::unique_ptr<Expression> operand;
};

class AddressofExpression : public TreeExpression, public AskingNode
{
public:
    AddressofExpression(std::unique_ptr<Expression> operandNode, ExpressionParser *resolver)
        : TreeExpression(operandNode->height() + 1),
          AskingNode(resolver),
          operand(std::move(operandNode))
    {
    }
    ExpressionValue evaluate() const override;
    void dumpTo(std::string &text) const override;

    std::unique_ptr<Expression> operand;
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
    ExpressionValue evaluate() const override;
    void dumpTo(std::string &text) const override;

    std::string fileName;
    std::int64_t line;
};

class CastExpression : public TreeExpression, public AskingNode
{
public:
    CastExpression(std::unique_ptr<BaseType> target, std::unique_ptr<Expression> operandNode,
                   ExpressionParser *resolver);
    ~CastExpression() override;
    ExpressionValue evaluate() const override;
    void dumpTo(std::string &text) const override;

    std::unique_ptr<BaseType> type;
    std::unique_ptr<Expression> operand;
};

class CallExpression : public TreeExpression, public AskingNode
{
public:
    CallExpression(std::unique_ptr<Expression> functionNode,
                   std::vector<std::unique_ptr<Expression>> argumentNodes,
                   ExpressionParser *resolver);
    ExpressionValue evaluate() const override;
    void dumpTo(std::string &text) const override;

    std::unique_ptr<Expression> function;
    std::vector<std::unique_ptr<Expression>> arguments;
};
