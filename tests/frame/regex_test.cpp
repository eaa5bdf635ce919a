#include "frame/regex.h"

#include "tests/support/debug_listener.h"

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

Texts Pieces(const WCValSList<String>& list) {
    Texts pieces;
    for (const String& piece : list) pieces.push_back(Wide(piece));
    return pieces;
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
        {L"b+", L"abbc", {L"bb@1"}},
        {L"a(b)?c", L"ac", {L"ac@0", L"@2"}},
        {L"(a)|(b)|(c)", L"xb", {L"b@1", L"@2", L"b@1", L"@2"}},
        {L"x*", L"abc", {L"@0"}},
        {L"(?=(b))", L"ab", {L"@1", L"b@1"}},
        {L"z", L"abc", {}},
        {L"(?i)^([A-Z]:)(.*)$", L"c:\\x", {L"c:\\x@0", L"c:@0", L"\\x@2"}},
        // A hyphen beside a class escape is itself.
        {L"[\\w-.]+", L" a-b.c,", {L"a-b.c@1"}},
        {L"[a-\\d-z]+", L"xb-az7", {L"-az7@2"}},
        {L"[[:alpha:]-5]+", L"4a-5", {L"a-5@1"}},
        {L"[+-Z]+", L"a+5Z", {L"+5Z@1"}},
    };
    for (const auto& row : cases) EXPECT_EQ(Groups(row.pattern, row.subject), row.groups) << row.pattern;
}

TEST(RegExMatch, TheSubjectMayStandInTheListThatIsFilled) {
    clsRegEx outer(L"<(.*)>");
    clsRegEx inner(L"(b)c");
    clsRegExMatchList matches;
    ASSERT_TRUE(outer.Match(L"<abc>", &matches));
    ASSERT_TRUE(inner.Match(matches.get(1).text, &matches));
    EXPECT_EQ(Wide(matches.get(0).text), L"bc");
    EXPECT_EQ(Wide(matches.get(1).text), L"b");
    EXPECT_FALSE(inner.Match(L"-", &matches));
    EXPECT_EQ(matches.entries(), 2); // left alone
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

TEST(RegExMatch, SubjectsAreUnitsWhateverTheyAre) {
    EXPECT_EQ(Groups(L"b", {L'a', 0, 0xD800, L'b'}), (Texts{L"b@3"}));
    EXPECT_EQ(Groups(L"^.{2}$", L"\U0001F600"), (Texts{L"\U0001F600@0"}));
    EXPECT_EQ(Groups(L"[\\xE0-\\xFF]+", L"a\u00E4\u00F6"), (Texts{L"\u00E4\u00F6@1"}));
    clsRegEx unit(L"b");
    EXPECT_EQ(Wide(unit.GSub(TextOf({L'a', 0, L'b', 0}), L"<\\0>")),
              (std::wstring{L'a', 0, L'<', L'b', L'>', 0}));
    EXPECT_EQ(Pieces(unit.Split(TextOf({0, L'b', L'a', 0}))), (Texts{std::wstring(1, 0), {L'a', 0}}));
    clsRegEx empty(L"^$");
    EXPECT_TRUE(empty.Match(static_cast<const wchar_t*>(nullptr)));
}

TEST(RegExCompile, ReportsAFaultAtEveryUse) {
    const struct {
        const wchar_t* pattern;
        uint32_t options;
        const wchar_t* line;
    } cases[] = {
        {L"a(b", 0, L"Error in RegEx offset 3: 'missing closing parenthesis'"},
        {L"[\\w-.](", 0, L"Error in RegEx offset 7: 'missing closing parenthesis'"},
        {L"x[z-a]", 0, L"Error in RegEx offset 4: 'range out of order in character class'"},
        {L"\\j", kRegExExtra, L"Error in RegEx offset 1: 'unrecognized character follows \\'"},
    };
    for (const auto& row : cases) {
        const DebugListener listener;
        clsRegEx regex(row.pattern, row.options);
        EXPECT_FALSE(regex.Match(L"abc"));
        EXPECT_EQ(Wide(regex.GSub(L"abc", L"-")), L"abc");
        EXPECT_EQ(Pieces(regex.Split(L"abc")), (Texts{L"abc"}));
        for (const std::wstring& line : listener.Lines())
            EXPECT_NE(line.find(row.line), std::wstring::npos) << line;
        EXPECT_NE(std::wstring(row.line).find(L"'" + Wide(regex.ErrorText()) + L"'"), std::wstring::npos);
        EXPECT_TRUE(regex.Compile(L"b", 0));
        EXPECT_TRUE(regex.ErrorText().IsEmpty());
        EXPECT_TRUE(regex.Match(L"abc"));
        EXPECT_EQ(listener.Lines().size(), 3u);
    }
}

TEST(RegExGSub, ReplacesByTemplate) {
    const struct {
        const wchar_t *pattern, *subject, *replacement, *result;
    } cases[] = {
        {L"b", L"abc", L"[\\0]", L"a[b]c"},
        {L"(\\w)(\\w)?", L"abc", L"\\2\\11", L"ba1c1"},
        {L"a", L"xax", L"\\\\\\0", L"x\\\\ax"},
        {L"a", L"xax", L"1\\n\\", L"x1\\n\\x"},
        {L"a", L"", L"x", L""},
        // Each search sees the rest only.
        {L"^a", L"aab", L"x", L"xxb"},
        {L"(?<=b)b", L"abbb", L"x", L"abxb"},
        {L"\\Bb", L"abb", L"x", L"axb"},
        // An empty match at the start of the rest drops the rest.
        {L"x*", L"abc", L"-", L"-"},
        {L"x*", L"xxabc", L"-", L"--"},
        {L"(?=c)", L"abcd", L"-", L"ab--"},
        {L"$", L"abc", L"!", L"abc!"},
    };
    for (const auto& row : cases) {
        clsRegEx regex(row.pattern);
        EXPECT_EQ(Wide(regex.GSub(row.subject, row.replacement)), row.result) << row.pattern << row.subject;
    }
}

TEST(RegExGSub, ATemplateEndsAtAGroupThatIsNotThere) {
    const DebugListener listener;
    clsRegEx regex(L"b");
    EXPECT_EQ(Wide(regex.GSub(L"abc", L"<\\9>")), L"a<c");
    EXPECT_TRUE(listener.Heard(L"ERR: clsRegEx: Match(9) not found (index too large, found only 1 entries)"));
    clsRegEx groups(L"(a)(b)?");
    EXPECT_EQ(Wide(groups.GSub(L"ac", L"<\\2>")), L"<>c");
    EXPECT_EQ(listener.Lines().size(), 1u);
}

TEST(RegExGSub, AsksTheCallbackWhichMayUseTheObjectAndChangeTheSubject) {
    struct Callback final : IclsRegExGSubCB {
        clsRegEx regex{L"%([A-Z]+)%"};
        String subject{L"x%A%y%BC%"};
        Texts seen;

        String Replace(const String& match, const clsRegExMatchList& matches) override {
            const scRegExMatch& group = matches.get(1);
            seen.push_back(Wide(match + L" " + group.text) + L"@" + std::to_wstring(group.position));
            subject = L"gone";
            EXPECT_TRUE(regex.Match(L"xxxxxxxx%B%"));
            return L"1";
        }
    } callback;
    EXPECT_EQ(Wide(callback.regex.GSub(callback.subject, callback)), L"x1y1");
    EXPECT_EQ(callback.seen, (Texts{L"%A% A@2", L"%BC% BC@2"})); // positions within the rest
}

TEST(RegExSplit, CutsBetweenMatches) {
    const struct {
        const wchar_t *pattern, *subject;
        Texts pieces, withGroups;
    } cases[] = {
        {L"(,)( )?", L"a,b, c", {L"a", L"b", L"c"}, {L"a", L",", L"", L"b", L",", L" ", L"c"}},
        {L"[\\r\\n]+", L"1\r\n\r\n2\n", {L"1", L"2", L""}, {L"1", L"2", L""}},
        {L",", L",,", {L"", L"", L""}, {L"", L"", L""}},
        {L",", L"", {L""}, {L""}},
        {L"(x*)", L"abc", {L"", L"abc"}, {L"", L"", L"abc"}},
        {L"(?=c)", L"abcd", {L"ab", L"", L"cd"}, {L"ab", L"", L"cd"}},
    };
    for (const auto& row : cases) {
        clsRegEx regex(row.pattern);
        EXPECT_EQ(Pieces(regex.Split(row.subject)), row.pieces) << row.pattern;
        EXPECT_EQ(Pieces(regex.SplitGroups(row.subject)), row.withGroups) << row.pattern;
    }
}

// With time that grew with the square of the length, these would not end.
TEST(RegExBounds, MillionsOfMatchesTakeTimeInProportion) {
    constexpr size_t kMatches = 1'000'000;
    const String subject(L',', kMatches);
    clsRegEx regex(L",");
    EXPECT_TRUE(regex.GSub(subject, L";") == String(L';', kMatches));
    EXPECT_EQ(static_cast<size_t>(regex.Split(subject).entries()), kMatches + 1);
}

TEST(RegExBounds, CatastrophicPatternsDoNotMatch) {
    const std::wstring as(40, L'a');
    const std::pair<const wchar_t*, std::wstring> cases[] = {{L"(a+)+$", as + L"b"},
                                                             {L"(a|aa)+$", as + L"b"},
                                                             {L"(a+)+$", std::wstring(100'000, L'a') + L"b"},
                                                             {L"^(?:a?){40}a{40}b", as}};
    for (const auto& [pattern, subject] : cases) {
        clsRegEx regex(pattern);
        EXPECT_FALSE(regex.Match(TextOf(subject))) << pattern;
        EXPECT_EQ(regex.Match(L"aaa"), pattern[0] == L'(') << pattern;
    }
}

TEST(RegExBounds, LongSubjectsMatchAsShortOnesDo) {
    const std::wstring filler(1'000'000, L'x');
    EXPECT_EQ(Groups(L"(?:x|y)*$", filler).size(), 1u);
    EXPECT_EQ(Groups(L"<!--.*?-->", L"<!--" + filler + L"-->", kRegExDotAll).size(), 1u);
    EXPECT_EQ(Groups(L"a(b)", filler + L"ab"), (Texts{L"ab@1000000", L"b@1000001"}));
    EXPECT_EQ(Groups(L"$", filler), (Texts{L"@1000000"}));
    EXPECT_EQ(Groups(L"(?<=xa)b", filler + L"ab"), (Texts{L"b@1000001"}));
    // These ask where the search began, or end it as a whole.
    for (const wchar_t* pattern : {L"\\Ga", L"x(*COMMIT)a", L"^a"})
        EXPECT_EQ(Groups(pattern, filler + L"xa"), Texts()) << pattern;
}

TEST(RegExBounds, WhenTheTimeIsSpentNothingMatches) {
    std::wstring subject;
    for (int i = 0; i < 500'000; ++i) subject += L"<!--";
    clsRegExEngine engine;
    int offset = 0;
    String message;
    ASSERT_TRUE(engine.Compile(L"<!--.*?-->", kRegExDotAll, offset, message));
    clsMatchTime time(100);
    EXPECT_LT(engine.Match(subject.data(), subject.size(), time), 0);
    EXPECT_TRUE(time.IsSpent());
    EXPECT_LT(engine.Match(L"<!---->", 7, time), 0);
    clsMatchTime fresh;
    EXPECT_EQ(engine.Match(L"<!---->", 7, fresh), 1);
}

} // namespace
} // namespace vxut
