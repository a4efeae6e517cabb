#include "datetime.h"
#include "latin1.h"
#include "macrovalues.h"

#include <algorithm>
#include <new>
#include <type_traits>
#include <vector>

namespace
{

std::u16string_view toView(const QString &text)
{
    return {reinterpret_cast<const char16_t *>(text.constData()),
            static_cast<std::size_t>(text.size())};
}

/// What it costs to look a name up and to take its value.
constexpr std::uint64_t stepsPerReference = 50;
/// Plain text is found and copied many characters at a time.
constexpr std::size_t charactersPerStep = 16;

/// One expansion, in passes over text of \a Char: char for Latin-1, char16_t for UTF-16.
template <typename Char>
class Expansion
{
public:
    using Text = std::basic_string<Char>;
    using View = std::basic_string_view<Char>;

    Expansion(MacroLookup *lookup, const MacroValues &values, Text *target)
        : macros(*lookup),
          introducer(static_cast<Char>(values.macroIntroducer)),
          limits(values.limits),
          result(*target)
    {
        result.clear();
    }

    /// Whether a value was met that Char is too narrow for. The expansion is none then.
    bool isTooNarrow() const { return tooNarrow; }

    /// Leaves the expansion of \a text in the target; true unless it is the null text.
    bool run(View text)
    {
        longest = std::max(limits.length, text.size());
        runPass(text);
        if (!rescan || result == text)
            return !isNull;
        Text working;
        std::size_t rescanned = 0;
        for (int passes = 1;
             rescan && !tooNarrow && passes < limits.passes && rescanned < limits.rescanned;
             ++passes) {
            working.swap(result);
            result.clear();
            rescanned += working.size();
            runPass(working);
            if (result == working)
                break;
        }
        return true;
    }

private:
    /// Where in the text a reference is.
    struct Reference {
        std::size_t start;               ///< behind the opening parenthesis
        std::size_t end = View::npos;    ///< the closing one
        std::size_t colon = View::npos;  ///< the first in it
        bool isNested = false;           ///< the introducer is in it
    };

    void runPass(View text);
    std::size_t skipUnclosed(View text, std::size_t start);
    bool findEnd(View text, Reference *reference);
    void noteUnclosed(View text, std::size_t from);
    void substitute(View text, const Reference &reference);
    void append(View piece);
    bool lookUp(View name, View *value);

    MacroLookup &macros;
    const Char introducer;
    const MacroValues::Limits &limits;
    Text &result;
    std::size_t longest = 0;
    bool isNull = true;
    bool rescan = false;
    bool tooNarrow = false;
    QString builtinValue;
    QByteArray narrowBuiltinValue;

    /// Per character of the pass's text, whether it is an opening parenthesis that nothing
    /// closes. Made when the first unterminated reference is met, so that no later one needs a
    /// search to the end of the text of its own.
    std::vector<bool> unclosed;
    std::size_t nextIntroducer = 0;
    std::size_t nextColon = 0;
};

template <typename Char>
void Expansion<Char>::runPass(View text)
{
    rescan = false;
    unclosed.clear();
    macros.work += text.size() / charactersPerStep;
    std::size_t position = 0;
    while (position < text.size() && !tooNarrow) {
        const std::size_t found = text.find(introducer, position);
        append(text.substr(position, found - position));
        if (found == View::npos)
            return;
        macros.work += stepsPerReference;
        const std::size_t start = found + 2;
        if (found + 1 == text.size() || text[found + 1] != Char('(')) {
            append(text.substr(found, 1));
            position = found + 1;
            continue;
        }
        Reference reference{start};
        if (!findEnd(text, &reference)) {
            position = skipUnclosed(text, start);
            continue;
        }
        substitute(text, reference);
        position = reference.end + 1;
    }
}

/// Finds the parenthesis that balances the one before the reference's start, and what is between
/// them.
template <typename Char>
bool Expansion<Char>::findEnd(View text, Reference *reference)
{
    const std::size_t start = reference->start;
    if (!unclosed.empty() && unclosed[start - 1])
        return false;
    std::size_t depth = 1;
    for (std::size_t i = start; i < text.size(); ++i) {
        const Char c = text[i];
        if (c == Char(')') && --depth == 0) {
            reference->end = i;
            macros.work += 2 * (i - start);
            return true;
        }
        depth += c == Char('(');
        if (c == Char(':') && reference->colon == View::npos)
            reference->colon = i;
        reference->isNested = reference->isNested || c == introducer;
    }
    noteUnclosed(text, start - 1);
    macros.work += 2 * text.size();
    return false;
}

template <typename Char>
void Expansion<Char>::noteUnclosed(View text, std::size_t from)
{
    unclosed.assign(text.size(), false);
    nextIntroducer = from;
    nextColon = from;
    std::size_t closing = 0;
    for (std::size_t i = text.size(); i-- > from;) {
        if (text[i] == Char(')'))
            ++closing;
        else if (text[i] == Char('(') && closing > 0)
            --closing;
        else if (text[i] == Char('('))
            unclosed[i] = true;
    }
}

/// An unterminated reference loses its introducer and nothing else, but what stands behind it
/// has its say about a further pass. Returns where the scan goes on: at the parenthesis.
template <typename Char>
std::size_t Expansion<Char>::skipUnclosed(View text, std::size_t start)
{
    const auto advance = [&](std::size_t *next, Char wanted) {
        if (*next < start)
            *next = std::min(text.find(wanted, start), text.size());
        return *next < text.size();
    };
    if (advance(&nextIntroducer, introducer))
        rescan = true;
    if (advance(&nextColon, Char(':')) && nextColon + 1 < text.size() &&
        text[nextColon + 1] == Char(':'))
        rescan = false;
    return start - 1;
}

/// Appends what \a reference stands for.
template <typename Char>
void Expansion<Char>::substitute(View text, const Reference &reference)
{
    const auto [start, end, colon, isNested] = reference;
    rescan = rescan || isNested;
    View name = text.substr(start, end - start);
    View fallback = text.substr(start - 2, end + 3 - start);
    if (colon != View::npos) {
        name = text.substr(start, colon - start);
        fallback = text.substr(colon + 1, end - colon - 1);
        if (!fallback.empty() && fallback.front() == Char(':')) {
            fallback.remove_prefix(1);
            rescan = false;
        }
    }
    View value;
    const bool isFound = lookUp(name, &value);
    isNull = isNull && isFound && !value.data();
    append(isFound ? value : fallback);
}

/// A null text gives a view of nothing at all.
template <typename Char>
bool Expansion<Char>::lookUp(View name, View *value)
{
    if constexpr (std::is_same_v<Char, char>) {
        const Lookup found = macros.findLatin1(name, value);
        tooNarrow = tooNarrow || found == Lookup::NotLatin1;
        if (found != Lookup::Found)
            return false;
        const bool canBeBuiltin = name.starts_with('D') || name.starts_with('T');
        if (canBeBuiltin && builtinMacroValue(fromLatin1(name), builtinValue)) {
            narrowBuiltinValue = builtinValue.toLatin1();
            *value = {narrowBuiltinValue.constData(),
                      static_cast<std::size_t>(narrowBuiltinValue.size())};
        }
    } else {
        const auto key = QString::fromRawData(reinterpret_cast<const QChar *>(name.data()),
                                              static_cast<qsizetype>(name.size()));
        const QString *found = macros.find(key);
        if (!found)
            return false;
        if (builtinMacroValue(key, builtinValue))
            found = &builtinValue;
        *value = found->isNull() ? View() : toView(*found);
    }
    return true;
}

template <typename Char>
void Expansion<Char>::append(View piece)
{
    if (piece.empty())
        return;
    isNull = false;
    result.append(piece);
    if (result.size() > longest)
        throw std::bad_alloc();
}

}  // namespace

QString MacroValues::expandMacros(const MacroMap &macros, const QString &text,
                                  bool useSystemMacros) const
{
    MapLookup lookup(&macros, useSystemMacros ? &systemMacros : nullptr);
    return expand(lookup, text);
}

QString MacroValues::expand(MacroLookup &macros, const QString &text) const
{
    std::u16string result;
    Expansion<char16_t> expansion(&macros, *this, &result);
    if (!expansion.run(toView(text)))
        return {};
    return QString(reinterpret_cast<const QChar *>(result.data()),
                   static_cast<qsizetype>(result.size()));
}

bool MacroValues::expandLatin1(MacroLookup &macros, std::string_view text,
                               std::string *result) const
{
    Expansion<char> expansion(&macros, *this, result);
    const bool hasText = expansion.run(text);
    if (!expansion.isTooNarrow())
        return hasText;
    const QString wide = expand(macros, fromLatin1(text));
    *result = wide.toLatin1().toStdString();
    return !wide.isNull();
}
