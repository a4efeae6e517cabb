#pragma once

#include "expression.h"

#include <QStringList>

#include <vector>

class BaseType;
class ExpressionParser;

// The nodes that reach beyond the expression: names, registers, types, memory. Each asks its parser
// when it is evaluated, after its operands; what can be wrong is what the parser throws, or an
// operand that is no object where an object is needed.

class IdentifierExpression : public Expression
{
public:
    IdentifierExpression(QString identifier, ExpressionParser *resolver)
        : Expression(1),
          name(std::move(identifier)),
          parser(resolver)
    {
    }
    ExpressionValue evaluate() const override;
    QString dump() const override { return dumped(); }
    void dumpTo(QString &text) const override;

    QString name;
    ExpressionParser *parser;
};

/// A name with "::" in it, or in front of it: "::x" has the one part "x".
class ScopedIdentifierExpression : public Expression
{
public:
    ScopedIdentifierExpression(QStringList nameParts, ExpressionParser *resolver)
        : Expression(1),
          parts(std::move(nameParts)),
          parser(resolver)
    {
    }
    ExpressionValue evaluate() const override;
    QString dump() const override { return dumped(); }
    void dumpTo(QString &text) const override;

    QStringList parts;
    ExpressionParser *parser;
};

class RegisterExpression : public Expression
{
public:
    RegisterExpression(QString registerName, ExpressionParser *resolver)
        : Expression(1),
          name(std::move(registerName)),
          parser(resolver)
    {
    }
    ExpressionValue evaluate() const override;
    QString dump() const override { return dumped(); }
    void dumpTo(QString &text) const override;

    QString name;  ///< without the "@"
    ExpressionParser *parser;
};

/// Stores the right value in the object that the left operand is, which is also the value. Unlike
/// an operator it evaluates the left operand first.
class AssignExpression : public BinaryExpression
{
public:
    AssignExpression(std::unique_ptr<Expression> target, std::unique_ptr<Expression> value,
                     ExpressionParser *resolver);
    ExpressionValue evaluate() const override;

    ExpressionParser *parser;

protected:
    QLatin1StringView dumpName() const override;
};

/// A member of the left operand; the right operand is the node of the member's name.
class DotExpression : public BinaryExpression
{
public:
    DotExpression(std::unique_ptr<Expression> base, std::unique_ptr<Expression> member,
                  ExpressionParser *resolver);
    ExpressionValue evaluate() const override;

    ExpressionParser *parser;

protected:
    QLatin1StringView dumpName() const override;
};

/// The left operand indexed by the right one; "*x" is x indexed by 0.
class LeftSquareBracketExpression : public BinaryExpression
{
public:
    LeftSquareBracketExpression(std::unique_ptr<Expression> base, std::unique_ptr<Expression> index,
                                ExpressionParser *resolver);
    ExpressionValue evaluate() const override;

    ExpressionParser *parser;

protected:
    QLatin1StringView dumpName() const override;

private:
    qint32 evaluateIndex() const;
};

class SizeofExpression : public Expression
{
public:
    SizeofExpression(std::unique_ptr<Expression> operandNode, ExpressionParser *resolver)
        : Expression(operandNode->height() + 1),
          operand(std::move(operandNode)),
          parser(resolver)
    {
    }
    ExpressionValue evaluate() const override;
    QString dump() const override { return dumped(); }
    void dumpTo(QString &text) const override;

    std::unique_ptr<Expression> operand;
    ExpressionParser *parser;
};

class AddressofExpression : public Expression
{
public:
    AddressofExpression(std::unique_ptr<Expression> operandNode, ExpressionParser *resolver)
        : Expression(operandNode->height() + 1),
          operand(std::move(operandNode)),
          parser(resolver)
    {
    }
    ExpressionValue evaluate() const override;
    QString dump() const override { return dumped(); }
    void dumpTo(QString &text) const override;

    std::unique_ptr<Expression> operand;
    ExpressionParser *parser;
};

/// The address of a line of a source file.
class AddressofLineExpression : public Expression
{
public:
    AddressofLineExpression(QString file, qint64 lineNumber, ExpressionParser *resolver)
        : Expression(1),
          fileName(std::move(file)),
          line(lineNumber),
          parser(resolver)
    {
    }
    ExpressionValue evaluate() const override;
    QString dump() const override { return dumped(); }
    void dumpTo(QString &text) const override;

    QString fileName;
    qint64 line;
    ExpressionParser *parser;
};

class CastExpression : public Expression
{
public:
    CastExpression(std::unique_ptr<BaseType> target, std::unique_ptr<Expression> operandNode,
                   ExpressionParser *resolver);
    ~CastExpression() override;
    ExpressionValue evaluate() const override;
    QString dump() const override { return dumped(); }
    void dumpTo(QString &text) const override;

    std::unique_ptr<BaseType> type;
    std::unique_ptr<Expression> operand;
    ExpressionParser *parser;
};

class CallExpression : public Expression
{
public:
    CallExpression(std::unique_ptr<Expression> functionNode,
                   std::vector<std::unique_ptr<Expression>> argumentNodes,
                   ExpressionParser *resolver);
    ExpressionValue evaluate() const override;
    QString dump() const override { return dumped(); }
    void dumpTo(QString &text) const override;

    std::unique_ptr<Expression> function;
    std::vector<std::unique_ptr<Expression>> arguments;
    ExpressionParser *parser;
};
