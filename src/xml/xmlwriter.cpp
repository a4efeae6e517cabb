#include "xmlwriter.h"

#include "characterclass.h"
#include "references.h"
#include "xmldocument.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

// Most texts are short, and where each of them ends is what a processor cannot foresee. So they are
// copied sixteen bytes at a time, what stands behind the end included: the buffer has room for it,
// and it is overwritten. The load never reaches into another page, so that it cannot fail. The
// address sanitizer would take it for a fault all the same: there, as on other processors, each byte
// is looked at by itself, and so it is at the end of a page.
#ifdef __has_feature
#define XMLPP_HAS(feature) __has_feature(feature)
#else
#define XMLPP_HAS(feature) 0
#endif
#if defined(__SSE2__) && !defined(__SANITIZE_ADDRESS__) && !XMLPP_HAS(address_sanitizer)
#define XMLPP_LOADS_SIXTEEN
#include <emmintrin.h>
#endif

namespace
{

// What ends a run of bytes that are written as they are.
struct Nul {
    static bool isAt(const char *from) { return *from == '\0'; }
};
struct Escaped {
    static bool isAt(const char *from) { return !CharacterClass::is(CharacterClass::Plain, *from); }
};

#ifdef XMLPP_LOADS_SIXTEEN

bool canLoadSixteen(const char *from)
{
    constexpr std::uintptr_t smallestPage = 4096;
    return reinterpret_cast<std::uintptr_t>(from) % smallestPage <= smallestPage - 16;
}

__m128i among(Nul, __m128i bytes)
{
    return _mm_cmpeq_epi8(bytes, _mm_setzero_si128());
}

__m128i among(Escaped, __m128i bytes)
{
    // As signed numbers, all from 0x80 on are below.
    __m128i found = _mm_cmplt_epi8(bytes, _mm_set1_epi8(0x20));
    for (const char each : {'\x7F', '"', '&', '<', '>'})
        found = _mm_or_si128(found, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(each)));
    return found;
}

#endif

}  // namespace

void XMLWriter::writeDocument(const XMLDocument &document)
{
    flush(appendTree(appendHead(buffer, document), document.root, 0));
}

char *XMLWriter::appendHead(char *to, const XMLDocument &document)
{
    if (document.version || document.encoding) {
        to = append(to, "<?xml ");
        if (document.version)
            to = appendBetween(to, " version=\"", document.version, "\"");
        if (document.encoding)
            to = appendBetween(to, " encoding=\"", document.encoding, "\"");
        to = append(to, " ?>\n");
    }
    if (document.doctype)
        to = appendBetween(to, "<!DOCTYPE ", document.doctype, ">\n");
    return to;
}

void XMLWriter::beginElement(const XMLElement *element)
{
    end = appendStartTag(appendIndentation(endStartTag(end), openElements), element);
    ++openElements;
    isTagOpen = true;
}

void XMLWriter::writeInside(const XMLNode *node)
{
    assert(node);
    end = appendTree(endStartTag(end), node, openElements);
}

void XMLWriter::endElement(const char *name)
{
    --openElements;
    end = isTagOpen ? appendLineEnd(append(end, "/>")) : appendEndTag(end, name, openElements);
    isTagOpen = false;
}

char *XMLWriter::endStartTag(char *to)
{
    return std::exchange(isTagOpen, false) ? appendLineEnd(append(to, ">")) : to;
}

char *XMLWriter::appendTree(char *to, const XMLNode *node, long long depth)
{
    if (!node)
        return appendIndentation(to, depth);
    std::vector<const XMLNode *> open;
    for (;;) {
        // What directives left lies far apart, so the next one is fetched while this is written.
        __builtin_prefetch(node->nextSibling);
        to = appendNode(to, node, depth);
        if (node->kind() == XMLNode::Kind::Element && node->firstChild) {
            open.push_back(node);
            ++depth;
            node = node->firstChild;
            continue;
        }
        while (!open.empty() && !node->nextSibling) {
            node = open.back();
            open.pop_back();
            to = appendEndTag(to, static_cast<const XMLElement *>(node)->name(), --depth);
        }
        if (open.empty())
            return to;
        node = node->nextSibling;
    }
}

/// All of \a node that stands before its children.
char *XMLWriter::appendNode(char *to, const XMLNode *node, long long depth)
{
    to = appendIndentation(to, depth);
    const auto textOf = [](const XMLNode *each) {
        const char *text = static_cast<const XMLText *>(each)->data();
        return text ? text : "";
    };
    switch (node->kind()) {
    case XMLNode::Kind::Element:
        to = appendStartTag(to, static_cast<const XMLElement *>(node));
        return appendLineEnd(append(to, node->firstChild ? ">" : "/>"));
    case XMLNode::Kind::Data:
        return appendEscaped(to, textOf(node));
    case XMLNode::Kind::Comment:
        return appendBetween(to, "<!--", textOf(node), "-->");
    case XMLNode::Kind::CDATASection:
        return appendBetween(to, "<![CDATA[", textOf(node), "]]>");
    case XMLNode::Kind::Other:
        break;
    }
    return to;
}

/// Appends *text up to the first \a End, which a NUL always is, and leaves *text there. Looks for the
/// end of the buffer once for every sixteen or eight bytes.
template <typename End>
inline char *XMLWriter::appendUpTo(char *to, const char **text)
{
    const char *from = *text;
    for (;;) {
        to = flushPassed(to);
        assert(roomAt(to) >= 16);
#ifdef XMLPP_LOADS_SIXTEEN
        if (canLoadSixteen(from)) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(from));
            _mm_storeu_si128(reinterpret_cast<__m128i *>(to), bytes);
            const auto ends = static_cast<unsigned>(_mm_movemask_epi8(among(End(), bytes)));
            const int length = ends != 0 ? std::countr_zero(ends) : 16;
            from += length;
            to += length;
            if (ends == 0)
                continue;
            *text = from;
            return to;
        }
#endif
#pragma GCC unroll 8
        for (int step = 0; step < 8; ++step) {
            if (End::isAt(from)) {
                *text = from;
                return to;
            }
            *to++ = *from++;
        }
    }
}

inline char *XMLWriter::appendText(char *to, const char *text)
{
    return appendUpTo<Nul>(to, &text);
}

inline char *XMLWriter::appendBetween(char *to, std::string_view before, const char *text,
                                      std::string_view after)
{
    return append(appendText(append(to, before), text), after);
}

/// \a text can be null, which is written like an empty one.
inline char *XMLWriter::appendEscaped(char *to, const char *text)
{
    if (!text)
        return to;
    for (;;) {
        to = appendUpTo<Escaped>(to, &text);
        if (*text == '\0')
            return to;
        to = appendReference(to, static_cast<unsigned char>(*text++));
    }
}

void XMLWriter::writeEscaped(const char *text)
{
    flush(appendEscaped(buffer, text));
}

/// Without its end.
char *XMLWriter::appendStartTag(char *to, const XMLElement *element)
{
    to = appendText(append(to, "<"), element->name());
    for (const XMLAttribute &attribute : element->attributes()) {
        to = appendBetween(to, " ", attribute.name, "=\"");
        to = append(appendEscaped(to, attribute.value), "\"");
    }
    return to;
}

char *XMLWriter::appendEndTag(char *to, const char *name, long long depth)
{
    to = appendIndentation(to, depth);
    return appendLineEnd(appendBetween(to, "</", name, ">"));
}

char *XMLWriter::appendReference(char *to, unsigned char byte)
{
    for (const Entity &entity : entities) {
        if (static_cast<unsigned char>(entity.character) == byte)
            return append(to, entity.reference);
    }
    static constexpr char digits[] = "0123456789abcdef";
    to = append(to, "&#x");
    if (byte >= 0x10)
        to = append(to, {&digits[byte >> 4], 1});
    return append(append(to, {&digits[byte & 0xF], 1}), ";");
}

inline char *XMLWriter::appendIndentation(char *to, long long depth)
{
    to = flushPassed(to);
    long long spaces = indent * depth;
    // A copy of a fixed length costs less than one that is just as long as it has to be.
    constexpr std::string_view few = "                ";
    if (spaces >= 0 && spaces <= static_cast<long long>(few.size())) {
        append(to, few);
        return to + spaces;
    }
    for (long long run = 0; spaces > 0; spaces -= run) {
        to = flushPassed(to);
        run = std::min(spaces, static_cast<long long>(bufferEnd - to));
        std::memset(to, ' ', static_cast<std::size_t>(run));
        to += run;
    }
    return to;
}

char *XMLWriter::flush(char *to)
{
    assert(to >= buffer && to <= bufferEnd + slack);
    std::fwrite(buffer, 1, static_cast<std::size_t>(to - buffer), stream);
    return buffer;
}
