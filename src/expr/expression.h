#pragma once

#include "expressionvalue.h"

#include <algorithm>

class BinaryExpression;
struct OperatorRow;

/// A node of the tree that a parser makes of an expression. It owns its children, none of which is
/// null, and does not change once it is made. A parser that it points to must live as long as it is
/// evaluated. Evaluating throws ParserException where there is no value; dumping does not fail.
///
/// A class of nodes needs evaluate() and dump(), and a height where it has children.
class Expression
{
public:
    virtual ExpressionValue evaluate() const = 0;
    /// The tree as one line of text, in the notation of calls: "PlusExpression(Constant(1),...)".
    virtual std::string dump() const = 0;
    virtual ~Expression() = default;

    /// Appends what dump() returns, so that a whole tree is written in one pass.
    virtual void dumpTo(std::string &text) const { text += dump(); }
    /// This node if it has two operands, else null.
    virtual BinaryExpression *asBinary() { return nullptr; }

    /// How many calls deep evaluating, dumping and releasing the tree below this node go at most.
    int height() const { return levels; }

    /// The memory of nodes that are released serves those that are made next.
    static void *operator new(std::size_t size);
    static void operator delete(void *node, std::size_t size);

    Expression(const Expression &) = delete;
    Expression &operator=(const Expression &) = delete;

protected:
    /// \a height is one more than that of the highest child.
    explicit Expression(int height = 1) : levels(height) {}

private:
    int levels;
};

using OwnedExpression = std::unique_ptr<Expression>;

/// What the nodes below have in common: dump() follows from dumpTo().
class TreeExpression : public Expression
{
public:
    std::string dump() const override
    {
        std::string text;
        dumpTo(text);
        return text;
    }
    void dumpTo(std::string &text) const override = 0;

protected:
    using Expression::Expression;
};

/// A node with two operands. A long chain such as 1+1+1+... is a tree that leans to the left as far
/// as the text is long, so whatever visits a tree descends through left operands without recursion.
class BinaryExpression : public TreeExpression
{
public:
    /// \a row is what the node computes, if evaluating it means to compute with both values. A left
    /// operand that is such a node itself then adds nothing to the height.
    BinaryExpression(OwnedExpression leftOperand, OwnedExpression rightOperand,
                     const OperatorRow *row = nullptr);
    ~BinaryExpression() override;
    /// What stands before the operands in a dump.
    virtual const char *dumpName() const { return ""; }
    void dumpTo(std::string &text) const override;
    BinaryExpression *asBinary() override { return this; }

    OwnedExpression left;
    OwnedExpression right;
    const OperatorRow *const computes;
};

/// A node with one operand that is evaluated first. \a otherHeight is that of what else it owns.
class UnaryExpression : public TreeExpression
{
public:
    explicit UnaryExpression(OwnedExpression operandNode, int otherHeight = 0)
        : TreeExpression(1 + std::max(operandNode->height(), otherHeight)),
          operand(std::move(operandNode))
    {
    }
    /// What stands before the operand in a dump.
    virtual const char *dumpName() const { return ""; }
    void dumpTo(std::string &text) const override;

    OwnedExpression operand;
};

class ConstantExpression : public TreeExpression
{
public:
    explicit ConstantExpression(ExpressionValue constant) : value(std::move(constant)) {}
    explicit ConstantExpression(const PlainValue &constant) : value(constant) {}
    ExpressionValue evaluate() const override { return value; }
    void dumpTo(std::string &text) const override;

    ExpressionValue value;
};

class IntegerConstantExpression : public ConstantExpression
{
public:
    explicit IntegerConstantExpression(std::int64_t constant)
        : ConstantExpression({PlainValue::Signed, 8, static_cast<std::uint64_t>(constant)})
    {
    }
};

class FloatConstantExpression : public ConstantExpression
{
public:
    explicit FloatConstantExpression(double constant)
        : ConstantExpression({PlainValue::Floating, 8, std::bit_cast<std::uint64_t>(constant)})
    {
    }
};

class StringConstantExpression : public ConstantExpression
{
public:
    explicit StringConstantExpression(std::string_view constant)
        : ConstantExpression(ExpressionValue::fromText(constant))
    {
    }
};

/// Stands for a node that another one owns, and must not outlive it: in "a += 1" the assignment owns
/// the target, and the addition refers to it through this.
class SharedExpression : public TreeExpression
{
public:
    explicit SharedExpression(const Expression &owned)
        : TreeExpression(owned.height() + 1),
          node(owned)
    {
    }
    ExpressionValue evaluate() const override { return node.evaluate(); }
    void dumpTo(std::string &text) const override { node.dumpTo(text); }

private:
    const Expression &node;
};
