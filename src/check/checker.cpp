#include "checker.h"

#include "filecheck.h"
#include "inputtext.h"
#include "macrolist.h"
#include "macroreferences.h"
#include "vocabulary.h"
#include "xmlpp2.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <new>
#include <optional>
#include <set>
#include <sys/stat.h>
#include <unordered_set>

namespace
{

using directive::attributeText;
using directive::findDirective;
using directive::textOf;

using NameSet = std::set<std::string, std::less<>>;

/// Tells whether all of a text is an expression.
struct WholeParser : SimpleExpressionParser {
    bool isWhole(const std::string &text)
    {
        parse(text.c_str());
        return lexer.kind() == Token::EndOfInput;
    }
};

bool isLatin1(std::string_view encoding)
{
    std::string name(encoding);
    std::ranges::transform(name, name.begin(), [](unsigned char c) { return std::toupper(c); });
    return name == "ISO-8859-1" || name == "ISO_8859-1" || name == "LATIN1" || name == "LATIN-1";
}

/// The file as the second reading takes it: behind a blank, so that every newline counts, and with
/// numeric references left alone, so that a byte is one that the file has. Empty for what cannot be
/// read, or not again.
std::string textOfFile(const std::string &path)
{
    struct stat status = {};
    const bool isPipe = stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
    const InputStream stream(isPipe ? nullptr : openFile(path, "rb"));
    Pool pool;
    bool isTooLong = false;
    std::span<char> content;
    if (stream)
        content = readText(stream.get(), SIZE_MAX, &pool, &isTooLong);
    std::string text;
    if (content.data())
        text.append(" ").append(content.data());
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == '\r' || (text[i] == '#' && text[i - 1] == '&'))
            text[i] = ' ';
    }
    return text;
}

/// What follows \a node in document order; null behind the last.
const XMLNode *nextNode(const XMLNode *node)
{
    if (node->firstChild)
        return node->firstChild;
    while (node && !node->nextSibling)
        node = node->parent;
    return node ? node->nextSibling : nullptr;
}

class Checker : public XMLPP2
{
public:
    explicit Checker(const Limits &bounds)
    {
        limits = bounds;
        readsExpressions = true;
    }

    bool check(const std::string &fileName, const std::string &macroList, FILE *stream)
    {
        readCommandLine(macroList);
        const std::optional<Fault> error = run(fileName, macroList);
        noteDefinitions();
        if (error)
            noteNotExecuted();
        else if (fault)
            messages.warn(fault->place, "empty", fault->text + ": the output will be empty");
        else
            sayUnused();
        for (const XMLElement *element : elements)
            checkExecuted(*element);
        sayWhatIsKnown();
        if (error)
            messages.fail(error->place, error->text);
        return !messages.print(stream);
    }

    XMLElement *createElement(const char *name) override
    {
        elements.push_back(XMLPP2::createElement(name));
        return elements.back();
    }

    [[noreturn]] void reportError(const std::string &message) override
    {
        throw fault.value_or(Fault{placeOf(executed), message.substr(message.find("(): ") + 4)});
    }

    void fileLoaded(const std::string &path, const XMLElement *top,
                    const XMLElement *includedBy) override
    {
        const Place includedAt = includedBy ? placeOf(includedBy) : Place();
        const std::size_t file = messages.fileNumber(path, includedAt);
        const auto [firstLine, isNew] = firstLines.try_emplace(file, 1);
        const std::string text = passedReadLimit || !isNew ? "" : textOfFile(path);
        firstLine->second += text.starts_with(" \n");
        const XMLElement *const first = placeElements(file, firstLine->second);
        if (top && isNew)
            readAgain(text, file);
        if (top && includedBy && findDirective(top->name()))
            messages.warn(placeOf(top), "scope",
                          inTag(top->name()) + " is not executed as the root of an included file");
        if (top || passedReadLimit)
            return;
        // This ends the run, so nothing has failed before.
        if (std::string_view(errorMessage).starts_with("couldn't read"))
            fault = {includedAt, errorMessage};
        else if (*errorMessage != '\0')
            fault = {{file, errorLine + firstLine->second}, errorMessage};
        else if (first)
            fault = {placeOf(first), inTag(first->name()) + " is never closed"};
        else if (text.starts_with(" \xEF\xBB\xBF"))
            fault = {{file, 1}, "a byte-order mark stands in front of all elements"};
        else
            fault = {{file, 1}, "there is no element"};
    }

    /// What is odd in a loop is said of its first round.
    void expressionRead(const XMLElement &element, const std::string &text,
                        const char *failure) override
    {
        WholeParser parser;
        parser.maximumDepth = limits.expressionDepth;
        std::string oddity;
        if (failure)
            oddity = "no usable value in the expression " + inQuotes(text) + ": " + failure;
        else if (!parser.isWhole(text))
            oddity = "text is left over behind the expression in " + inQuotes(text);
        if (!oddity.empty())
            oddExpressions.try_emplace(placeOf(&element), text, oddity);
    }

private:
    /// What ends a run.
    struct Fault {
        Place place;
        std::string text;
    };

    /// Returns what ended the run, if that was an error.
    std::optional<Fault> run(const std::string &fileName, const std::string &macroList)
    {
        try {
            return preprocessFile(fileName, macroList, true) ? std::nullopt : fault;
        } catch (const Fault &error) {
            return error;
        } catch (const std::bad_alloc &) {
            return Fault{placeOf(executed), "out of memory"};
        }
    }

    /// Notes where the elements stand that a file has brought, and returns the first of them. They
    /// were made in the order of their tags. Copies share the name of one whose place is known.
    const XMLElement *placeElements(std::size_t file, int firstLine)
    {
        const XMLElement *first = nullptr;
        for (std::size_t number = 1; placed < elements.size(); ++placed) {
            const XMLElement *element = elements[placed];
            const Place place = {file, element->line + firstLine, number};
            if (!places.try_emplace(element->name(), place).second)
                continue;
            first = first ? first : element;
            ++number;
        }
        return first;
    }

    void readAgain(const std::string &text, std::size_t file)
    {
        XMLDocument document(true);
        document.parse(std::string(text).data());
        names.areOpen = names.areOpen || text.empty();
        checkFile(document.root, file, isLatin1(encoding ? encoding : ""), &names, &messages);
    }

    Place placeOf(const XMLElement *element) const
    {
        const auto found = element ? places.find(element->name()) : places.end();
        return found == places.end() ? Place{1, 1} : found->second;
    }

    void readCommandLine(std::string_view macroList)
    {
        while (!macroList.empty()) {
            const std::string_view item = macroList.substr(0, macroList.find(';'));
            const auto [name, value] = nameAndValue(item);
            if (hasBlankAround(name))
                messages.warn({}, "list", "the blanks are part of the name in " + inQuotes(item));
            else if (!item.empty())
                given.emplace(name);
            forEachReference(value, [&](const MacroReference &reference) {
                names.mentions.try_emplace(std::string(reference.name));
            });
            macroList.remove_prefix(std::min(item.size() + 1, macroList.size()));
        }
    }

    /// The attributes of what was executed are expanded by then.
    void noteDefinitions()
    {
        defined = given;
        for (const XMLElement *element : elements) {
            if (isNamed(*element, {"define"}))
                defined.emplace(attributeText(*element, "name"));
            for (const std::string &item : macroItems(*element))
                elsewhere.emplace(nameAndValue(item).first);
            for (const std::string &macro : macrosOfLoop(*element))
                elsewhere.insert(macro);
            names.mentions.try_emplace(askedMacro(*element));
        }
    }

    bool isDefined(std::string_view macro) const
    {
        return defined.contains(macro) || elsewhere.contains(macro);
    }

    /// Notes which elements an error kept the run from. Where its directive is not in the tree any
    /// more, nothing shows how far the run came.
    void noteNotExecuted()
    {
        bool isBehind = false;
        for (const XMLNode *node = root; node; node = nextNode(node)) {
            if (isBehind)
                notExecuted.insert(node);
            isBehind = isBehind || node == executed;
        }
        if (!isBehind)
            elements.clear();
    }

    /// Whether the run came to \a element. What a directive leaves is taken out of it before that;
    /// what is still below one was dropped or only copied.
    bool wasExecuted(const XMLElement &element) const
    {
        const XMLNode *outer = element.parent;
        while (outer && !findDirective(static_cast<const XMLElement *>(outer)->name()))
            outer = outer->parent;
        return !outer && !notExecuted.contains(&element);
    }

    /// Says what came to nothing in an element whose attributes were expanded.
    void checkExecuted(const XMLElement &element)
    {
        const std::string asked = askedMacro(element);
        const bool isInVain =
            isNamed(element, {"if", "ifnot", "switch"}) && !asked.empty() && !isDefined(asked);
        const bool isLeft = std::ranges::any_of(element.attributes(), [](const XMLAttribute &each) {
            return textOf(each).find("$(") != std::string_view::npos;
        });
        if ((!isInVain && !isLeft) || !wasExecuted(element))
            return;
        if (isInVain)
            messages.warn(placeOf(&element), "undefined", inQuotes(asked) + " is not defined");
        for (const XMLAttribute &attribute : element.attributes())
            checkLeft(element, attribute);
    }

    /// Says what is left of references. System macros are put into the names of files later. A value
    /// that was inherited is told where it is written.
    void checkLeft(const XMLElement &element, const XMLAttribute &attribute)
    {
        const Place place = placeOf(&element);
        const bool isFileName =
            isNamed(element, {"include"}) && attribute.name == std::string_view("filename");
        const bool isTold = told.contains(attribute.value);
        forEachReference(textOf(attribute), [&](const MacroReference &reference) {
            const auto &[macro, text, hasDefault, isInner] = reference;
            const bool isSystem = isFileName && globalMacros.systemMacros.contains(macro);
            if (isTold || isInner || hasDefault || isSystem)
                return;
            if (!reference.isComputed() && !isDefined(macro)) {
                messages.warn(place, "undefined", inQuotes(macro) + " is not defined");
                told.insert(attribute.value);
            } else if (!findDirective(element.name())) {
                messages.warn(place, "reference", inQuotes(text) + " is left in the result");
            }
        });
    }

    /// Says what depends on the macros that the run defines. An expression with one that it does not
    /// define has no other fault.
    void sayWhatIsKnown()
    {
        for (const auto &[macro, place, category, text] : names.doubts) {
            if (defined.contains(macro))
                messages.warn(place, category, text);
        }
        for (const auto &[place, expression] : oddExpressions) {
            bool isUndefined = false;
            forEachReference(expression.first, [&](const MacroReference &reference) {
                isUndefined = isUndefined || !isDefined(reference.name);
            });
            if (!isUndefined)
                messages.warn(place, "expression", expression.second);
        }
    }

    void sayUnused()
    {
        for (const std::string &macro : given) {
            if (!names.areOpen && !names.mentions.contains(macro))
                messages.warn({}, "unused", "no file mentions " + inQuotes(macro));
        }
    }

    std::vector<XMLElement *> elements;  ///< all that were made, copies as well
    std::size_t placed = 0;              ///< of them, those that were looked at for their place
    std::unordered_map<const char *, Place> places;  ///< of elements that were read, by their name
    std::map<std::size_t, int> firstLines;           ///< of files: what the run counts as 0
    std::optional<Fault> fault;                      ///< of a file without a root
    std::map<Place, std::pair<std::string, std::string>> oddExpressions;  ///< and what is odd
    Names names;
    Messages messages;

    NameSet given;                          ///< macros of the command line
    NameSet defined;                        ///< those and those of <define>
    NameSet elsewhere;                      ///< macros of loops and of lists
    std::unordered_set<const char *> told;  ///< values of which it was said what is undefined
    std::unordered_set<const XMLNode *> notExecuted;  ///< of the tree, behind an error
};

}  // namespace

bool checkRun(const std::string &fileName, const std::string &macroList, const Limits &limits,
              FILE *messages)
{
    return Checker(limits).check(fileName, macroList, messages);
}
