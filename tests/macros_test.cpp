#include "macroscopes.h"
#include "macrovalues.h"

#include <gtest/gtest.h>

#include <ctime>
#include <new>

namespace
{

std::string shown(const MacroMap &macros)
{
    std::string text;
    for (const auto &[name, value] : macros)
        text.append("{").append(name).append("=").append(value).append("}");
    return text;
}

/// The items of a list, each with a '|' behind it.
std::string items(const char *list, bool keepEmpty = false)
{
    std::string joined;
    for (const std::string &item : MacroValues::splitMacroList(list, keepEmpty))
        joined.append(item).append("|");
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
    EXPECT_EQ(shown(MacroValues::parseMacroList({"b=2", "a=1", "a=x=y==", "n", "=e", " s = t "})),
              "{=e}{ s = t }{a=x=y==}{b=2}{n=}");
    EXPECT_EQ(shown(MacroValues::mergeMacros({{"a", "1"}, {"b", "2"}}, {{"b", "3"}, {"c", "4"}})),
              "{a=1}{b=3}{c=4}");
}

std::string expanded(const std::string &text, const MacroMap &macros, bool useSystemMacros = false)
{
    return globalMacros.expandMacros(macros, text, useSystemMacros);
}

TEST(Expansion, FollowsTheRulesOfReferences)
{
    const MacroMap macros{{"a", "x"},      {"b", "y"},      {"empty", ""},    {"", "E"},
                          {"p(q)", "pq"},  {"open", "("},   {"\xFF", "\xE9"}, {"n$(a)", "N"},
                          {"ref", "$(a)"}, {"up", "$(ref)"}};
    const std::pair<const char *, const char *> rows[] = {
        {"a$(a)b", "axb"},
        {"$(a)$(b)", "xy"},
        {"$$(a)", "$x"},
        {"$$$", "$$$"},
        {"$a $", "$a $"},
        {"$()", "E"},
        {"$( a)", "$( a)"},
        {"$(p(q))", "pq"},
        {"\xE4$(\xFF)", "\xE4\xE9"},
        {"$(empty)", ""},
        // Names that nothing defines.
        {"$(u)$(HostOS)", "$(u)$(HostOS)"},
        {"$(u:z)", "z"},
        {"$(u:)", ""},
        {"$(u:y:z)", "y:z"},
        {"$(u::$(a))", "$(a)"},
        {"$(a:z)$(b::z)", "xy"},
        // An introducer in a reference brings another pass; names and values are as they are.
        {"$(u:$(a))", "x"},
        {"$(ref)", "$(a)"},
        {"$(ref)$(u:$)", "x$"},
        {"$(up)$(u:$)", "$(a)$"},
        {"$(n$(a))", "N"},
        {"$(u$(v))", "$(u$(v))"},
        {"$$(open)a)$(u:$)", "x$"},
        // The last reference with an opinion decides about another pass.
        {"$(u:$(a))$(u::)", "$(a)"},
        {"$(u::)$(u:$(a))", "x"},
        {"$(u:$(a))$(b)", "xy"},
        // Without its end a reference loses the introducer; what follows has an opinion.
        {"$(a", "(a"},
        {"$($(a)", "(x"},
        {"$((a)", "((a)"},
        {"$(a)$(b", "x(b"},
        {"$(u:$(a)) $(q", "x (q"},
        {"$(u:$(a)) $(q::", "$(a) (q::"},
        {"$(ref) $(q$", "x (q$"}};
    for (const auto &[text, expansion] : rows)
        EXPECT_EQ(expanded(text, macros), expansion) << text;
}

TEST(Expansion, ConsultsSystemMacrosOnRequest)
{
    EXPECT_EQ(expanded("$(HostOS)$(HostArch)$(Micro)$(TargetID)$(HostEXE)$(HostDLL)", {}, true),
              "macosx86ARM8.so_macos_x86");
    EXPECT_EQ(expanded("$(HostOS)", {{"HostOS", "mine"}}, true), "mine");
    globalMacros.setSystemMacro("Own", "1");
    globalMacros.setSystemMacro("Own", "2");
    EXPECT_EQ(expanded("$(Own)", {}, true), "2");
}

std::string now(const char *format)
{
    char text[100];
    const std::time_t clock = std::time(nullptr);
    return {text, std::strftime(text, sizeof text, format, std::localtime(&clock))};
}

TEST(Expansion, ComputesDateAndTimeForADefinedName)
{
    const std::string text = "$(DateYear)-$(DateMonth)-$(DateDay) $(Date) "
                             "$(TimeHour).$(TimeMinute).$(TimeSecond) $(Time)";
    std::string before, found, after;
    // A second can end between two readings of the clock.
    do {
        before = now("%Y-%m-%d %-d %B %Y %H.%M.%S %H:%M:%S");
        found = expanded(text, {}, true);
        after = now("%Y-%m-%d %-d %B %Y %H.%M.%S %H:%M:%S");
    } while (before != after);
    EXPECT_EQ(found, before);
    EXPECT_EQ(expanded(text, {}), text);
    EXPECT_NE(expanded("$(Date)", {{"Date", "own"}}), "own");
    EXPECT_EQ(expanded("$(date)$(Tim)", {{"date", "own"}, {"Tim", "1"}}), "own1");
}

TEST(Expansion, Ends)
{
    MacroValues values;
    values.limits = {.passes = 100, .rescanned = 10000, .length = 1000};
    const auto size = [&](const std::string &text, const std::string &value) {
        return values.expandMacros({{"g$", value}}, text, false).size();
    };
    // Each pass brings the next one about: one character more each time, and twice as many.
    EXPECT_EQ(size("$(g$)", "$(g$)x"), 5U + 100U);
    EXPECT_THROW(size("$(g$)", "$(g$)$(g$)"), std::bad_alloc);
    EXPECT_EQ(size("$(g$)" + std::string(900, 'x'), "$(g$)x"), 5U + 900U + 12U);
    EXPECT_EQ(size(std::string(1001, 'x'), ""), 1001U);
}

TEST(Expansion, CostsTwiceAsMuchForTwiceTheText)
{
    for (const char *piece :
         {"plain", "$", "$(a)", "$(long)", "$(u:default)", "$(u:$(a))", "$(:", "$((", "$(Date)"}) {
        std::string text;
        while (text.size() < 1 << 16)
            text += piece;
        const MacroMap macros{{"a", "x"}, {"long", std::string(1 << 10, 'l')}, {"Date", ""}};
        MapLookup lookup(&macros);
        std::string result;
        const auto cost = globalMacros.expand(lookup, text, &result);
        const auto twice = globalMacros.expand(lookup, text + text, &result);
        EXPECT_TRUE(twice > cost * 15 / 8 && twice < cost * 17 / 8) << piece;
    }
}

TEST(MacroScopes, PutBackWhatALevelChanged)
{
    MacroMap outermost{{"a", "1"}};
    MacroScopes scopes(&outermost);
    const auto shownNow = [&] {
        std::string text;
        globalMacros.expand(scopes, "$(a:-)$(b:-)$(c:-)", &text);
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
            scopes.set("a", "a longer value");
            EXPECT_EQ(shownNow(), "a longer value24;");
        }
        EXPECT_EQ(shownNow(), "524;");
        scopes.set("b", "");
    }
    EXPECT_EQ(shownNow(), "12-");
    EXPECT_FALSE(scopes.contains("c"));
    EXPECT_EQ(shown(outermost), "{a=1}{b=2}");
}

TEST(MacroScopes, TellNamesOfAnyLengthApart)
{
    MacroMap outermost;
    MacroScopes scopes(&outermost);
    for (std::size_t length = 1; length <= 40; ++length) {
        for (std::size_t at = 0; at < length; ++at)
            scopes.set(std::string(length, 'n').replace(at, 1, "x"), std::to_string(at));
    }
    for (const auto &[name, value] : outermost) {
        std::string_view found;
        EXPECT_TRUE(scopes.find(name, &found) && found == value) << name;
    }
    EXPECT_EQ(outermost.size(), 40U * 41U / 2U);
}

}  // namespace
