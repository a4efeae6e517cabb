#include "run.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace directive
{

namespace
{

std::uint64_t lengthOf(const char *text)
{
    return text ? std::strlen(text) : 0;
}

/// The bytes of all names, values and texts that \a node has itself.
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

/// Notes that \a fragment is copied once more. Returns what makes copies of it fast; null for the
/// first one, which alone would not pay for that, and where there are too many.
FragmentTemplate *noteCopy(Run &run, const XMLElement &fragment)
{
    const auto [entry, isNew] = run.fragments.try_emplace(&fragment);
    auto &[text, prepared] = entry->second;
    if (isNew) {
        text = textOf(&fragment, UINT64_MAX);
    } else if (!prepared && text <= run.textToPrepare) {
        run.textToPrepare -= text;
        prepared = std::make_unique<FragmentTemplate>(fragment, &run.macros);
    }
    run.sharedText += text;
    return prepared.get();
}

}  // namespace

std::uint64_t textOf(const XMLNode *top, std::uint64_t most)
{
    std::uint64_t bytes = 0;
    std::vector<const XMLNode *> chains{top};
    while (!chains.empty() && bytes <= most) {
        const XMLNode *node = chains.back();
        chains.pop_back();
        if (node != top && node->nextSibling)
            chains.push_back(node->nextSibling);
        if (node->firstChild)
            chains.push_back(node->firstChild);
        bytes += textOfNode(*node);
    }
    return bytes;
}

void chargeSharedText(Run &run)
{
    const std::uint64_t left = run.budget.left(Price::SharedByte);
    if (run.document.root && run.sharedText > left)
        run.budget.spend(Price::SharedByte, textOf(run.document.root, left));
}

Outcome handleXmldef(Run &run, XMLElement &element, const Level &)
{
    if (!element.hasAttribute("name"))
        return Outcome::keep();
    const std::string_view name = attributeText(element, "name");
    run.budget.spendText(name.size());
    run.document.xmldefs.insert_or_assign(std::string(name), &element);
    ++run.storedFragments;
    return Outcome::remove();
}

Outcome handleXmlput(Run &run, XMLElement &element, const Level &level)
{
    if (!element.hasAttribute("name"))
        return Outcome::keep();
    const std::string_view name = attributeText(element, "name");
    run.budget.spendText(name.size());
    const auto stored = run.document.xmldefs.find(name);
    if (stored == run.document.xmldefs.end()) {
        run.report(std::string("xmlput cannot fine xmldef named ").append(name));
        return Outcome::keep();
    }
    const auto &fragment = static_cast<const XMLElement &>(*stored->second);
    FragmentTemplate *const prepared = noteCopy(run, fragment);
    if (prepared && prepared->fits(run)) {
        const Content content(&run, element, level);
        Outcome outcome{.action = Outcome::Action::Insert, .copies = {element.parent}};
        if (content.level.expand && prepared->copy(&run, &outcome.copies))
            return outcome;
    }
    auto *const copy = static_cast<XMLElement *>(run.document.copyNode(&fragment, nullptr));
    return {Outcome::Action::Unwrap, copy, run.contentFor(element, level)};
}

}  // namespace directive
