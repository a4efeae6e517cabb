#pragma once

#include "xmldocument.h"

#include <gtest/gtest.h>

#include <string>

/// A tree as one line of text, to be compared as a whole: a[x=1 y](b,#text,!comment,[cdata]). An
/// attribute without a value has no '='; with \a lines every node is followed by its line.
inline std::string treeText(const XMLNode *node, bool lines = false)
{
    if (!node)
        return "null";
    std::string text;
    if (node->kind() == XMLNode::Kind::Element) {
        const auto *element = static_cast<const XMLElement *>(node);
        std::string attributes;
        for (const auto &[name, value] : element->attributes())
            attributes.append(" ").append(name).append(value ? "=" : "").append(value ? value : "");
        text = element->name();
        text += attributes.empty() ? "" : "[" + attributes.substr(1) + "]";
    } else {
        text = static_cast<const XMLText *>(node)->data();
        text = node->kind() == XMLNode::Kind::CDATASection ? "[" + text + "]"
               : node->kind() == XMLNode::Kind::Data       ? "#" + text
                                                           : "!" + text;
    }
    text += lines ? "@" + std::to_string(node->line) : "";
    for (const XMLNode *child = node->firstChild; child; child = child->nextSibling) {
        text += (child == node->firstChild ? "(" : ",") + treeText(child, lines);
        text += child->parent == node ? "" : "<wrong parent>";
    }
    return text + (node->firstChild ? ")" : "");
}
