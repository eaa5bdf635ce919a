#include "text/string.h"

#include "base/default_code_page.h"
#include "containers/containers.h"
#include "tests/support/debug_listener.h"
#include "tests/support/guarded_pages.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <cwchar>
#include <string>
#include <thread>
#include <vector>

namespace vxut {
namespace {

constexpr int64_t kAll = String::kWhole;

std::wstring Std(const String& text) { return {text.Text(), static_cast<size_t>(text.Length())}; }

TEST(StringCopyTest, OnlyAssignmentTakesTheCodePage) {
    String utf8(L"x");
    utf8.SetCodePage(CP_UTF8);
    EXPECT_EQ(String(utf8).CodePage(), DefaultCodePage());
    String assigned;
    assigned = utf8;
    EXPECT_EQ(assigned.CodePage(), static_cast<uint32_t>(CP_UTF8));
}

TEST(StringCopyTest, CopiesMayLiveOnManyThreads) {
    String text(L"shared");
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&failures, base = text] {
            for (int i = 0; i < 20000; ++i) {
                String copy(base);
                if (i % 3 == 0) copy.Append(L'x');
                failures += copy.Length() != base.Length() + (i % 3 == 0);
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(failures, 0);
    EXPECT_STREQ(text.Text(), L"shared");
}

TEST(StringAssignTest, TakesPartsAndReadsNoFurther) {
    const test::GuardedPages pages;
    wchar_t* const wide = pages.Last<wchar_t>(3); // not terminated
    std::wmemcpy(wide, L"abc", 3);
    EXPECT_STREQ(String(wide, 1, 2).Text(), L"bc");
    char* const narrow = pages.Last<char>(3);
    std::memcpy(narrow, "abc", 3);
    EXPECT_STREQ(String(narrow, 0, 3).Text(), L"abc");

    const struct {
        int64_t start, count;
        const wchar_t* expected;
    } cases[] = {{0, kAll, L"abcdef"}, {2, 3, L"cde"}, {4, 99, L"ef"}, {4, kAll, L"ef"}, {6, 1, L""},
                 {7, 1, L""},          {0, 0, L""},    {0, -1, L""},   {-1, 3, L""}};
    for (const auto& row : cases) {
        EXPECT_STREQ(String(L"abcdef", row.start, row.count).Text(), row.expected) << row.start;
        EXPECT_STREQ(String("abcdef", row.start, row.count).Text(), row.expected) << row.start;
    }
}

TEST(StringNarrowTest, FollowsTheCodePage) {
    String text;
    text.SetCodePage(CP_UTF8);
    text.Assign("\xC3\xA4\xE2\x82\xAC", 0, kAll);
    EXPECT_STREQ(text.Text(), L"\u00E4\u20AC");
    EXPECT_STREQ(text.Narrow(), "\xC3\xA4\xE2\x82\xAC");
    text.SetCodePage(1252);
    EXPECT_STREQ(text.Narrow(), "\xE4\x80");
    text.SetCodePage(CP_UTF7); // takes no conversion flags
    text.Assign("plain", 0, kAll);
    EXPECT_STREQ(text.Text(), L"plain");
    EXPECT_STREQ(clsCHARString("\xE4z", 2).ToString(0).Text(), L"\u00E4z");
    EXPECT_TRUE(clsCHARString(nullptr, 5).ToString(0).IsEmpty());
}

TEST(StringChangeTest, TextOfItsOwnIsSafe) {
    String text(L"0123456789");
    text.Assign(text.Text() + 4);
    text.Append(text.Text() + 3);
    EXPECT_STREQ(text.Text(), L"456789789");
    text.Append(text);
    text.Insert(1, text);
    EXPECT_STREQ(text.Text(), L"445678978945678978956789789456789789");
    text.Assign(text.Narrow(), 0, 3);
    text.ReplaceText(text, text);
    text.Take(text);
    text = *&text;
    EXPECT_STREQ(text.Text(), L"445");
}

TEST(StringChangeTest, InsertsDeletesAndTrims) {
    const struct {
        const char* name;
        void (*change)(String&);
        const wchar_t* expected;
    } cases[] = {
        {"insert front", [](String& s) { s.Insert(0, L"__"); }, L"__ abcd "},
        {"delete past end", [](String& s) { s.Delete(3, INT64_MAX); }, L" ab"},
        {"trim right", [](String& s) { s.TrimRight(); }, L" abcd"},
        {"range over the end", [](String& s) { s.ReplaceRange(5, 9, L"xyz"); }, L" abcdxyz"},
        {"range beyond", [](String& s) { s.ReplaceRange(6, 9, L"xyz"); }, L" abcd "},
        {"delimited", [](String& s) { s.AppendDelimited(L",", L"e"); }, L" abcd ,e"},
        {"units", [](String& s) { s.ReplaceUnit(L' ', L'+', 1); }, L"+abcd "},
    };
    for (const auto& row : cases) {
        String text(L" abcd ");
        row.change(text);
        EXPECT_EQ(Std(text), row.expected) << row.name;
    }
}

TEST(StringChangeTest, ReplacesTextByThreeStrategies) {
    const struct {
        const wchar_t *text, *find, *replacement;
        int64_t maximum;
        const wchar_t* expected;
        int64_t count;
    } cases[] = {
        {L"abcabc", L"bc", L"xy", 1, L"axyabc", 1},
        {L"abcabc", L"bc", L"wxyz", kAll, L"awxyzawxyz", 2},
        {L"abcabcd", L"bc", L"x", kAll, L"axaxd", 2},
        {L"abcabc", L"bc", L"x", 1, L"ax", 1}, // the text ends where the maximum is used up
        {L"abcabc", L"bc", L"x", 0, L"", 0},
        {L"abc", L"", L"x", kAll, L"abc", 0},
    };
    for (const auto& row : cases) {
        String text(row.text);
        EXPECT_EQ(text.ReplaceText(row.find, row.replacement, row.maximum), row.count) << Std(row.expected);
        EXPECT_EQ(Std(text), row.expected);
    }
}

TEST(StringPartTest, CutsAndClamps) {
    const String text(L"abcdef");
    const std::pair<String, const wchar_t*> cases[] = {
        {text.Left(2), L"ab"},   {text.Left(-1), L""}, {text.Right(2), L"ef"},   {text.Right(-1), L""},
        {text.Mid(1, 2), L"bc"}, {text.Mid(4), L"ef"}, {text.Mid(-3, 2), L"ab"}, {text.Mid(6), L""}};
    for (const auto& [part, expected] : cases) EXPECT_STREQ(part.Text(), expected);
}

TEST(StringPartTest, SplitsAndJoins) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"a,,b,", L"a||b"}, {L"", L""}, {L",", L""}, {L"abc", L"abc"}, {L",a", L"|a"}, {L",,", L"|"}};
    for (const auto& [text, expected] : cases) {
        String joined;
        joined.Join(L"|", String(text).Split(L','));
        EXPECT_EQ(Std(joined), expected);
    }
}

TEST(StringIndexTest, GuardsItsEnds) {
    String text(L"abc");
    const String& constant = text;
    for (const int64_t index : {-1, 3, 4}) EXPECT_EQ(constant[index], 0);
    const DebugListener listener;
    text[3] = L'!';
    EXPECT_TRUE(String().IsEmpty()); // its end is a witness
    text[3] = 0;
    EXPECT_TRUE(listener.Heard(L"WRN: detected write to String::operator[] with index out of bounds"));
    EXPECT_STREQ(constant.Text(), L"abc");
}

TEST(StringCompareTest, OrdersByTheLeftObjectsCase) {
    const struct {
        const wchar_t *left, *right;
        int64_t n;
        int exact, folded; // signs
    } cases[] = {
        {L"ABC", L"abc", -1, -1, 0}, {L"ABc", L"abd", 2, -1, 0}, {L"", L"a", -1, -1, -1},
        {L"a", nullptr, -1, 1, 1},   {L"x", L"y", 0, 0, 0},      {L"\uFFFD", L"a", -1, 1, 1},
    };
    const auto sign = [](int value) { return (value > 0) - (value < 0); };
    for (const auto& row : cases) {
        EXPECT_EQ(sign(String(row.left).CompareTo(row.right, row.n)), row.exact) << Std(row.left);
        EXPECT_EQ(sign(IString(row.left).CompareTo(row.right, row.n)), row.folded) << Std(row.left);
    }
}

TEST(StringFormatTest, SpeaksMicrosoftsFormats) {
    const auto format = [](const wchar_t* pattern, auto... arguments) {
        String text;
        EXPECT_EQ(text.Format(pattern, arguments...), text.Length());
        return Std(text);
    };
    EXPECT_EQ(format(L"%s-%hs-%S-%ls", L"wide", "narrow", "swapped", L"long"), L"wide-narrow-swapped-long");
    EXPECT_EQ(format(L"%I64d|%I64x", INT64_MIN, UINT64_MAX), L"-9223372036854775808|ffffffffffffffff");
    EXPECT_EQ(format(L"%-*s|%.*s", 4, L"ab", 2, L"xyz"), L"ab  |xy");
    const std::wstring longText(5000, L'z');
    EXPECT_EQ(format(L"[%s]", longText.c_str()), L"[" + longText + L"]");
    EXPECT_EQ(format(L"trailing %"), L"trailing ");
}

TEST(StringFormatTest, RefusesBadArguments) {
    const test::GuardedPages pages;
    const void* const bad[] = {nullptr, pages.Untouchable()};
    for (const wchar_t* pattern : {L"%s", L"%hs", L"%ls", L"%n"}) {
        for (const void* argument : bad) {
            String text(L"before");
            EXPECT_EQ(text.Format(pattern, argument), 0);
            EXPECT_STREQ(text.Text(), L"<printf format error>") << Std(pattern);
        }
    }
}

TEST(StringFormatTest, WordsSystemErrors) {
    const String text = String::FromError(ERROR_ACCESS_DENIED);
    EXPECT_GT(text.Length(), 13);
    EXPECT_STREQ(text.Right(11).Text(), L" (00000005)");
    EXPECT_EQ(Find(text.Text(), L"\n"), -1);
    EXPECT_STREQ(String::FromError(0x0F00F00F).Text(), L"(error code 0xf00f00f)");
}

} // namespace
} // namespace vxut
