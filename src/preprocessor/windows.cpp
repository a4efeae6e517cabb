#include "windows.h"

#include "inputtext.h"
#include "walk.h"
#include "xmlreader.h"
#include "xmlwriter.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <deque>
#include <memory>
#include <new>
#include <optional>
#include <utility>

namespace windows
{

namespace
{

struct DirectiveError {
    std::string message;
};

/// The document of an attempt: errors end that, and what has been written of the head stays so.
class WindowDocument : public XMLPP2
{
public:
    WindowDocument() { onlyReadableAgain = true; }

    [[noreturn]] void reportError(const std::string &message) override
    {
        throw DirectiveError{message};
    }

    void fileLoaded(const std::string &path, const XMLElement *top,
                    const XMLElement *includedBy) override
    {
        XMLPP2::fileLoaded(path, top, includedBy);
        checkHead();
    }

    /// Writes the declaration and the document type, \a givenDoctype if that is not null.
    void writeHead(XMLWriter *writer, const char *givenDoctype);

    /// That nothing read since has changed the head. What was read goes with its window.
    void checkHead();

private:
    using Field = char *XMLDocument::*;
    static constexpr std::array<Field, 3> fields = {&XMLDocument::version, &XMLDocument::encoding,
                                                    &XMLDocument::doctype};

    bool isHeadWritten = false;
    bool isDoctypeGiven = false;
    std::array<std::optional<std::string>, fields.size()> head;
};

void WindowDocument::writeHead(XMLWriter *writer, const char *givenDoctype)
{
    std::string given = givenDoctype ? givenDoctype : "";
    if (givenDoctype)
        doctype = given.data();
    writer->writeHead(*this);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (const char *text = std::exchange(this->*fields[i], nullptr))
            head[i] = text;
    }
    isDoctypeGiven = givenDoctype;
    isHeadWritten = true;
}

void WindowDocument::checkHead()
{
    if (!isHeadWritten)
        return;
    if (isDoctypeGiven)
        doctype = nullptr;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const char *text = std::exchange(this->*fields[i], nullptr);
        if (text && head[i] != text)
            throw NeedsTree();
    }
}

/// An element that is open from one window to the next.
struct OpenLevel {
    OpenLevel(const char *tag, MacroScopes *macros)
        : name(tag),
          element(name.c_str()),
          scope(macros)
    {
    }

    std::string name;
    XMLElement element;  ///< for the reader to link children to
    MacroScopes::Scope scope;
};

std::span<char> emptyText()
{
    static char nothing = '\0';
    return {&nothing, 0};
}

/// One attempt.
class Windows
{
public:
    Windows(const Request &wanted, InputStream source, FILE *output);
    /// What a document leaves is filled, to show stale pointers; here that takes longer than small runs.
    ~Windows()
    {
        // Scopes are left in the opposite order, which a deque does not promise.
        while (!levels.empty())
            levels.pop_back();
        document.release({});
    }
    Windows(const Windows &) = delete;
    Windows &operator=(const Windows &) = delete;

    Outcome run(std::string *message);

private:
    void readText();
    void read();
    bool readOn(const char *to, std::size_t fewestOpen);
    std::size_t levelsAroundDirective();
    bool finishWindow();
    void walkTop();
    void enterLevel(XMLReader::OpenElement *open);
    void walkLevel(XMLReader::OpenElement *open);
    void leaveLevel();
    void walkNodes(XMLNode *first);
    void finish();
    template <typename Step>
    void execute(Step step);

    const Request &request;
    const directive::Level level;
    const InputStream input;
    XMLWriter writer;
    WindowDocument document;
    MacroMap macros;
    Walk walk;
    XMLReader reader;

    bool isEnd = false;           ///< whether nothing is behind the text
    const char *limit = nullptr;  ///< the end of the window in the text
    bool isFinished = false;      ///< whether all that was read before the limit has been written
    Pool::Mark beginning;         ///< where the pool goes back to then
    std::size_t storedBefore = 0;

    std::deque<OpenLevel> levels;  ///< the outermost ones of those that the reader has open
    bool isRootWritten = false;

    std::string refusal;  ///< why the walk has ended; empty as long as it goes on
};

Windows::Windows(const Request &wanted, InputStream source, FILE *output)
    : request(wanted),
      level{wanted.inFile, true, 0},
      input(std::move(source)),
      writer(output, 2),
      macros(XMLPP2::macrosOf(wanted.macroList)),
      walk(&document, &macros, &writer),
      reader(&document, emptyText(), /*wantsLines=*/false)
{
    document.limits = request.limits;
    document.files = request.files;
}

Outcome Windows::run(std::string *message)
{
    const CurrentPool current(&document);
    document.fileLoaded(request.inFile, nullptr, nullptr);
    do {
        readText();
        read();
        isFinished = finishWindow();
    } while (!isEnd);
    finish();
    *message = refusal;
    if (!refusal.empty())
        return Outcome::Refused;
    writer.flush();
    return Outcome::Written;
}

/// Puts what was not read yet at the beginning of a new window, and more behind it.
void Windows::readText()
{
    const std::string rest(reader.rest());
    if (isFinished) {
        if (walk.run.storedFragments == storedBefore)
            document.release(beginning);
        beginning = document.mark();
        storedBefore = walk.run.storedFragments;
    }

    const std::size_t before = document.bytesUsed();
    const std::size_t size = request.sizes.text + request.sizes.lookAhead;
    char *const text = static_cast<char *>(document.allocate(size + 1));
    std::size_t length = rest.copy(text, rest.size());
    length += readPieces(input.get(), text + length, size - length, &isEnd);
    if (std::ferror(input.get()))
        throw NeedsTree();
    text[length] = '\0';
    limit = text + (isEnd ? length : request.sizes.text);
    reader.continueIn({text, length});
    walk.run.budget.exclude(document.bytesUsed() - before, length - rest.size());
}

/// Reads the window, and leaves the levels that end in it. In its last part it ends as soon as no
/// directive is open.
void Windows::read()
{
    const char *const earlyEnd = isEnd ? limit : limit - request.sizes.text / 8;
    while (!readOn(earlyEnd, levels.size()))
        leaveLevel();
    const std::size_t outermost = levelsAroundDirective();
    if (outermost < reader.openElements().size())
        readOn(limit, outermost + 1);
}

/// False where there are fewer than \a fewestOpen open elements before \a to is reached.
bool Windows::readOn(const char *to, std::size_t fewestOpen)
{
    const std::size_t before = document.bytesUsed();
    const bool goesOn = reader.readOn(to, fewestOpen);
    const std::size_t bytes = document.bytesUsed() - before;
    walk.run.budget.exclude(bytes, bytes);
    document.checkHead();
    // Where bytes are left, they were not needed to tell what stands before them.
    if (!goesOn || (!isEnd && reader.rest().empty()))
        throw NeedsTree();
    return reader.openElements().size() >= fewestOpen;
}

/// How many elements are open around the outermost directive that is, or at all.
std::size_t Windows::levelsAroundDirective()
{
    const std::vector<XMLReader::OpenElement> &open = reader.openElements();
    std::size_t first = levels.size();
    while (first < open.size() && !directive::findDirective(open[first].element->name()))
        ++first;
    return first;
}

/// Walks all that is complete, which need not be all that was read: false where a directive is open,
/// or the root is yet to come.
bool Windows::finishWindow()
{
    std::vector<XMLReader::OpenElement> &open = reader.openElements();
    if (isEnd && !open.empty())
        throw NeedsTree();
    if (levels.empty())
        walkTop();
    else
        walkLevel(&open[levels.size() - 1]);
    for (const std::size_t all = levelsAroundDirective(); levels.size() < all;)
        enterLevel(&open[levels.size()]);
    return levels.size() == open.size() && (isRootWritten || !open.empty());
}

/// Does what is to be done outside of all levels: there can be an open element, which is the root,
/// a closed one, or neither.
void Windows::walkTop()
{
    const bool isOpen = !reader.openElements().empty();
    XMLNode *const closed = reader.takeResult();
    if (isOpen + (closed != nullptr) + isRootWritten > 1)
        throw NeedsTree();
    const XMLNode *const root = isOpen ? reader.openElements().front().element : closed;
    if (!root)
        return;
    if (directive::findDirective(static_cast<const XMLElement *>(root)->name()))
        throw NeedsTree();
    document.writeHead(&writer, request.doctype);
    if (closed) {
        walkNodes(closed);
        isRootWritten = true;
    }
}

void Windows::enterLevel(XMLReader::OpenElement *open)
{
    if (levels.size() + 1 >= static_cast<std::size_t>(request.limits.nestedLevels))
        throw NeedsTree();
    XMLElement *const element = open->element;
    execute([&] { walk.begin(*element, level); });
    levels.emplace_back(element->name(), &walk.run.macros);
    open->element = &levels.back().element;
    open->element->firstChild = element->firstChild;
    walkLevel(open);
}

/// Walks what is complete in the innermost level.
void Windows::walkLevel(XMLReader::OpenElement *open)
{
    open->end = &open->element->firstChild;
    walkNodes(std::exchange(open->element->firstChild, nullptr));
}

/// Ends the innermost level, which the reader has closed and linked to the one around it.
void Windows::leaveLevel()
{
    walkNodes(levels.back().element.firstChild);
    execute([&] { walk.end(levels.back().name.c_str()); });
    levels.pop_back();
    if (levels.empty()) {
        reader.takeResult();
        isRootWritten = true;
    } else {
        XMLElement &around = levels.back().element;
        around.firstChild = nullptr;
        reader.openElements().back().end = &around.firstChild;
    }
}

void Windows::walkNodes(XMLNode *first)
{
    execute([&] { walk.walkChildren(first, level); });
}

/// Does what the walk does at its end, and finds out whether a bound that was met is one for the whole
/// document too.
void Windows::finish()
{
    if (!isRootWritten)
        throw NeedsTree();
    directive::Run &run = walk.run;
    execute([&] { run.stopPastBounds(); });
    const bool isKnown = refusal.empty()
                             ? run.sharedText <= run.budget.left(directive::Price::SharedByte)
                             : run.budget.isSpent();
    if (!isKnown)
        throw NeedsTree();
}

/// Does a \a step of the walk. After a bound was met there are no further ones, and only the rest of
/// the document is read.
template <typename Step>
void Windows::execute(Step step)
{
    if (!refusal.empty())
        return;
    try {
        step();
    } catch (const DirectiveError &error) {
        if (!walk.run.isStopped() || !walk.run.budget.isSpent())
            throw NeedsTree();
        refusal = error.message;
    }
}

}  // namespace

Outcome preprocess(const Request &request, std::unique_ptr<OutputFile> *output,
                   std::string *message)
{
    if (!canBeReadAgain(request.inFile))
        return Outcome::NeedsTree;
    try {
        InputStream input = openInput(request.inFile);
        auto file = std::make_unique<OutputFile>(request.outFile, true);
        if (input && file->stream()) {
            const auto attempt =
                std::make_unique<Windows>(request, std::move(input), file->stream());
            const Outcome outcome = attempt->run(message);
            if (outcome == Outcome::Written)
                *output = std::move(file);
            return outcome;
        }
    } catch (const NeedsTree &) {
    } catch (const std::bad_alloc &) {
    }
    if (request.files)
        request.files->clear();
    return Outcome::NeedsTree;
}

}  // namespace windows
