#pragma once

#include "budget.h"
#include "qxmldocument.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

/// Files by their paths, each numbered from 0 in the order of its first use.
using FileNumbers = std::unordered_map<std::string, std::size_t>;

/// A document that executes the directives in it. One run per object: load, walk, then save.
class XMLPP2 : public QXMLDocument
{
public:
    explicit XMLPP2(bool keepCommentsAndData = false) : QXMLDocument(keepCommentsAndData) {}

    /// Loads the file and executes its directives. \a macroList ("name=value;name=value", no
    /// escapes) fills the macro map of the outermost level; with \a expand every element's
    /// attribute values are expanded before the element is looked at. False only when the file
    /// cannot be loaded: errorMessage and errorLine say why. What goes wrong afterwards goes to
    /// reportError().
    bool preprocessFile(const std::string &fileName, const std::string &macroList, bool expand);

    /// The macros of the outermost level that a \a list asks for.
    static MacroMap macrosOf(std::string_view list);

    /// Executes the directives in \a node (which can be null), its following siblings and all
    /// that is below them, in place. \a fileName is what relative includes start from. What the
    /// chain's own level defines is in \a macros afterwards. The current pool should be this
    /// document.
    void processConditionals(XMLNode *node, const std::string &fileName, MacroMap &macros,
                             bool expand);

    /// Receives the whole text of an error. Where it returns, the walk goes on as if the
    /// directive in question were an ordinary element or were not there; past a bound of
    /// limits it ends.
    virtual void reportError(const std::string &message) = 0;

    /// Called with every file as it was opened, before anything in it is executed: the document
    /// first, then each include, as often as it is included. \a root is null for a file with an
    /// error, which errorMessage and errorLine tell, and for one without an element. \a includedBy
    /// is the directive, null for the document.
    virtual void fileLoaded(const std::string &path, const XMLElement * /*root*/,
                            const XMLElement * /*includedBy*/)
    {
        if (files)
            files->try_emplace(path, files->size());
    }
    FileNumbers *files = nullptr;  ///< receives what fileLoaded() is told; null where nobody asks

    /// Where readsExpressions is set, called with every expression that a directive has evaluated, as
    /// it is once its macros are expanded. \a failure says why it has no value that the directive
    /// can use, and is null where it has one.
    virtual void expressionRead(const XMLElement & /*element*/, const std::string & /*text*/,
                                const char * /*failure*/)
    {
    }
    bool readsExpressions = false;  ///< why one fails takes longer to find out than that it does

    /// The directive that was executed last, to which an error belongs; null until there is one.
    const XMLElement *executed = nullptr;

    Limits limits;

    /// The stored fragments by name. They are nodes of this document's pool.
    std::map<std::string, XMLNode *, std::less<>> xmldefs;
};
