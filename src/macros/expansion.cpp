#include "datetime.h"
#include "macrovalues.h"

#include <algorithm>
#include <new>
#include <type_traits>
#include <vector>

namespace
{

/// Thrown by an 8-bit expansion that meets a value with a character above 0xFF.
struct NotLatin1 {
};

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

    /// Leaves the expansion of \a text in the target; true unless it is the null text.
    bool run(View text)
    {
        longest = std::max(limits.length, text.size());
        runPass(text);
        if (!rescan || result == text)
            return !isNull;
        Text working;
        std::size_t rescanned = 0;
        for (int passes = 1; rescan && passes < limits.passes && rescanned < limits.rescanned;
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
    void runPass(View text);
    std::size_t skipUnclosed(View text, std::size_t start);
    bool findEnd(View text, std::size_t start, std::size_t *end);
    void noteUnclosed(View text, std::size_t from);
    void substitute(View reference, View inner);
    void append(View piece);
    void append(const QString &value);
    const QString *find(View name);

    MacroLookup &macros;
    const Char introducer;
    const MacroValues::Limits &limits;
    Text &result;
    std::size_t longest = 0;
    bool isNull = true;
    bool rescan = false;
    QString builtinValue;

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
    std::size_t position = 0;
    while (position < text.size()) {
        const std::size_t found = text.find(introducer, position);
        append(text.substr(position, found - position));
        if (found == View::npos)
            return;
        const std::size_t start = found + 2;
        if (found + 1 == text.size() || text[found + 1] != Char('(')) {
            append(text.substr(found, 1));
            position = found + 1;
            continue;
        }
        std::size_t end = 0;
        if (!findEnd(text, start, &end)) {
            position = skipUnclosed(text, start);
            continue;
        }
        substitute(text.substr(found, end + 1 - found), text.substr(start, end - start));
        position = end + 1;
    }
}

/// Finds the parenthesis that balances the one before \a start.
template <typename Char>
bool Expansion<Char>::findEnd(View text, std::size_t start, std::size_t *end)
{
    if (!unclosed.empty() && unclosed[start - 1])
        return false;
    std::size_t depth = 1;
    for (std::size_t i = start; i < text.size(); ++i) {
        if (text[i] == Char(')') && --depth == 0) {
            *end = i;
            return true;
        }
        depth += text[i] == Char('(');
    }
    noteUnclosed(text, start - 1);
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

/// Appends what \a reference stands for; \a inner is the text between its parentheses.
template <typename Char>
void Expansion<Char>::substitute(View reference, View inner)
{
    if (inner.find(introducer) != View::npos)
        rescan = true;
    View name = inner;
    View fallback = reference;
    if (const std::size_t colon = inner.find(Char(':')); colon != View::npos) {
        name = inner.substr(0, colon);
        fallback = inner.substr(colon + 1);
        if (!fallback.empty() && fallback.front() == Char(':')) {
            fallback.remove_prefix(1);
            rescan = false;
        }
    }
    if (const QString *value = find(name)) {
        append(*value);
    } else {
        append(fallback);
        isNull = false;
    }
}

template <typename Char>
const QString *Expansion<Char>::find(View name)
{
    const auto lookUp = [this](const QString &key) {
        const QString *value = macros.find(key);
        return value && builtinMacroValue(key, builtinValue) ? &builtinValue : value;
    };
    if constexpr (std::is_same_v<Char, char>)
        return lookUp(MacroKey(name));
    else
        return lookUp(QString::fromRawData(reinterpret_cast<const QChar *>(name.data()),
                                           static_cast<qsizetype>(name.size())));
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

template <typename Char>
void Expansion<Char>::append(const QString &value)
{
    isNull = isNull && value.isNull();
    const std::size_t before = result.size();
    result.resize(before + static_cast<std::size_t>(value.size()));
    char16_t bits = 0;
    const auto *from = reinterpret_cast<const char16_t *>(value.constData());
    for (std::size_t i = before; i < result.size(); ++i, ++from) {
        bits |= *from;
        result[i] = static_cast<Char>(*from);
    }
    if (sizeof(Char) == 1 && bits > 0xFF)
        throw NotLatin1();
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
    if (!expansion.run({reinterpret_cast<const char16_t *>(text.constData()),
                        static_cast<std::size_t>(text.size())}))
        return {};
    return QString(reinterpret_cast<const QChar *>(result.data()),
                   static_cast<qsizetype>(result.size()));
}

bool MacroValues::expandLatin1(const MacroMap &macros, std::string_view text, bool useSystemMacros,
                               std::string *result) const
{
    MapLookup lookup(&macros, useSystemMacros ? &systemMacros : nullptr);
    return expandLatin1(lookup, text, result);
}

bool MacroValues::expandLatin1(MacroLookup &macros, std::string_view text,
                               std::string *result) const
{
    try {
        return Expansion<char>(&macros, *this, result).run(text);
    } catch (const NotLatin1 &) {
        const QString wide =
            expand(macros, QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size())));
        *result = wide.toLatin1().toStdString();
        return !wide.isNull();
    }
}
