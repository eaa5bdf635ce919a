#include "text/regex.h"

#include "tests/support/debug_listener.h"
#include "tests/support/failing_allocations.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vxut {
namespace {

using Texts = std::vector<std::wstring>;

std::wstring Wide(const String& text) { return {text.Text(), static_cast<size_t>(text.Length())}; }

String TextOf(const std::wstring& text) {
    String made;
    made.Append(text.data(), static_cast<int64_t>(text.size()));
    return made;
}

std::wstring Joined(const WCValSList<String>& pieces) {
    String joined;
    joined.Join(L"|", pieces);
    return Wide(joined);
}

// The groups of the first match as text@position; empty if there is no match.
Texts Groups(const wchar_t* pattern, const std::wstring& subject, uint32_t options = 0) {
    clsRegEx regex(pattern, options);
    clsRegExMatchList matches;
    Texts groups;
    if (!regex.Match(TextOf(subject), &matches)) return groups;
    for (const scRegExMatch& match : matches)
        groups.push_back(Wide(match.text) + L"@" + std::to_wstring(match.position));
    return groups;
}

TEST(RegExMatch, ListsEveryGroupOfThePattern) {
    const struct {
        const wchar_t *pattern, *subject;
        Texts groups;
    } cases[] = {
        {L"a(b)?c", L"ac", {L"ac@0", L"@2"}},
        {L"(a)|(b)|(c)", L"xb", {L"b@1", L"@2", L"b@1", L"@2"}},
        {L"(?=(b))", L"ab", {L"@1", L"b@1"}},
        // A hyphen beside a class escape is itself.
        {L"[\\w-.]+", L" a-b.c,", {L"a-b.c@1"}},
        {L"[a-\\d-z]+", L"xb-az7", {L"-az7@2"}},
    };
    for (const auto& row : cases) EXPECT_EQ(Groups(row.pattern, row.subject), row.groups) << row.pattern;
    EXPECT_EQ(Groups(L"b", {L'a', 0, 0xD800, L'b'}), (Texts{L"b@3"})); // units, whatever they are
}

TEST(RegExMatch, OptionsHaveTheirBits) {
    const struct {
        uint32_t option;
        const wchar_t *pattern, *subject;
        Texts without, with;
    } cases[] = {
        {1, L"ab", L"xAB", {}, {L"AB@1"}},        {2, L"^b$", L"a\nb\nc", {}, {L"b@2"}},
        {4, L"a.b", L"a\nb", {}, {L"a\nb@0"}},    {8, L"a b # note", L"ab", {}, {L"ab@0"}},
        {0x10, L"b", L"ab", {L"b@1"}, {}},        {0x20, L"a$", L"a\n", {L"a@0"}, {}},
        {0x40, L"\\j", L"j", {L"j@0"}, {}},       {0x80, L"^a", L"a", {L"a@0"}, {}},
        {0x100, L"a$", L"a", {L"a@0"}, {}},       {0x200, L"a+", L"aaa", {L"aaa@0"}, {L"a@0"}},
        {0x400, L"b*", L"ab", {L"@0"}, {L"b@1"}}, {0x800, L"a", L"ba", {L"a@1"}, {L"a@1"}},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(Groups(row.pattern, row.subject), row.without) << row.option;
        EXPECT_EQ(Groups(row.pattern, row.subject, row.option), row.with) << row.option;
    }
}

TEST(RegExCompile, ReportsAFaultAtEveryUse) {
    const DebugListener listener;
    clsRegEx regex(L"[\\w-.](");
    EXPECT_FALSE(regex.Match(L"abc"));
    EXPECT_EQ(Wide(regex.GSub(L"abc", L"-")), L"abc");
    EXPECT_EQ(Joined(regex.Split(L"abc")), L"abc");
    EXPECT_EQ(listener.Lines().size(), 3u);
    EXPECT_TRUE(listener.Heard(L"Error in RegEx offset 7: 'missing closing parenthesis'"));
    EXPECT_TRUE(regex.Compile(L"b", 0) && regex.Match(L"abc"));
}

TEST(RegExGSub, ReplacesByTemplate) {
    const struct {
        const wchar_t *pattern, *subject, *replacement, *result;
    } cases[] = {
        {L"(\\w)(\\w)?", L"abc", L"\\2\\11", L"ba1c1"},
        {L"a", L"xax", L"\\\\\\0", L"x\\\\ax"},
        // Each search sees the rest only.
        {L"^a", L"aab", L"x", L"xxb"},
        // An empty match at the start of the rest drops the rest.
        {L"x*", L"abc", L"-", L"-"},
        {L"(?=c)", L"abcd", L"-", L"ab--"},
    };
    for (const auto& row : cases) {
        clsRegEx regex(row.pattern);
        EXPECT_EQ(Wide(regex.GSub(row.subject, row.replacement)), row.result) << row.pattern << row.subject;
    }
    const DebugListener listener; // a template ends at a group that is not there
    EXPECT_EQ(Wide(clsRegEx(L"b").GSub(L"abc", L"<\\9>")), L"a<c");
    EXPECT_TRUE(listener.Heard(L"ERR: clsRegEx: Match(9) not found (index too large, found only 1 entries)"));
}

TEST(RegExGSub, AsksTheCallbackWhichMayUseTheObjectAndChangeTheSubject) {
    struct Callback final : IclsRegExGSubCB {
        clsRegEx regex{L"%([A-Z]+)%"};
        String subject{L"x%A%y%BC%"};
        std::wstring seen;

        String Replace(const String& match, const clsRegExMatchList& matches) override {
            seen += Wide(match) + std::to_wstring(matches.get(1).position); // within the rest
            subject = L"gone";
            EXPECT_TRUE(regex.Match(L"xxxxxxxx%B%"));
            return L"1";
        }
    } callback;
    EXPECT_EQ(Wide(callback.regex.GSub(callback.subject, callback)), L"x1y1");
    EXPECT_EQ(callback.seen, L"%A%2%BC%2");
}

TEST(RegExSplit, CutsBetweenMatches) {
    const struct {
        const wchar_t *pattern, *subject, *pieces, *withGroups;
    } cases[] = {
        {L"(,)( )?", L"a,b, c", L"a|b|c", L"a|,||b|,| |c"},
        {L"[\\r\\n]+", L"1\r\n\r\n2\n", L"1|2|", L"1|2|"},
        {L"(x*)", L"abc", L"|abc", L"||abc"},
    };
    for (const auto& row : cases) {
        clsRegEx regex(row.pattern);
        EXPECT_EQ(Joined(regex.Split(row.subject)), row.pieces) << row.pattern;
        EXPECT_EQ(Joined(regex.SplitGroups(row.subject)), row.withGroups) << row.pattern;
    }
}

TEST(RegExBounds, CatastrophicPatternsDoNotMatchAndSaySo) {
    const std::wstring as(40, L'a');
    for (const wchar_t* pattern : {L"(a+)+$", L"(a|aa)+$"}) {
        const DebugListener listener;
        EXPECT_EQ(Groups(pattern, as + L"b"), Texts()) << pattern;
        const std::wstring line =
            L"WRN: clsRegEx: search given up, counted as no match: match limit exceeded; pattern '";
        EXPECT_TRUE(listener.Heard((line + pattern + L"'").c_str())) << pattern;
    }
    EXPECT_EQ(Groups(L"(a+)+$", std::wstring(100'000, L'a') + L"b"), Texts());
}

TEST(RegExBounds, LongSubjectsMatchAsShortOnesDo) {
    const std::wstring filler(1'000'000, L'x');
    EXPECT_EQ(Groups(L"(?:x|y)*$", filler).size(), 1u);
    EXPECT_EQ(Wide(clsRegEx(L"x").GSub(TextOf(filler), L"y")), std::wstring(1'000'000, L'y'));
    EXPECT_EQ(Groups(L"a(b)", filler + L"ab"), (Texts{L"ab@1000000", L"b@1000001"}));
    EXPECT_EQ(Groups(L"(?<=xa)b", filler + L"ab"), (Texts{L"b@1000001"}));
    // These ask where the search began, or end it as a whole.
    for (const wchar_t* pattern : {L"\\Ga", L"x(*COMMIT)a", L"^a"})
        EXPECT_EQ(Groups(pattern, filler + L"xa"), Texts()) << pattern;
}

// After some thousands of units the pattern runs as machine code.
TEST(RegExBounds, ObjectsInLongUseMatchAsNewOnesDo) {
    const wchar_t* const patterns[] = {L"(\\w+)(?:-(\\d))?", L"^x|(?<=a)b(c*)$", L"(?=(b))", L"\\Ga(.)",
                                       L"b\\K(.)??"};
    const wchar_t* const subjects[] = {L"some-1 words", L"xbccc", L"abcc", L"aab", L"", L"none"};
    for (const wchar_t* pattern : patterns) {
        clsRegEx used(pattern);
        clsRegExMatchList matches; // its links serve again
        used.Match(TextOf(std::wstring(5000, L'-')));
        for (const wchar_t* subject : subjects) {
            Texts groups;
            if (used.Match(subject, &matches))
                for (const scRegExMatch& match : matches)
                    groups.push_back(Wide(match.text) + L"@" + std::to_wstring(match.position));
            EXPECT_EQ(groups, Groups(pattern, subject)) << pattern << subject;
            EXPECT_EQ(Wide(used.GSub(subject, L"<\\0>")), Wide(clsRegEx(pattern).GSub(subject, L"<\\0>")));
        }
        matches.append({7, L"left by another pattern"});
        EXPECT_EQ(used.Match(L"aab", &matches), !Groups(pattern, L"aab").empty());
        EXPECT_NE(matches.get(9).text, L"left by another pattern") << pattern;
    }
}

TEST(RegExBounds, WhenTheTimeIsUsedUpNothingMatches) {
    std::wstring subject;
    for (int i = 0; i < 500'000; ++i) subject += L"<!--";
    clsRegExEngine engine;
    int offset = 0;
    String message;
    ASSERT_TRUE(engine.Compile(L"<!--.*?-->", kRegExDotAll, offset, message));
    clsMatchBudget budget(100);
    const int result = engine.Match(subject.data(), subject.size(), budget);
    EXPECT_LT(result, clsRegExEngine::kNoMatch);
    EXPECT_EQ(Wide(clsRegExEngine::MessageOf(result)), L"processor time used up");
    EXPECT_EQ(engine.Match(L"<!---->", 7, budget), result);
}

TEST(RegExBounds, OnlyProcessorTimeCounts) {
    const auto used = [] {
        FILETIME created, ended, kernel, user;
        GetThreadTimes(GetCurrentThread(), &created, &ended, &kernel, &user);
        return (kernel.dwLowDateTime + user.dwLowDateTime) / 10'000; // differences count
    };
    clsMatchBudget budget(100);
    for (int i = 0; i < 100; ++i) budget.Add(1000); // as if the process had been suspended
    EXPECT_FALSE(budget.IsUsedUp());
    for (const DWORD began = used(); used() - began < 120;) {
    }
    budget.Add(1000);
    EXPECT_TRUE(budget.IsUsedUp());
}

TEST(RegExCompile, PatternsMayHoldZeroUnits) {
    clsRegEx regex(TextOf({L'a', 0, L'b', L'+'}));
    EXPECT_TRUE(regex.Match(TextOf({L'x', L'a', 0, L'b', L'b'})));
    EXPECT_FALSE(regex.Match(L"xa"));
}

// A search that finds no memory throws, and the pattern works afterwards.
TEST(RegExFailureTest, ALackOfMemoryIsNoMissingMatch) {
    for (const String& subject : {String(L"abc"), String(L'a', 5000) + L"bc"}) {
        bool hasFailed = true;
        for (unsigned successes = 0; hasFailed; ++successes) {
            ASSERT_LT(successes, 100u);
            clsRegEx regex(L"(b)c");
            bool hasAnswer = false, hasThrown = false;
            {
                test::FailingAllocations allocations(successes, false);
                try {
                    hasAnswer = regex.Match(subject);
                } catch (const std::bad_alloc&) {
                    hasThrown = true;
                }
                hasFailed = allocations.Disarm();
            }
            EXPECT_NE(hasAnswer, hasThrown) << successes;
            EXPECT_TRUE(regex.Match(subject)) << successes;
        }
    }
}

} // namespace
} // namespace vxut
