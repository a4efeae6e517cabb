#pragma once

#include "xmldocument.h"

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
        text = element->name();
        std::string attributes;
        for (const XMLAttribute &attribute : element->attributes()) {
            attributes += attributes.empty() ? "" : " ";
            attributes += attribute.name;
            attributes += attribute.value ? "=" + std::string(attribute.value) : "";
        }
        text += attributes.empty() ? "" : "[" + attributes + "]";
    } else {
        const std::string data = static_cast<const XMLText *>(node)->data();
        text = node->kind() == XMLNode::Kind::Data      ? "#" + data
               : node->kind() == XMLNode::Kind::Comment ? "!" + data
                                                        : "[" + data + "]";
    }
    if (lines)
        text += "@" + std::to_string(node->line);
    for (const XMLNode *child = node->firstChild; child; child = child->nextSibling) {
        text += (child == node->firstChild ? "(" : ",") + treeText(child, lines);
        if (child->parent != node)
            text += "<wrong parent>";
    }
    return text + (node->firstChild ? ")" : "");
}
