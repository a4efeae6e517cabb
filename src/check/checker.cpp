#include "checker.h"

#include "filecheck.h"
#include "inputtext.h"
#include "vocabulary.h"
#include "xmlpp2.h"

#include <new>
#include <strings.h>
#include <unordered_set>

namespace
{

using directive::findDirective;

/// Empty for what cannot be read, or not again.
std::string textOfFile(const std::string &path)
{
    const InputStream stream(canBeReadAgain(path) ? openFile(path, "rb") : nullptr);
    Pool pool;
    bool isTooLong = false;
    const char *const text =
        stream ? readText(stream.get(), SIZE_MAX, &pool, &isTooLong).data() : "";
    return text ? text : "";
}

class Checker : public XMLPP2
{
public:
    Checker(const Limits &bounds, FILE *stream) : messages(stream)
    {
        limits = bounds;
        readsExpressions = true;
    }

    /// Returns whether there is nothing to say.
    bool check(const std::string &fileName, const std::string &macroList)
    {
        const MacroMap given = macrosOf(macroList);
        for (const auto &[name, value] : given)
            fileCheck.defined.insert(name);
        fileCheck.areOpen = holds(macroList, "$(");
        try {
            preprocessFile(fileName, macroList, true);
            checkResult(given);
        } catch (const EndOfRun &) {
        } catch (const std::bad_alloc &) {
            messages.say(placeOf(executed), "error: out of memory");
        }
        return !messages.areThere();
    }

    XMLElement *createElement(const char *name) override
    {
        elements.push_back(XMLPP2::createElement(name));
        return elements.back();
    }

    [[noreturn]] void reportError(const std::string &message) override
    {
        fail(placeOf(executed), message.substr(message.find("(): ") + 4));
    }

    void fileLoaded(const std::string &path, const XMLElement *top,
                    const XMLElement *includedBy) override
    {
        const Place includedAt = placeOf(includedBy);
        const auto [entry, isNew] =
            sources.try_emplace(path, SourceFile{path, includedAt.includes()});
        const std::string text = isNew && !passedReadLimit ? textOfFile(path) : "";
        // The reader does not count a newline that is the first byte.
        if (text.starts_with('\n'))
            entry->second.firstLine = 2;
        const Place start = {&entry->second, entry->second.firstLine};
        if (!includedBy)
            origin = start;
        const XMLElement *const first = placeElements(start);
        if (top && isNew)
            readAgain(text, start);
        if (top && includedBy && findDirective(top->name()))
            messages.warn(placeOf(top), "scope",
                          inQuotes(top->name()) +
                              " is not executed as the root of an included file");
        if (top || passedReadLimit)
            return;
        if (std::string_view(errorMessage).starts_with("couldn't read"))
            fail(includedAt, errorMessage);
        if (*errorMessage != '\0')
            fail({start.file, start.line + errorLine}, errorMessage);
        const std::string reason = first ? inQuotes(first->name()) + " is never closed"
                                   : text.starts_with("\xEF\xBB\xBF")
                                       ? "a byte-order mark is in front of all elements"
                                       : "there is no element";
        const Place place = first ? placeOf(first) : start;
        if (includedBy)
            fail(place, reason);
        messages.warn(place, "empty", reason + ": the output will be empty");
        throw EndOfRun();
    }

    /// What is odd in a loop is said of its first round.
    void expressionRead(const XMLElement &element, const std::string &text,
                        const char *failure) override
    {
        // A reference that is left is said of the attribute.
        if (holds(text, "$("))
            return;
        SimpleExpressionParser parser;
        parser.maximumDepth = limits.expressionDepth;
        const std::string oddity = failure ? failure : parser.failureOf(text.c_str(), true);
        if (!oddity.empty() && failed.insert(element.name()).second)
            messages.warn(placeOf(&element), "expression",
                          "the expression " + inQuotes(text) + ": " + oddity);
    }

private:
    struct EndOfRun {
    };

    [[noreturn]] void fail(const Place &place, const std::string &text)
    {
        messages.say(place, "error: " + text);
        throw EndOfRun();
    }

    /// Notes where the elements stand that a file has brought, and returns the first of them. Copies
    /// share the name of one whose place is known.
    const XMLElement *placeElements(const Place &start)
    {
        const XMLElement *first = nullptr;
        for (; placed < elements.size(); ++placed) {
            const XMLElement *element = elements[placed];
            const Place place = {start.file, start.line + element->line};
            if (places.try_emplace(element->name(), place).second && !first)
                first = element;
        }
        return first;
    }

    Place placeOf(const XMLElement *element) const
    {
        const auto found = element ? places.find(element->name()) : places.end();
        return found == places.end() ? origin : found->second;
    }

    /// Reads with the text that the run drops, but without numeric references, so that a byte is one
    /// that the file has, and without carriage returns, so that every newline counts.
    void readAgain(std::string text, const Place &start)
    {
        fileCheck.areOpen = fileCheck.areOpen || text.empty();
        std::ranges::replace(text, '\r', ' ');
        for (std::size_t at = 0; (at = text.find("&#", at)) != std::string::npos;)
            text[++at] = ' ';
        XMLDocument document(true);
        document.parse(text.data());
        const bool isLatin1 = encoding && (strcasecmp(encoding, "ISO-8859-1") == 0 ||
                                           strcasecmp(encoding, "latin1") == 0);
        fileCheck.check(document.root, start, isLatin1);
    }

    /// Says what came to nothing in elements whose attributes were expanded.
    void checkResult(const MacroMap &given)
    {
        for (const XMLElement *element : elements) {
            for (std::string &macro : definedMacros(*element))
                fileCheck.defined.insert(std::move(macro));
        }
        for (const XMLElement *element : elements)
            checkElement(*element);
        for (const auto &[name, value] : given) {
            if (hasBlankAround(name))
                messages.warn(commandLine, "list",
                              "the blanks are part of the name in " + inQuotes(name));
            else if (!fileCheck.areOpen && !fileCheck.mentions.contains(name))
                messages.warn(commandLine, "unused", "no file mentions " + inQuotes(name));
        }
    }

    void checkElement(const XMLElement &element)
    {
        const auto tell = [&](std::string_view macro, bool isLeft) {
            if (!fileCheck.defined.contains(macro))
                messages.warn(placeOf(&element), "undefined", inQuotes(macro) + " is not defined");
            else if (isLeft && !isNamed(element, {"define", "include", "xmlput"}))
                messages.warn(placeOf(&element), "reference",
                              "the reference to " + inQuotes(macro) + " is left");
        };
        if (isNamed(element, {"if", "ifnot", "switch"}) && wasExecuted(element))
            tell(askedMacro(element), false);
        for (const XMLAttribute &each : element.attributes()) {
            // System macros are put into the names of files later.
            const bool isFileName =
                isNamed(element, {"include"}) && each.name == std::string_view("filename");
            if (!isFileName && holds(textOf(each), "$(") && wasExecuted(element) &&
                told.insert(each.value).second)
                for (const auto &[macro, end] : referencesIn(textOf(each))) {
                    if (end == ')')
                        tell(macro, true);
                }
        }
    }

    /// Whether the run came to \a element. What a directive leaves is taken out of it before that;
    /// what is still below one was dropped or only copied.
    static bool wasExecuted(const XMLElement &element)
    {
        const XMLNode *outer = element.parent;
        while (outer && !findDirective(static_cast<const XMLElement *>(outer)->name()))
            outer = outer->parent;
        return !outer;
    }

    const SourceFile program = {"xmlpp-check", ""};
    const Place commandLine = {&program, 0};
    Place origin = commandLine;          ///< once it is loaded, its beginning
    std::vector<XMLElement *> elements;  ///< all that were made, copies as well
    std::size_t placed = 0;              ///< of them, those that were looked at for their place
    std::unordered_map<const char *, Place> places;  ///< of elements that were read, by their name
    std::unordered_map<std::string, SourceFile> sources;  ///< by path
    std::unordered_set<const char *> failed;  ///< names of elements whose expression has no value
    std::unordered_set<const char *> told;    ///< values, which an include can hand on
    Messages messages;
    FileCheck fileCheck = FileCheck(&messages);
};

}  // namespace

bool checkRun(const std::string &fileName, const std::string &macroList, const Limits &limits,
              FILE *messages)
{
    return Checker(limits, messages).check(fileName, macroList);
}
