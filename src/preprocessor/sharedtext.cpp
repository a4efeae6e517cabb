#include "sharedtext.h"

#include <cstring>
#include <vector>

namespace directive
{

namespace
{

constexpr std::uint64_t unknown = UINT64_MAX;

std::uint64_t lengthOf(const char *text)
{
    return text ? std::strlen(text) : 0;
}

std::uint64_t textOfNode(const XMLNode &node)
{
    if (node.kind() == XMLNode::Kind::Other)
        return 0;
    if (node.kind() != XMLNode::Kind::Element)
        return lengthOf(static_cast<const XMLText &>(node).data());
    const auto &element = static_cast<const XMLElement &>(node);
    std::uint64_t bytes = lengthOf(element.name());
    for (const XMLAttribute &attribute : element.attributes())
        bytes += lengthOf(attribute.name) + lengthOf(attribute.value);
    return bytes;
}

/// Hands the bytes of all names, values and texts of \a top and what is below it to \a take, node
/// by node, as long as that returns true.
template <typename Take>
void forEachText(const XMLNode *top, Take take)
{
    std::vector<const XMLNode *> chains{top};
    while (!chains.empty()) {
        const XMLNode *node = chains.back();
        chains.pop_back();
        if (node != top && node->nextSibling)
            chains.push_back(node->nextSibling);
        if (node->firstChild)
            chains.push_back(node->firstChild);
        if (!take(textOfNode(*node)))
            return;
    }
}

}  // namespace

void SharedText::noteCopy(const XMLNode *fragment)
{
    std::uint64_t &bytesOfFragment = bytesOfFragments.try_emplace(fragment, unknown).first->second;
    if (bytesOfFragment == unknown) {
        bytesOfFragment = 0;
        forEachText(fragment, [&bytesOfFragment](std::uint64_t more) {
            bytesOfFragment += more;
            return true;
        });
    }
    bytes += bytesOfFragment;
}

void SharedText::charge(const XMLNode *root, Budget *budget) const
{
    if (!root || budget->hasLeft(Price::SharedByte, bytes))
        return;
    forEachText(root, [budget](std::uint64_t more) {
        budget->spend(Price::SharedByte, more);
        return !budget->isSpent();
    });
}

}  // namespace directive
