#include "expression.h"

#include "valueformat.h"

#include <new>
#include <utility>
#include <vector>

namespace
{

/// Of the largest nodes. The others take as much, so that any can follow any.
constexpr std::size_t nodeSize = sizeof(ConstantExpression);

// Enough for long chains. Without NDEBUG none, so that a sanitizer sees who uses a released node.
#ifdef NDEBUG
constexpr std::size_t maximumSpares = 16384;
#else
constexpr std::size_t maximumSpares = 0;
#endif

/// The memory of a released node. From the heap, the many small nodes of a tree that is evaluated
/// once would be a fifth of what an expression costs.
struct SpareNode {
    SpareNode *next;
};

// Per thread, because parsers of different threads have nothing in common. A thread that ends loses
// its spares: a destructor would have to be registered, which aborts where memory is short.
constinit thread_local SpareNode *spares = nullptr;
constinit thread_local std::size_t spareCount = 0;

int heightOf(Expression *left, const Expression *right, bool computes)
{
    assert(left && right);
    const BinaryExpression *chain = left->asBinary();
    const bool leans = computes && chain && chain->computes;
    return 1 + std::max(left->height() - (leans ? 1 : 0), right->height());
}

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

BinaryExpression::BinaryExpression(OwnedExpression leftOperand, OwnedExpression rightOperand,
                                   const OperatorRow *row)
    : TreeExpression(heightOf(leftOperand.get(), rightOperand.get(), row != nullptr)),
      left(std::move(leftOperand)),
      right(std::move(rightOperand)),
      computes(row)
{
}

BinaryExpression::~BinaryExpression()
{
    // Each step releases one node of the chain, which has no left operand any more.
    OwnedExpression node = std::move(left);
    while (BinaryExpression *binary = node ? node->asBinary() : nullptr)
        node = std::move(binary->left);
}

void BinaryExpression::dumpTo(std::string &text) const
{
    std::vector<const BinaryExpression *> chain;
    const Expression *innermost = this;
    for (const BinaryExpression *node = this; node; node = node->left->asBinary()) {
        text += node->dumpName();
        text += '(';
        chain.push_back(node);
        innermost = node->left.get();
    }
    innermost->dumpTo(text);
    for (; !chain.empty(); chain.pop_back()) {
        text += ',';
        chain.back()->right->dumpTo(text);
        text += ')';
    }
}

void UnaryExpression::dumpTo(std::string &text) const
{
    text += dumpName();
    text += '(';
    operand->dumpTo(text);
    text += ')';
}

void ConstantExpression::dumpTo(std::string &text) const
{
    text.append("Constant(").append(toString(value)).append(")");
}
