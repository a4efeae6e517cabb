#pragma once

#include "pool.h"
#include "xmlnode.h"

#include <cstdint>
#include <cstdio>

class OutputFile;

/// An XML document: a tree of nodes and the pool in which the nodes and their strings live until
/// the document goes. It reads a forgiving subset of XML 1.0 as 8-bit text, without a conversion
/// and without validation, and writes it with a fixed indentation rule.
///
/// Loading and saving return whether they succeeded; a failure leaves its message in
/// errorMessage, and nothing clears it later. Everything else reports nothing. Memory that
/// cannot be had throws std::bad_alloc.
class XMLDocument : public Pool
{
public:
    explicit XMLDocument(bool keepCommentsAndData) : keepComments(keepCommentsAndData) {}
    virtual ~XMLDocument() = default;

    /// A new element with that name (the pointer is kept) in the current pool. Every element of
    /// the document is made by this operation. Attributes are then appended to it directly; only
    /// to an element that comes with some of its own they are added by setAttribute().
    virtual XMLElement *createElement(const char *name) { return new XMLElement(name); }

    /// Reads a document from a copy of NUL-terminated text, which itself stays as it is. The result
    /// becomes the root even on failure, and is null when the text has no closed top-level
    /// element, which by itself is no failure. Adds to what the pool holds already.
    bool parse(char *text);

    /// parse() with all that \a stream holds, from its start where it can be sought, up to the
    /// first NUL byte. Fails without a change to the tree when the stream cannot be read or holds
    /// more than the limit.
    bool read(FILE *stream);
    bool load(const char *fileName);

    /// Writes the declaration, the document type and the tree, indented by \a spacesPerLevel,
    /// all in one line for 0. Always true: failures of the stream are the caller's to ask for.
    bool write(FILE *stream, int spacesPerLevel);

    /// Writes the file whole or leaves it as it was (see OutputFile). A \a companion has been
    /// written already. It takes its place when all of this file has been written, right before
    /// it; where one of the two cannot be written, both are left as they were.
    bool save(const char *fileName, int spacesPerLevel, OutputFile *companion = nullptr);
    /// The last step of save(), for a \a file that something else has written.
    bool commit(OutputFile *file, OutputFile *companion);

    /// Writes \a node, which can be null, with all below it, as it stands \a depth levels deep,
    /// indented as the last write() was.
    void writeNode(FILE *stream, const XMLNode *node, int depth) const;

    /// Writes \a text, which can be null, with all that is not printable ASCII as references.
    static void writeEscaped(FILE *stream, const char *text);

    /// \a length bytes of \a text and a NUL, in the current pool.
    static char *copyString(const char *text, std::size_t length);

    /// Copies \a source and all below it, sharing the strings; the copies have no lines. The
    /// copy is appended to \a newParent, if that is not null, and is null for a node of a kind
    /// of its own.
    XMLNode *copyNode(const XMLNode *source, XMLNode *newParent);

    /// copyNode() of \a source alone, linked to nothing.
    XMLNode *copyOne(const XMLNode *source);

    int indent = 0;                    ///< spaces per level of the last write()
    bool keepComments;                 ///< whether comments and character data become nodes
    std::size_t readLimit = SIZE_MAX;  ///< bytes that a file or stream that is read may hold
    bool onlyReadableAgain = false;    ///< whether load() fails for a pipe, without opening it
    bool passedReadLimit = false;      ///< whether that made the last read() or load() fail
    char *doctype = nullptr;
    char *version = nullptr;
    char *encoding = nullptr;
    XMLNode *root = nullptr;
    char errorMessage[1024] = "";  ///< of the last failed load or save, cut to fit
    int errorLine = 0;             ///< of the last failed load, counted from 0

private:
    bool parseOwn(std::span<char> text);
    bool readOn(FILE *stream, const char *fileName);
    bool fail(const char *message, const char *fileName);
};
