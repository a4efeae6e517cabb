#include "macroscopes.h"
#include "macrovalues.h"

#include <gtest/gtest.h>

#include <ctime>

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

/// The items of a list, each with a '|' behind it.
std::string items(const char *text, bool keepEmpty = false)
{
    std::string joined;
    for (const QString &item : MacroValues::splitMacroList(QString::fromLatin1(text), keepEmpty))
        joined += item.toStdString() + "|";
    return joined;
}

TEST(MacroList, SplitsAtSemicolonsAndUnescapes)
{
    EXPECT_EQ(items(";; a=1;b=2 ; ;"), " a=1|b=2 | |");
    EXPECT_EQ(items("a;;", true), "a|||");
    EXPECT_EQ(items(R"(x=p\;q;C:\\d\=e;v=abc\)"), R"(x=p;q|C:\d=e|v=abc\|)");
    EXPECT_EQ(items("") + items("", true), "|");
}

TEST(MacroList, DefinesAndMerges)
{
    EXPECT_EQ(shown(MacroValues::parseMacroList(
                  {u"b=2"_s, u"a=1"_s, u"a=x=y=="_s, u"n"_s, u"=e"_s, u" s = t "_s})),
              "{=e}{ s = t }{a=x=y==}{b=2}{n=}");
    EXPECT_EQ(shown(MacroValues::mergeMacros({{u"a"_s, u"1"_s}, {u"b"_s, u"2"_s}},
                                             {{u"b"_s, u"3"_s}, {u"c"_s, u"4"_s}})),
              "{a=1}{b=3}{c=4}");
}

/// Expands in both widths, which must agree.
std::string expanded(const std::string &text, const MacroMap &macros, bool useSystemMacros = false)
{
    const QString wide =
        globalMacros.expandMacros(macros, QString::fromStdString(text), useSystemMacros);
    std::string narrow;
    MapLookup lookup(&macros, useSystemMacros ? &globalMacros.systemMacros : nullptr);
    EXPECT_EQ(globalMacros.expandLatin1(lookup, text, &narrow), !wide.isNull()) << text;
    EXPECT_EQ(narrow, wide.toLatin1().toStdString());
    return wide.isNull() ? "null" : wide.toStdString();
}

TEST(Expansion, FollowsTheRulesOfReferences)
{
    const MacroMap macros{{u"a"_s, u"x"_s},      {u"b"_s, u"y"_s},    {u"p(q)"_s, u"pq"_s},
                          {u"ref"_s, u"$(a)"_s}, {u"empty"_s, u""_s}, {u""_s, u"E"_s},
                          {u"n$(a)"_s, u"N"_s},  {u"open"_s, u"("_s}, {u"up"_s, u"$(ref)"_s},
                          {u"null"_s, {}},       {u"z$"_s, {}}};
    for (const std::string each :
         {"a$(a)b => axb", "$$(a) => $x", "$$$ => $$$", "$a $ => $a $", "$() => E",
          "$( a) => $( a)", "$(p(q)) => pq", "$(HostOS)$(Date) => $(HostOS)$(Date)", "$(u) => $(u)",
          "$(u:z) => z", "$(u:) => ", "$(u:y:z) => y:z", "$(u::$(a)) => $(a)",
          "$(a:z)$(b::z) => xy", "$(empty) => ", "$(null) => null", " => null",
          "$(null)$(u:$(null)) => ",
          // An introducer in a reference brings another pass, which takes names and values as
          // they are.
          "$(u:$(a)) => x", "$(ref) => $(a)", "$(ref)$(u:$) => x$", "$(up)$(u:$) => $(a)$",
          "$(n$(a)) => N", "$(u$(v)) => $(u$(v))", "$$(open)a)$(u:$) => x$", "$(z$) => ",
          // The last reference with an opinion decides about another pass.
          "$(u:$(a))$(u::) => $(a)", "$(u::)$(u:$(a)) => x", "$(u:$(a))$(b) => xy",
          // Without its end a reference loses the introducer; what follows has its say.
          "$(a => (a", "$($(a) => (x", "$((a) => ((a)", "$(a)$(b => x(b", "$(u:$(a)) $(q => x (q",
          "$(u:$(a)) $(q:: => $(a) (q::", "$(ref) $(q$ => x (q$"}) {
        const std::string text = each.substr(0, each.find(" => "));
        EXPECT_EQ(text + " => " + expanded(text, macros), each);
    }
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
    const std::string text = "$(DateYear)-$(DateMonth)-$(DateDay) $(Time) "
                             "$(TimeHour).$(TimeMinute).$(TimeSecond) $(Date)";
    bool equal = false;
    // A clock that steps between the two readings makes one of three attempts differ.
    for (int attempt = 0; attempt < 3 && !equal; ++attempt) {
        char now[64];
        const std::time_t clock = std::time(nullptr);
        const std::tm *local = std::localtime(&clock);
        std::strftime(now, sizeof now, "%Y-%m-%d %H:%M:%S %H.%M.%S ", local);
        const std::string day = now + std::to_string(local->tm_mday);
        std::strftime(now, sizeof now, " %B %Y", local);
        equal = expanded(text, {}, true) == day + now;
    }
    EXPECT_TRUE(equal);
    EXPECT_EQ(expanded(text, {}), text);
    EXPECT_NE(expanded("$(Date)", {{u"Date"_s, u"own"_s}}), "own");
    EXPECT_EQ(expanded("$(date)$(Tim)", {{u"date"_s, u"own"_s}, {u"Tim"_s, u"1"_s}}), "own1");
}

TEST(MacroScopes, PutBackWhatALevelChanged)
{
    MacroMap outermost{{u"a"_s, u"1"_s}};
    MacroScopes scopes(&outermost);
    const auto shownNow = [&] {
        std::string text;
        globalMacros.expandLatin1(scopes, "$(a:-)$(b:-)$(c:-)", &text);
        return text;
    };
    scopes.set("b", "2");
    {
        const MacroScopes::Scope outer(&scopes);
        scopes.setList("a=3;\nc\n=4\\;;a=5");
        EXPECT_EQ(shownNow(), "524;");
        {
            const MacroScopes::Scope inner(&scopes);
            scopes.set("a", "6");
            scopes.set("a", "7");
            EXPECT_EQ(shownNow(), "724;");
        }
        EXPECT_EQ(shownNow(), "524;");
        scopes.set("b", "");
    }
    EXPECT_EQ(shownNow(), "12-");
    EXPECT_EQ(shown(outermost), "{a=1}{b=2}");
}

TEST(Expansion, KeepsWhatLatin1Lacks)
{
    const QString longName(100, u'n');
    MacroMap macros{{u"wide"_s, u"\u0131\u00E9"_s}, {longName, u"v"_s}, {u"\u0131"_s, u"found"_s}};
    EXPECT_EQ(globalMacros.expandMacros(macros, u"\u20AC$(wide)"_s, false),
              u"\u20AC\u0131\u00E9"_s);
    EXPECT_EQ(expanded("$(" + longName.toStdString() + ")", macros), "v");
    MacroScopes scopes(&macros);
    std::string narrow;
    globalMacros.expandLatin1(scopes, "\xFF$(wide)", &narrow);
    EXPECT_EQ(narrow, "\xFF?\xE9");
    EXPECT_EQ(*scopes.find(u"\u0131"_s), u"found"_s);
}

TEST(Expansion, Ends)
{
    std::string nested = "end";
    for (int i = 0; i < 100; ++i)
        nested.insert(0, "$(u:").append(")");
    EXPECT_EQ(expanded(nested, {}), "end");
    const auto size = [](const std::string &text, const QString &value) {
        std::string result;
        const MacroMap macros{{u"g$"_s, value}};
        MapLookup lookup(&macros);
        globalMacros.expandLatin1(lookup, text, &result);
        return result.size();
    };
    // Each pass brings the next one about: one character more each time, and twice as many.
    EXPECT_EQ(size("$(g$)", u"$(g$)x"_s), 5U + 1000U);
    EXPECT_THROW(size("$(g$)", u"$(g$)$(g$)"_s), std::bad_alloc);
    EXPECT_LT(size("$(g$)" + std::string(1 << 20, 'x'), u"$(g$)x"_s), (1U << 20) + 80U);
    // Unterminated references, each of which could be a search to the end of the text.
    std::string open;
    for (int i = 0; i < 300'000; ++i)
        open += "$(:";
    EXPECT_EQ(size(open, {}), 600'000U);
}

}  // namespace
