#include "expression.h"

#include "valueformat.h"

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace
{

/// Of the largest nodes. The others take as much, so that any can follow any.
constexpr std::size_t nodeSize = sizeof(ConstantExpression);

// Enough for long chains. Without NDEBUG nothing is kept, so that a sanitizer sees who uses a node
// that is released.
#ifdef NDEBUG
constexpr std::size_t maximumSpares = 16384;
#else
constexpr std::size_t maximumSpares = 0;
#endif

/// The memory of a released node. A tree is many small nodes, and gone as soon as it is evaluated:
/// from the heap they would be a fifth of what an expression costs.
struct SpareNode {
    SpareNode *next;
};

// Per thread, because parsers of different threads have nothing in common. A thread that ends loses
// its spares: a destructor would have to be registered, which aborts where memory is short.
constinit thread_local SpareNode *spares = nullptr;
constinit thread_local std::size_t spareCount = 0;

}  // namespace

void *Expression::operator new(std::size_t size)
{
    if (size > nodeSize || !spares)
        return ::operator new(std::max(size, nodeSize));
    --spareCount;
    return std::exchange(spares, spares->next);
}

void Expression::operator delete(void *node, std::size_t size)
{
    if (size > nodeSize || spareCount == maximumSpares) {
        ::operator delete(node);
        return;
    }
    ++spareCount;
    spares = new (node) SpareNode{spares};
}

QString Expression::dumped() const
{
    QString text;
    dumpTo(text);
    return text;
}

BinaryExpression::BinaryExpression(int height, std::unique_ptr<Expression> &leftOperand,
                                   std::unique_ptr<Expression> &rightOperand)
    : Expression(height),
      left(std::move(leftOperand)),
      right(std::move(rightOperand))
{
}

BinaryExpression::~BinaryExpression()
{
    // Each step releases one node of the chain, which has no left operand any more.
    std::unique_ptr<Expression> node = std::move(left);
    while (BinaryExpression *binary = node ? node->asBinary() : nullptr)
        node = std::move(binary->left);
}

void BinaryExpression::dumpTo(QString &text) const
{
    std::vector<const BinaryExpression *> chain;
    const Expression *innermost = this;
    for (const BinaryExpression *node = this; node; node = node->left->asBinary()) {
        text += node->dumpName();
        text += u'(';
        chain.push_back(node);
        innermost = node->left.get();
    }
    innermost->dumpTo(text);
    for (; !chain.empty(); chain.pop_back()) {
        text += u',';
        chain.back()->right->dumpTo(text);
        text += u')';
    }
}

UnaryExpression::UnaryExpression(std::unique_ptr<Expression> operandNode)
    : Expression(operandNode->height() + 1),
      operand(std::move(operandNode))
{
}

void UnaryExpression::dumpTo(QString &text) const
{
    text += dumpName();
    text += u'(';
    operand->dumpTo(text);
    text += u')';
}

void ConstantExpression::dumpTo(QString &text) const
{
    text += "Constant("_L1;
    text += toString(value);
    text += u')';
}
