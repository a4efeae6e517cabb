#include "fragmenttemplate.h"

#include "macrovalues.h"
#include "run.h"

#include <algorithm>

namespace directive
{

FragmentTemplate::FragmentTemplate(const XMLElement &fragment, MacroScopes *scopes)
    : macros(*scopes),
      nodes{{&fragment, 0, 0, 0}}
{
    for (std::size_t parent = 0; parent < nodes.size(); ++parent) {
        const XMLNode *child = nodes[parent].source->firstChild;
        for (; child; child = child->nextSibling) {
            if (!add(*child, parent)) {
                nodes.clear();
                return;
            }
        }
    }
    made.resize(nodes.size());
}

/// False where the node asks for more than a copy.
bool FragmentTemplate::add(const XMLNode &source, std::size_t parent)
{
    if (source.kind() == XMLNode::Kind::Element) {
        const auto &element = static_cast<const XMLElement &>(source);
        if (findDirective(element.name()) || !addValues(element))
            return false;
    } else if (source.kind() == XMLNode::Kind::Other || source.firstChild) {
        return false;
    }
    nodes.push_back({&source, parent, nodes[parent].level + 1, values.size()});
    return true;
}

bool FragmentTemplate::addValues(const XMLElement &element)
{
    std::size_t index = 0;
    for (const XMLAttribute &attribute : element.attributes()) {
        const std::string_view value = textOf(attribute);
        if (value.find('$') != std::string_view::npos) {
            const std::vector<MacroValues::Piece> cut = globalMacros.cut(value);
            if (cut.empty())
                return false;
            for (const auto &[literal, name, fallback, isLast] : cut)
                pieces.push_back({literal, isLast ? nullptr : macros.place(name), fallback});
            values.push_back({index, pieces.size(), unchanged});
        }
        ++index;
    }
    return true;
}

/// Puts all values together, with the macros in force. False where they become longer than \a most.
bool FragmentTemplate::expandValues(Budget *budget, std::size_t most)
{
    text.clear();
    const Piece *piece = pieces.data();
    for (Value &value : values) {
        const std::size_t start = text.size();
        value.start = unchanged;
        for (const Piece *end = pieces.data() + value.piecesEnd; piece != end; ++piece) {
            std::string_view replacement = piece->fallback;
            if (piece->macro)
                macros.get(*piece->macro, &replacement);
            text.append(piece->literal).append(replacement);
            // Of all replacements, a reference as it was written alone begins there.
            if (replacement.data() != piece->literal.data() + piece->literal.size())
                value.start = start;
            if (text.size() > most)
                return false;
        }
        budget->spendText(text.size() - start);
        if (value.start == unchanged)
            text.resize(start);
        else
            text.push_back('\0');
    }
    budget->spend(Price::FragmentPiece, pieces.size());
    return true;
}

bool FragmentTemplate::copy(Run *run, Chain *copies)
{
    const std::size_t most = std::min(run->budget.growthLeft(), globalMacros.limits.length);
    if (nodes.empty() || run->depth + nodes.back().level > run->limits.nestedLevels ||
        !expandValues(&run->budget, most))
        return false;
    const char *const expanded = XMLDocument::copyString(text.data(), text.size());
    for (std::size_t index = 1; index < nodes.size(); ++index) {
        XMLNode *const copy = copyNode(&run->document, index, expanded);
        if (!copy)
            return false;
        made[index] = copy;
        const std::size_t parent = nodes[index].parent;
        if (parent == 0) {
            copies->append(copy);
            continue;
        }
        copy->parent = made[parent];
        const bool isFirst = nodes[index - 1].parent != parent;
        (isFirst ? copy->parent->firstChild : made[index - 1]->nextSibling) = copy;
    }
    return true;
}

/// Null, now and from then on, where an element comes with something of its own.
XMLNode *FragmentTemplate::copyNode(XMLDocument *document, std::size_t index, const char *expanded)
{
    const auto &[source, parent, level, valuesEnd] = nodes[index];
    if (source->kind() != XMLNode::Kind::Element)
        return document->copyNode(source, nullptr);
    const auto &element = static_cast<const XMLElement &>(*source);
    XMLElement *const copy = document->createElement(element.name());
    if (copy->firstChild || !copy->addAttributes(element.attributes())) {
        nodes.clear();
        return nullptr;
    }
    for (std::size_t i = nodes[index - 1].valuesEnd; i < valuesEnd; ++i) {
        if (values[i].start != unchanged)
            copy->attributes()[values[i].attribute].value = expanded + values[i].start;
    }
    return copy;
}

}  // namespace directive
