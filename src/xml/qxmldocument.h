#pragma once

#include "macromap.h"
#include "xmldocument.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// A document whose attribute values can hold macro references. Only the macros that are passed
/// count, never the system macros. Where an operation has a form for a MacroLookup, that form also
/// tells what it cost, in steps of about a nanosecond.
class QXMLDocument : public XMLDocument
{
public:
    using XMLDocument::load;
    using XMLDocument::save;
    using XMLDocument::XMLDocument;

    bool load(const std::string &fileName) { return load(fileName.c_str()); }
    bool save(const std::string &fileName, int spacesPerLevel)
    {
        return save(fileName.c_str(), spacesPerLevel);
    }

    /// Copies \a source and the elements below it, but nothing else that is there, with every
    /// attribute value expanded; an empty expansion gives an attribute without a value. The copy
    /// lies in the current pool, strings included, and is linked to nothing.
    XMLElement *copyElementExpanded(const XMLElement *source, const MacroMap &macros);
    /// The same, but names and values that no expansion changes are shared with \a source. Adds to
    /// *steps.
    XMLElement *copyElementExpanded(const XMLElement *source, MacroLookup &macros,
                                    std::uint64_t *steps);

    /// Expands in place each attribute value of \a element that holds a '$'. A value that its
    /// expansion equals keeps its pointer; a new one lies in the current pool.
    void expandAttributes(XMLElement *element, const MacroMap &macros);
    /// The same; returns what it cost.
    std::uint64_t expandAttributes(XMLElement *element, MacroLookup &macros);

private:
    enum class Strings { Copied, Shared };
    XMLElement *copyExpanded(const XMLElement *source, MacroLookup &macros, Strings strings,
                             std::uint64_t *steps);
    XMLElement *copyOneExpanded(const XMLElement *source, MacroLookup &macros, Strings strings,
                                std::uint64_t *steps);
    std::string_view expanded(std::string_view text, MacroLookup &macros, std::uint64_t *steps);

    // Members so that their memory is used again.
    std::string expansion;                 ///< of one value
    std::vector<XMLAttribute> attributes;  ///< of one element
};
