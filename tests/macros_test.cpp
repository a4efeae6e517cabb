#include "datetime.h"
#include "macrovalues.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace Qt::StringLiterals;

namespace
{

std::string shown(const MacroMap &macros)
{
    std::string text;
    for (auto entry = macros.cbegin(); entry != macros.cend(); ++entry)
        text += "{" + entry.key().toStdString() + "=" + entry.value().toStdString() + "}";
    return text;
}

TEST(MacroList, SplitsAtSemicolonsAndUnescapes)
{
    struct {
        const char *text;
        const char *items;
    } cases[] = {
        {"a=1;b=2", "a=1|b=2|"},
        {";;a;;", "a|"},
        {"x=p\\;q", "x=p;q|"},
        {"C:\\\\d\\=e", "C:\\d=e|"},
        {"v=abc\\", "v=abc\\|"},
        {" a ; ", " a | |"},
        {"", ""},
    };
    for (const auto &[text, items] : cases) {
        std::string joined;
        for (const QString &item : MacroValues::splitMacroList(QString::fromLatin1(text), false))
            joined += item.toStdString() + "|";
        EXPECT_EQ(joined, items) << text;
    }
    EXPECT_EQ(MacroValues::splitMacroList(u"a;;"_s, true), QStringList({u"a"_s, u""_s, u""_s}));
    EXPECT_EQ(MacroValues::splitMacroList(u""_s, true), QStringList(u""_s));
}

TEST(MacroList, DefinesAndMerges)
{
    EXPECT_EQ(shown(MacroValues::parseMacroList(
                  {u"b=2"_s, u"a=1"_s, u"a=x=y=="_s, u"n"_s, u"=e"_s, u" s = t "_s})),
              "{=e}{ s = t }{a=x=y==}{b=2}{n=}");
    const MacroMap base{{u"a"_s, u"1"_s}, {u"b"_s, u"2"_s}};
    const MacroMap overrides{{u"b"_s, u"3"_s}, {u"c"_s, u"4"_s}};
    EXPECT_EQ(shown(MacroValues::mergeMacros(base, overrides)), "{a=1}{b=3}{c=4}");
    EXPECT_EQ(shown(base), "{a=1}{b=2}");
}

/// Expands both ways, which must agree.
std::string expanded(const std::string &text, const MacroMap &macros, bool useSystemMacros = false)
{
    const QString wide =
        globalMacros.expandMacros(macros, QString::fromStdString(text), useSystemMacros);
    std::string narrow;
    EXPECT_EQ(globalMacros.expandLatin1(macros, text, useSystemMacros, &narrow), !wide.isNull())
        << text;
    EXPECT_EQ(narrow, wide.toLatin1().toStdString());
    return wide.isNull() ? "null" : wide.toStdString();
}

TEST(Expansion, FollowsTheRulesOfReferences)
{
    const MacroMap macros{{u"a"_s, u"x"_s},       {u"b"_s, u"y"_s},     {u"p(q)"_s, u"pq"_s},
                          {u"ref"_s, u"$(a)"_s},  {u"empty"_s, u""_s},  {u""_s, u"E"_s},
                          {u"null"_s, QString()}, {u"n$(a)"_s, u"N"_s}, {u"open"_s, u"("_s}};
    struct {
        const char *text;
        const char *expansion;
    } cases[] = {
        {"a$(a)b", "axb"},
        {"$(u)", "$(u)"},
        {"$(u:z)", "z"},
        {"$(u:)", ""},
        {"$(u:y:z)", "y:z"},
        {"$(a:z)$(b::z)", "xy"},
        {"$(u:$(a))", "x"},
        {"$(u::$(a))", "$(a)"},
        {"$$(a)", "$x"},
        {"$$$", "$$$"},
        {"$a $", "$a $"},
        {"$()", "E"},
        {"$( a)", "$( a)"},
        {"$(p(q))", "pq"},
        {"$(n$(a))", "N"},
        {"$(ref)", "$(a)"},
        {"$(ref)$(u:$)", "x$"},
        // The last reference with an opinion decides about another pass.
        {"$(u:$(a))$(u::)", "$(a)"},
        {"$(u::)$(u:$(a))", "x"},
        {"$(u:$(a))$(b)", "xy"},
        {"$(a", "(a"},
        {"$($(a)", "(x"},
        {"$(u:$(a)) $(q", "x (q"},
        {"$(u:$(a)) $(q::", "$(a) (q::"},
        {"$(ref) $(q$", "x (q$"},
        {"$((a)", "((a)"},
        {"$(a)$(b", "x(b"},
        {"$(u$(v))", "$(u$(v))"},
        {"$$(open)a)$(u:$)", "x$"},
        {"$(empty)", ""},
        {"$(null)", "null"},
        {"", "null"},
        {"$(null)$(u:$(null))", ""},
        {"$(HostOS)$(Date)", "$(HostOS)$(Date)"},
    };
    for (const auto &[text, expansion] : cases)
        EXPECT_EQ(expanded(text, macros), expansion) << text;
}

TEST(Expansion, ConsultsSystemMacrosOnRequest)
{
    EXPECT_EQ(expanded("$(HostOS)$(HostArch)$(Micro)$(TargetID)$(HostEXE)$(HostDLL)", {}, true),
              "macosx86ARM8.so_macos_x86");
    EXPECT_EQ(expanded("$(HostOS)", {{u"HostOS"_s, u"mine"_s}}, true), "mine");
    globalMacros.setSystemMacro(u"Own"_s, u"1"_s);
    globalMacros.setSystemMacro(u"Own"_s, u"2"_s);
    EXPECT_EQ(expanded("$(Own)", {}, true), "2");
}

TEST(Expansion, ComputesDateAndTimeForADefinedName)
{
    const QStringList names{u"Date"_s, u"DateYear"_s, u"DateMonth"_s,  u"DateDay"_s,
                            u"Time"_s, u"TimeHour"_s, u"TimeMinute"_s, u"TimeSecond"_s};
    const char *formats[] = {"%e %B %Y", "%Y", "%m", "%d", "%H:%M:%S", "%H", "%M", "%S"};
    // A clock that steps between the two readings makes one of two attempts differ.
    for (qsizetype i = 0; i < names.size(); ++i) {
        const std::string reference = "$(" + names[i].toStdString() + ")";
        bool equal = false;
        for (int attempt = 0; attempt < 3 && !equal; ++attempt) {
            char now[64];
            const std::time_t clock = std::time(nullptr);
            std::strftime(now, sizeof now, formats[i], std::localtime(&clock));
            equal = expanded(reference, {}, true) == (*now == ' ' ? now + 1 : now) &&
                    expanded(reference, {{names[i], u"own"_s}}) == (*now == ' ' ? now + 1 : now);
        }
        EXPECT_TRUE(equal) << reference;
        EXPECT_EQ(expanded(reference, {}), reference);
    }
    QString value = u"kept"_s;
    EXPECT_FALSE(builtinMacroValue(u"date"_s, value));
    EXPECT_EQ(value, u"kept"_s);
}

TEST(Expansion, KeepsWhatLatin1Lacks)
{
    const MacroMap macros{{u"wide"_s, u"\u0131\u00E9"_s}};
    EXPECT_EQ(globalMacros.expandMacros(macros, u"\u20AC$(wide)"_s, false),
              u"\u20AC\u0131\u00E9"_s);
    std::string narrow;
    EXPECT_TRUE(globalMacros.expandLatin1(macros, "\xFF$(wide)", false, &narrow));
    EXPECT_EQ(narrow, "\xFF?\xE9");
    const QString longName(100, u'n');
    EXPECT_TRUE(globalMacros.expandLatin1({{longName, u"v"_s}}, "$(" + longName.toStdString() + ")",
                                          false, &narrow));
    EXPECT_EQ(narrow, "v");
}

TEST(Expansion, Ends)
{
    std::string nested = "end";
    for (int i = 0; i < 100; ++i)
        nested.insert(0, "$(u:").append(")");
    EXPECT_EQ(expanded(nested, {}), "end");
    const auto expand = [](const std::string &text, const MacroMap &macros) {
        std::string result;
        globalMacros.expandLatin1(macros, text, false, &result);
        return result.size();
    };
    // Each pass brings the next one about: one character more each time, and twice as many.
    EXPECT_EQ(expand("$(g$)", {{u"g$"_s, u"$(g$)x"_s}}), 5U + 1000U);
    EXPECT_THROW(expand("$(g$)", {{u"g$"_s, u"$(g$)$(g$)"_s}}), std::bad_alloc);
    const MacroMap endless{{u"g$"_s, u"$(g$)x"_s}};
    EXPECT_LT(expand("$(g$)" + std::string(1 << 20, 'x'), endless), (1U << 20) + 80U);
    // Unterminated references, each of which could be a search to the end of the text.
    std::string open;
    for (int i = 0; i < 300'000; ++i)
        open += "$(:";
    EXPECT_EQ(expand(open, {}), 600'000U);
}

}  // namespace
