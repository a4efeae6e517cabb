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
        text = element->name();
        for (const XMLAttribute &attribute : element->attributes()) {
            text += (&attribute == element->attributes().data() ? "[" : " ");
            text += attribute.name + (attribute.value ? "=" + std::string(attribute.value) : "");
        }
        text += element->attributes().empty() ? "" : "]";
    } else {
        const std::string data = static_cast<const XMLText *>(node)->data();
        const bool isCData = node->kind() == XMLNode::Kind::CDATASection;
        text = (isCData ? "[" : node->kind() == XMLNode::Kind::Data ? "#" : "!") + data;
        text += isCData ? "]" : "";
    }
    text += lines ? "@" + std::to_string(node->line) : "";
    for (const XMLNode *child = node->firstChild; child; child = child->nextSibling) {
        text += (child == node->firstChild ? "(" : ",") + treeText(child, lines);
        text += child->parent == node ? "" : "<wrong parent>";
    }
    return text + (node->firstChild ? ")" : "");
}

/// Each case is an input, " => " and what \a outcome must make of it.
template <typename Outcome>
void expectAll(std::initializer_list<std::string> cases, Outcome outcome)
{
    for (const std::string &each : cases) {
        const std::string text = each.substr(0, each.find(" => "));
        EXPECT_EQ(text + " => " + outcome(text), each);
    }
}
