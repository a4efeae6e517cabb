#include "macroscopes.h"
#include "macrovalues.h"
#include "rows.h"

#include <ctime>
#include <new>

namespace
{

TEST(MacroList, IsSplitAndDefines)
{
    using Items = std::vector<std::string>;
    EXPECT_EQ(MacroValues::splitMacroList(R"(;a=1; ;p\;q;\\d\=e;abc\)", false),
              Items({"a=1", " ", "p;q", R"(\d=e)", R"(abc\)"}));
    EXPECT_EQ(MacroValues::splitMacroList("a;;", true), Items({"a", "", ""}));
    EXPECT_EQ(MacroValues::parseMacroList({"b=2", "b=x=y==", "n", "=e", " s = t "}),
              MacroMap({{"", "e"}, {" s ", " t "}, {"b", "x=y=="}, {"n", ""}}));
    EXPECT_EQ(MacroValues::mergeMacros({{"a", "1"}, {"b", "2"}}, {{"b", "3"}, {"c", "4"}}),
              MacroMap({{"a", "1"}, {"b", "3"}, {"c", "4"}}));
}

/// The expansion in room for \a size bytes, "-" where it is not plain.
std::string plain(std::string_view text, const MacroMap &macros, std::size_t size = 64)
{
    std::string room(size, '?');
    MapLookup lookup(&macros);
    std::uint64_t steps = 0;
    const std::size_t used = globalMacros.expandPlain(lookup, text, room, &steps);
    return used == MacroValues::notPlain ? "-" : room.substr(0, used);
}

TEST(Expansion, FollowsTheRulesOfReferences)
{
    const MacroMap macros{{"a", "x"},     {"b", "y"},      {"ref", "$(a)"}, {"up", "$(ref)"},
                          {"empty", ""},  {"", "E"},       {"open", "("},   {"p(q)", ")"},
                          {"n$(a)", "N"}, {"\xFF", "\xE9"}};
    expectRows("expansions", [&](const std::string &, const std::string &text) {
        std::string expansion = globalMacros.expandMacros(macros, text, false);
        const std::string found = plain(text, macros);
        EXPECT_TRUE(found == "-" || found == expansion) << text;
        return expansion;
    });
    EXPECT_EQ(plain("\xE4$( a)$(\xFF)", macros), "\xE4$( a)\xE9");
    EXPECT_EQ(plain("12$(a)", macros, 2), "-");
    EXPECT_EQ(plain("12$(a)", macros, 3), "12x");
}

TEST(Expansion, ConsultsSystemMacrosOnRequest)
{
    const auto now = [] {
        char text[100];
        const std::time_t clock = std::time(nullptr);
        const std::tm *local = std::localtime(&clock);
        std::strftime(text, sizeof text, " %B %Y %F %H.%M.%S %T", local);
        return std::to_string(local->tm_mday) + text + " macosx86ARM81.so_macos_x86A";
    };
    const char *const text = "$(Date) $(DateYear)-$(DateMonth)-$(DateDay) "
                             "$(TimeHour).$(TimeMinute).$(TimeSecond) $(Time) "
                             "$(HostOS)$(HostArch)$(Micro)$(TargetID)$(HostEXE)$(HostDLL)$(a)";
    globalMacros.setSystemMacro("HostEXE", "1");
    std::string before, found;
    do {  // until no second ends between two readings of the clock
        before = now();
        found = globalMacros.expandMacros({{"a", "A"}}, text, true);
    } while (before != now());
    EXPECT_EQ(found, before);
    EXPECT_EQ(plain("$(Date)", {{"Date", "own"}}), "-");
    EXPECT_EQ(plain("$(date)", {{"date", "own"}}), "own");
}

TEST(Expansion, Ends)
{
    MacroValues values;
    values.limits = {.passes = 100, .rescanned = 10000, .length = 1000};
    const auto size = [&](const std::string &text, const std::string &value) {
        return values.expandMacros({{"g$", value}}, text, false).size();
    };
    EXPECT_EQ(size("$(g$)", "$(g$)x"), 5U + 100U);
    EXPECT_THROW(size("$(g$)", "$(g$)$(g$)"), std::bad_alloc);
    EXPECT_EQ(size("$(g$)" + std::string(900, 'x'), "$(g$)x"), 5U + 900U + 12U);
    EXPECT_EQ(size(std::string(1001, 'x'), ""), 1001U);
}

TEST(MacroScopes, PutBackWhatALevelChanged)
{
    MacroMap outermost{{"a", "1"}};
    MacroScopes scopes(&outermost);
    const auto shownNow = [&] {
        std::string text;
        globalMacros.expand(scopes, "$(a:-)$(b:-)$(c:-)$(:-)", &text);
        return text;
    };
    scopes.set("b", "2");
    const std::size_t bytesBefore = scopes.bytesUsed();
    {
        const MacroScopes::Scope outer(&scopes);
        EXPECT_GT(scopes.setList("a=3;\nc\n=4\\;;;a=5"), 60U);
        {
            const MacroScopes::Scope inner(&scopes);
            scopes.set("a", "6");
            scopes.set("a", std::string(1000, 'x'));
            scopes.set("a", "longer");
            EXPECT_EQ(shownNow(), "longer24;-");
        }
        EXPECT_EQ(shownNow(), "524;-");
        scopes.set("b", "");
    }
    EXPECT_EQ(shownNow(), "12--");
    EXPECT_LT(scopes.bytesUsed(), bytesBefore + 1000);
    EXPECT_FALSE(scopes.contains("c"));
    scopes.set("d", "");
    EXPECT_EQ(outermost, MacroMap({{"a", "1"}, {"b", "2"}, {"d", ""}}));
}

TEST(MacroScopes, TellNamesOfAnyLengthApart)
{
    MacroMap outermost;
    MacroScopes scopes(&outermost);
    for (std::size_t length = 1; length <= 40; ++length) {
        for (std::size_t at = 0; at < length; ++at) {
            const std::string name = std::string(length, 'n').replace(at, 1, "x");
            ASSERT_FALSE(scopes.contains(name)) << name;
            scopes.set(name, "");
        }
    }
    for (const auto &[name, value] : outermost)
        ASSERT_TRUE(scopes.contains(name)) << name;
}

}  // namespace
