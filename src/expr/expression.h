#pragma once

#include "expressionvalue.h"

#include <memory>
#include <optional>

class BinaryExpression;
enum class BinaryOperator;

/// A node of the tree that a parser makes of an expression. It owns its children; a node that asks
/// a parser for something only points to that parser, which must live as long as the node is
/// evaluated. A node does not change once it is made. Evaluating throws ParserException where the
/// expression has no value; dumping and releasing do not fail.
class Expression
{
public:
    virtual ExpressionValue evaluate() const = 0;
    /// The tree as one line of text, in the notation of calls: "PlusExpression(Constant(1),...)".
    virtual QString dump() const = 0;
    virtual ~Expression() = default;

    /// Appends what dump() returns, so that a whole tree is written in one pass.
    virtual void dumpTo(QString &text) const = 0;
    /// This node if it has two operands, else null.
    virtual BinaryExpression *asBinary() { return nullptr; }

    /// How many calls deep evaluating, dumping and releasing the tree below this node go at most.
    int height() const { return levels; }

    /// The memory of nodes that are released serves those that are made next.
    static void *operator new(std::size_t size);
    static void operator delete(void *node, std::size_t size);

    Expression(const Expression &) = delete;
    Expression(Expression &&) = delete;
    Expression &operator=(const Expression &) = delete;
    Expression &operator=(Expression &&) = delete;

protected:
    explicit Expression(int height) : levels(height) {}
    QString dumped() const;

private:
    int levels;
};

/// A node with two operands. A long chain such as 1+1+1+... is a tree that leans to the left as far
/// as the text is long, so whatever visits a tree descends through left operands without recursion.
class BinaryExpression : public Expression
{
public:
    QString dump() const override { return dumped(); }
    ~BinaryExpression() override;
    void dumpTo(QString &text) const override;
    BinaryExpression *asBinary() override { return this; }
    /// What the node computes, if evaluating it means to compute with both values.
    virtual std::optional<BinaryOperator> binaryOperator() const { return std::nullopt; }

    std::unique_ptr<Expression> left;
    std::unique_ptr<Expression> right;

protected:
    /// Takes both operands. They are references because the height is computed from them first.
    BinaryExpression(int height, std::unique_ptr<Expression> &leftOperand,
                     std::unique_ptr<Expression> &rightOperand);
    /// What stands before the operands in a dump.
    virtual QLatin1StringView dumpName() const = 0;
};

/// A node with one operand that is evaluated first.
class UnaryExpression : public Expression
{
public:
    explicit UnaryExpression(std::unique_ptr<Expression> operandNode);
    QString dump() const override { return dumped(); }
    void dumpTo(QString &text) const override;

    std::unique_ptr<Expression> operand;

protected:
    /// What stands before the operand in a dump.
    virtual QLatin1StringView dumpName() const = 0;
};

class ConstantExpression : public Expression
{
public:
    explicit ConstantExpression(ExpressionValue constant)
        : Expression(1),
          value(std::move(constant))
    {
    }
    ExpressionValue evaluate() const override { return value; }
    QString dump() const override { return dumped(); }
    void dumpTo(QString &text) const override;

    ExpressionValue value;
};

/// A signed constant of 8 bytes.
class IntegerConstantExpression : public ConstantExpression
{
public:
    explicit IntegerConstantExpression(qint64 constant)
        : ConstantExpression(ExpressionValue::fromInt64(constant))
    {
    }
};

/// A constant of double precision.
class FloatConstantExpression : public ConstantExpression
{
public:
    explicit FloatConstantExpression(double constant)
        : ConstantExpression(ExpressionValue::fromDouble(constant))
    {
    }
};

class StringConstantExpression : public ConstantExpression
{
public:
    explicit StringConstantExpression(const QString &constant)
        : ConstantExpression(ExpressionValue::fromText(constant))
    {
    }
};

/// Stands for a node that another one owns, and must not outlive it: in "a += 1" the assignment owns
/// the target, and the addition refers to it through a node of this class.
class SharedExpression : public Expression
{
public:
    explicit SharedExpression(const Expression &owned) : Expression(owned.height() + 1), node(owned)
    {
    }
    ExpressionValue evaluate() const override { return node.evaluate(); }
    QString dump() const override { return node.dump(); }
    void dumpTo(QString &text) const override { node.dumpTo(text); }

private:
    const Expression &node;
};
