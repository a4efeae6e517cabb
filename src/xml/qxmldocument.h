#pragma once

#include "macromap.h"
#include "xmldocument.h"

#include <string>

/// A document whose files are named by QString and whose attribute values can hold macro
/// references. Text crosses as Latin-1, in both directions; a character above 0xFF becomes '?'.
/// Only the map that is passed counts, never the system macros.
class QXMLDocument : public XMLDocument
{
public:
    using XMLDocument::load;
    using XMLDocument::save;
    using XMLDocument::XMLDocument;

    bool load(const QString &fileName);
    bool save(const QString &fileName, int spacesPerLevel);

    /// Copies \a source and the elements below it, but nothing else that is there, with every
    /// attribute value expanded; a null expansion gives an attribute without a value. The copy
    /// lies in the current pool, strings included, and is linked to nothing.
    XMLElement *copyElementExpanded(const XMLElement *source, const MacroMap &macros);
    XMLElement *copyElementExpanded(const XMLElement *source, MacroLookup &macros);

    /// Expands in place each attribute value of \a element that holds a '$'. A value that its
    /// expansion equals keeps its pointer; a new one lies in the current pool.
    void expandAttributes(XMLElement *element, const MacroMap &macros);
    void expandAttributes(XMLElement *element, MacroLookup &macros);

private:
    XMLElement *copyOneExpanded(const XMLElement *source, MacroLookup &macros);

    std::string expansion;  ///< of one value; a member so that its memory is used again
};
