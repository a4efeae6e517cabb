#include "fragmenttemplate.h"

#include "macrovalues.h"
#include "run.h"

#include <new>

namespace directive
{

FragmentTemplate::FragmentTemplate(const XMLElement &fragment, MacroScopes *scopes)
    : macros(*scopes),
      nodes{{&fragment, 0, 0, 0, nullptr}}
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
}

/// False where the node asks for more than a copy.
bool FragmentTemplate::add(const XMLNode &source, std::size_t parent)
{
    if (source.kind() == XMLNode::Kind::Element) {
        const auto &element = static_cast<const XMLElement &>(source);
        if (findDirective(element.name()))
            return false;
        const std::span<const XMLAttribute> attributes = element.attributes();
        for (std::size_t i = 0; i < attributes.size(); ++i) {
            if (!cut(i, textOf(attributes[i])))
                return false;
        }
    } else if (source.firstChild) {
        return false;
    }
    nodes.push_back({&source, parent, nodes[parent].level + 1, pieces.size(), nullptr});
    return true;
}

/// Cuts a value by having it expanded. False where it is not plain.
bool FragmentTemplate::cut(std::size_t attribute, std::string_view value)
{
    if (value.find('$') == std::string_view::npos)
        return true;
    pieces.push_back({attribute, value, nullptr, value});
    text.resize(value.size());
    std::uint64_t steps = 0;
    return globalMacros.expandPlain(*this, value, text, &steps) != MacroValues::notPlain;
}

/// The value that is being cut asks for its next macro: the last piece ends in front of it, and
/// another one begins behind it.
bool FragmentTemplate::find(std::string_view name, std::string_view *value)
{
    Piece rest = pieces.back();
    const char *const reference = name.data() - 2;
    const char *const end = value->data() + value->size() + (value->data() != reference);
    pieces.back().literal = {rest.literal.data(), reference};
    pieces.back().macro = macros.place(name);
    pieces.back().fallback = *value;
    rest.literal = {end, rest.literal.data() + rest.literal.size()};
    pieces.push_back(rest);
    return false;
}

bool FragmentTemplate::fits(const Run &run) const
{
    return !nodes.empty() && run.depth + nodes.back().level <= run.limits.nestedLevels;
}

bool FragmentTemplate::copy(Run *run, Chain *copies)
{
    run->budget.spend(Price::FragmentPiece, pieces.size());
    const Piece *piece = pieces.data();
    for (std::size_t index = 1; index < nodes.size() && !run->budget.isSpent(); ++index) {
        auto &[source, parent, level, piecesEnd, copy] = nodes[index];
        copy = run->document.copyOne(source);
        if (!copy || copy->firstChild)
            return false;
        for (const Piece *end = pieces.data() + piecesEnd; piece != end;)
            piece = expandValue(piece, static_cast<XMLElement *>(copy), &run->budget);
        if (parent == 0) {
            copies->append(copy);
            continue;
        }
        copy->parent = nodes[parent].copy;
        const bool isFirst = nodes[index - 1].parent != parent;
        (isFirst ? copy->parent->firstChild : nodes[index - 1].copy->nextSibling) = copy;
    }
    return true;
}

/// Gives \a copy the value that begins with \a piece. Returns the first piece of the next one.
const FragmentTemplate::Piece *FragmentTemplate::expandValue(const Piece *piece, XMLElement *copy,
                                                             Budget *budget)
{
    text.clear();
    for (;; ++piece) {
        text.append(piece->literal);
        if (!piece->macro)
            break;
        std::string_view value = piece->fallback;
        macros.get(*piece->macro, &value);
        if (text.append(value).size() > globalMacros.limits.length)
            throw std::bad_alloc();
    }
    budget->spendText(text.size());
    if (text != piece->fallback)
        copy->attributes()[piece->attribute].value =
            XMLDocument::copyString(text.data(), text.size());
    return piece + 1;
}

}  // namespace directive
