#include "text/string.h"

#include "base/default_code_page.h"
#include "containers/containers.h"
#include "tests/support/debug_listener.h"
#include "tests/support/failing_allocations.h"
#include "tests/support/guarded_pages.h"

#include <gtest/gtest.h>

#include <atomic>
#include <bit>
#include <climits>
#include <cstdarg>
#include <cstring>
#include <cwchar>
#include <new>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace vxut {
namespace {

constexpr int64_t kAll = String::kWhole;

std::wstring Std(const String& text) { return {text.Text(), static_cast<size_t>(text.Length())}; }

String TextOf(std::wstring_view units) {
    String text;
    text.Append(units.data(), static_cast<int64_t>(units.size()));
    return text;
}

// Every operation that changes a String. The arguments are long enough to need memory.
struct Change {
    const char* name;
    void (*run)(String&);
};
const String kPiece(L"<a text of more than a few units>");
constexpr wchar_t kUnits[] = L"other units that replace the text or are added to it";
const Change kChanges[] = {
    {"assign wide", [](String& s) { s.Assign(kUnits); }},
    {"assign part", [](String& s) { s.Assign(kUnits, 3, 30); }},
    {"assign own part", [](String& s) { s.Assign(s.Text() + 2, 0, 20); }},
    {"assign narrow", [](String& s) { s.Assign("narrow units of some length", 0, kAll); }},
    {"assign", [](String& s) { s.Assign(kPiece); }},
    {"empty", [](String& s) { s.Empty(); }},
    {"append unit", [](String& s) { s.Append(L'x'); }},
    {"append wide", [](String& s) { s.Append(kUnits); }},
    {"append counted", [](String& s) { s.Append(kUnits, 40); }},
    {"append itself", [](String& s) { s.Append(s); }},
    {"append delimited", [](String& s) { s.AppendDelimited(kPiece, kPiece); }},
    {"trim left", [](String& s) { s.TrimLeft(); }},
    {"trim right", [](String& s) { s.TrimRight(); }},
    {"insert", [](String& s) { s.Insert(3, kPiece); }},
    {"insert itself", [](String& s) { s.Insert(3, s); }},
    {"delete", [](String& s) { s.Delete(2, 3); }},
    {"replace range", [](String& s) { s.ReplaceRange(2, 3, kPiece); }},
    {"replace range by shorter", [](String& s) { s.ReplaceRange(2, 9, L"-"); }},
    {"replace unit", [](String& s) { s.ReplaceUnit(L'b', L'+'); }},
    {"replace by longer", [](String& s) { s.ReplaceText(L"b", kPiece); }},
    {"replace by shorter", [](String& s) { s.ReplaceText(L"bc", L"-"); }},
    {"join", [](String& s) { s.Join(kPiece, String(L"one,two,three").Split(L',')); }},
    {"get buffer", [](String& s) { s.GetBuffer(100); }},
    {"set length", [](String& s) { s.SetLength(4); }},
    {"write unit", [](String& s) { s[1] = L'!'; }},
    {"upper", [](String& s) { s.MakeUpper(); }},
    {"format", [](String& s) { s.Format(L"%s %d and %hs, %350d", kUnits, 5, "more", 7); }},
    {"bad format", [](String& s) { s.Format(L"%s", nullptr); }},
};

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

// An object is as it was after each allocation of each operation has failed, whether it shares its buffer or
// not, and the text that it shared is as it was in any case.
TEST(StringFailureTest, AFailedChangeLeavesTheOldText) {
    for (const Change& change : kChanges) {
        for (const bool shared : {false, true}) {
            std::wstring expected;
            for (unsigned failing = 0;; ++failing) {
                ASSERT_LT(failing, 50u) << change.name;
                const String original(L"  abcdabcdabcd  ");
                String text = shared ? original : String(original.Text());
                bool thrown = false, failed = false;
                {
                    test::FailingAllocations allocation(failing, false);
                    try {
                        change.run(text);
                    } catch (const std::bad_alloc&) {
                        thrown = true;
                    }
                    failed = allocation.Disarm();
                }
                ASSERT_STREQ(original.Text(), L"  abcdabcdabcd  ") << change.name;
                ASSERT_EQ(text.Text()[text.Length()], L'\0') << change.name;
                if (thrown) {
                    ASSERT_EQ(Std(text), Std(original)) << change.name << shared << failing;
                    change.run(text); // and works again
                }
                if (!failed) break;
            }
        }
    }
}

TEST(StringFailureTest, NoResultLacksAPiece) {
    const String text(L"some, words, between, commas");
    for (unsigned failing = 0;; ++failing) {
        std::wstring joined;
        bool failed = false;
        try {
            test::FailingAllocations allocation(failing, false);
            const WCValSList<String> pieces = text.Split(L',');
            failed = allocation.Disarm();
            EXPECT_EQ(pieces.entries(), 4);
        } catch (const std::bad_alloc&) {
            continue;
        }
        if (!failed) break;
    }
    EXPECT_THROW(String(L'x', INT64_MAX), std::bad_alloc);
    EXPECT_THROW(String(L"x").GetBuffer(INT64_MAX - 3), std::bad_alloc);
}

TEST(StringBufferTest, KeepsWhatWasWrittenBeyondTheLength) {
    String text(L"abc");
    wchar_t* buffer = text.GetBuffer(20);
    std::wmemcpy(buffer + 3, L"defgh", 6);
    text.GetBuffer(500);
    text.SetLengthByScan();
    EXPECT_EQ(Std(text), L"abcdefgh");

    const String copy(text);
    text.SetLength(2); // the other holder keeps its text
    EXPECT_EQ(Std(text), L"ab");
    EXPECT_STREQ(copy.Text(), L"abcdefgh");
}

TEST(StringBufferTest, AppendsAndCutsManyPiecesInLinearTime) {
    constexpr int kPieces = 300'000; // quadratic work would take minutes
    String text;
    for (int i = 0; i < kPieces; ++i) text.Append(L"0123456789,");
    EXPECT_EQ(text.Length(), kPieces * 11);
    const WCValSList<String> pieces = text.Split(L',');
    EXPECT_EQ(pieces.entries(), kPieces);
    EXPECT_EQ(pieces.get(kPieces - 1), L"0123456789");
}

// The layout of the object and the order of its virtual functions are what other modules call by.
TEST(StringBufferTest, HasItsLayout) {
    struct Layout {
        void* const* functions;
        int64_t length;
        void* buffer;
        const char* narrow;
        int32_t reserved;
        uint32_t codePage;
    };
    static_assert(sizeof(Layout) == sizeof(String));
    struct Listening : String {
        using String::String;
        int changes = 0;
        void OnChange() noexcept override { ++changes; }
    };
    Listening text(L"abc");
    text.changes = 0;
    text.SetCodePage(1252);
    const char* const narrow = text.Narrow();
    Layout layout;
    std::memcpy(&layout, static_cast<const void*>(static_cast<String*>(&text)), sizeof layout);
    EXPECT_EQ(layout.length, 3);
    EXPECT_EQ(static_cast<char*>(layout.buffer) + 16, reinterpret_cast<const char*>(text.Text()));
    EXPECT_EQ(layout.narrow, narrow);
    EXPECT_EQ(layout.reserved, -1);
    EXPECT_EQ(layout.codePage, 1252u);

    const auto at = [&layout](size_t index) { return layout.functions[index]; };
    String same(L"abd");
    EXPECT_TRUE(reinterpret_cast<bool (*)(String*)>(at(0))(&text));
    EXPECT_EQ(reinterpret_cast<int (*)(String*, const String&, int64_t)>(at(1))(&text, same, -1), -1);
    EXPECT_EQ(reinterpret_cast<int (*)(String*, const wchar_t*, int64_t)>(at(2))(&text, L"abd", 2), 0);
    reinterpret_cast<void (*)(String*)>(at(3))(&text);
    EXPECT_EQ(text.changes, 1);
}

// The length counts, whatever units are in the text.
TEST(StringChangeTest, KeepsZeroUnits) {
    const std::wstring_view units(L"ab\0cd\0ab", 8);
    const struct {
        const char* name;
        void (*change)(String&);
        std::wstring expected;
    } cases[] = {
        {"unit", [](String& s) { EXPECT_EQ(s.ReplaceUnit(L'a', L'x'), 2); }, {L"xb\0cd\0xb", 8}},
        {"zero", [](String& s) { EXPECT_EQ(s.ReplaceUnit(L'\0', L'.'), 2); }, L"ab.cd.ab"},
        {"delete zeros", [](String& s) { EXPECT_EQ(s.ReplaceUnit(L'\0', L'\0'), 2); }, L"abcdab"},
        {"same", [](String& s) { EXPECT_EQ(s.ReplaceText(L"ab", L"xy"), 2); }, {L"xy\0cd\0xy", 8}},
        {"longer", [](String& s) { EXPECT_EQ(s.ReplaceText(L"ab", L"xyz"), 2); }, {L"xyz\0cd\0xyz", 10}},
        {"shorter", [](String& s) { EXPECT_EQ(s.ReplaceText(L"ab", L"x"), 2); }, {L"x\0cd\0x", 6}},
        {"with zero",
         [](String& s) { EXPECT_EQ(s.ReplaceText(TextOf({L"b\0", 2}), L"+"), 1); },
         {L"a+cd\0ab", 7}},
        {"upper", [](String& s) { s.MakeUpper(); }, {L"AB\0CD\0AB", 8}},
        {"trim", [](String& s) { s.TrimRight(L'b'); }, {L"ab\0cd\0a", 7}},
        {"range", [](String& s) { s.ReplaceRange(6, 2, L"z"); }, {L"ab\0cd\0z", 7}},
        {"join",
         [](String& s) {
             String t;
             t.Join(L"|", s.Split(L'c'));
             s = t;
         },
         {L"ab\0|d\0ab", 8}},
        {"split at zero",
         [](String& s) {
             String t;
             t.Join(L"|", s.Split(0));
             s = t;
         },
         L"ab|cd|ab"},
        {"right", [](String& s) { s = s.Right(6); }, {L"\0cd\0ab", 6}},
        {"deep copy",
         [](String& s) {
             stringSharingOff = true;
             s = String(s);
             stringSharingOff = false;
         },
         std::wstring(units)},
        {"8-bit", [](String& s) { s = clsCHARString("a\0b", 3).ToString(1252); }, {L"a\0b", 3}},
    };
    for (const auto& row : cases) {
        String text = TextOf(units);
        row.change(text);
        EXPECT_EQ(Std(text), row.expected) << row.name;
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
    const auto zero = [](std::wstring_view text) { return IString(TextOf(text)); };
    EXPECT_FALSE(String(zero({L"a\0b", 3})) == String(zero({L"a\0c", 3})));
    EXPECT_TRUE(zero({L"a\0b", 3}) == zero({L"A\0B", 3}));
    EXPECT_LT(zero({L"a\0b", 3}).CompareTo(zero({L"A\0C", 3})), 0);
    EXPECT_LT(zero({L"a\0", 2}).CompareTo(zero({L"a\0\0", 3})), 0);
    EXPECT_GT(zero({L"a\0b", 3}).CompareTo(L"a"), 0);
    EXPECT_EQ(zero({L"a\0b", 3}).CompareTo(zero({L"a\0c", 3}), 2), 0);
    const auto sign = [](int value) { return (value > 0) - (value < 0); };
    for (int64_t length = 0; length < 20; ++length) {
        const String text(L'm', length);
        EXPECT_EQ(String::Order(text, String(L'm', length)), 0) << length;
        EXPECT_LT(String::Order(text, String(L'm', length + 1)), 0) << length;
        for (int64_t at = 0; at < length; ++at) {
            String less = text;
            less.ReplaceRange(at, 1, L"l");
            EXPECT_LT(String::Order(less, text), 0) << at << " of " << length;
            EXPECT_GT(String::Order(text, less.Left(at + 1)), 0) << at << " of " << length;
        }
    }
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

// Whatever the conversion, the argument after it is the next one.
TEST(StringFormatTest, KnowsEveryConversion) {
    const struct Counted {
        USHORT bytes, capacity;
        const void* text;
    } wide = {4, 6, L"wide"}, narrow = {3, 4, "narrow"};
    const struct {
        const wchar_t* format;
        uint64_t argument;
        const wchar_t* expected;
    } cases[] = {
        {L"%Iu", 5'000'000'000, L"5000000000"},
        {L"%zu", 5'000'000'000, L"5000000000"},
        {L"%td", 5'000'000'000, L"5000000000"},
        {L"%jd", 5'000'000'000, L"5000000000"},
        {L"%lld", ~uint64_t{0}, L"-1"},
        {L"%I32u", ~uint64_t{0}, L"4294967295"},
        {L"%hd", 0x12345, L"9029"},
        {L"%hhu", 0x12345, L"69"},
        {L"%ld", 7, L"7"},
        {L"%#x", 42, L"0x2a"},
        {L"%#.5X", 42, L"0X0002A"},
        {L"%#.0o", 0, L"0"},
        {L"[%.0d]", 0, L"[]"},
        {L"%+08d", 42, L"+0000042"},
        {L"%08.3d", 42, L"     042"},
        {L"[%-8.3d]", static_cast<uint64_t>(-42), L"[-042    ]"},
        {L"%.60d", static_cast<uint64_t>(-1),
         L"-000000000000000000000000000000000000000000000000000000000001"},
        {L"%p", 0xABC, L"0000000000000ABC"},
        {L"%20p", 0xABC, L"    0000000000000ABC"},
        {L"%#.20p", 0xABC, L"000X0000000000000ABC"},
        {L"%+llu", ~uint64_t{0}, L"18446744073709551615"},
        {L"%I64o", ~uint64_t{0}, L"1777777777777777777777"},
        {L"%#I64o", ~uint64_t{0}, L"01777777777777777777777"},
        {L"% I64d", uint64_t{1} << 63, L"-9223372036854775808"},
        {L"%# 5x", 0, L"    0"},
        {L"%hs", reinterpret_cast<uint64_t>("\xE4z"), L"\xE4z"},
        {L"%06.2hs", reinterpret_cast<uint64_t>("abc"), L"0000ab"},
        {L"%a", std::bit_cast<uint64_t>(1.5), L"0x1.8000000000000p+0"},
        {L"%.1f", std::bit_cast<uint64_t>(1.5), L"1.5"},
        {L"%.1Lf", std::bit_cast<uint64_t>(1.5), L"1.5"},
        {L"%.2F|", std::bit_cast<uint64_t>(1.5), L"1.50|"},
        {L"%8.2e", std::bit_cast<uint64_t>(1.5), L"1.50e+000"},
        {L"%G", std::bit_cast<uint64_t>(1.5), L"1.5"},
        {L"%c", L'x', L"x"},
        {L"%3hc", L'x', L"  x"},
        {L"%Fd", 7, L"7"},
        {L"%wZ", reinterpret_cast<uint64_t>(&wide), L"wi"},
        {L"%hZ", reinterpret_cast<uint64_t>(&narrow), L"nar"},
        {L"%5.2ws", reinterpret_cast<uint64_t>(L"abc"), L"   ab"},
    };
    for (const auto& row : cases) {
        String format(row.format), text;
        format.Append(L"/%s");
        text.Format(format.Text(), row.argument, L"next");
        EXPECT_EQ(Std(text), row.expected + std::wstring(L"/next")) << Std(row.format);
    }
    String text;
    int counter = 0;
    EXPECT_EQ(text.Format(L"12345%n %y%k%% %f", &counter, 1e300), 318);
    EXPECT_EQ(counter, 5);
    EXPECT_EQ(Std(text.Left(12)), L"12345 yk% 10");
}

// Padding costs memory and time that no text asks for.
TEST(StringFormatTest, RefusesHostilePadding) {
    for (const wchar_t* format : {L"%999999999d", L"%-999999999s", L"%.99999999999f", L"%*d", L"%.*d", L"%*y",
                                  L"%600000d%600000d", L"%99999999999999999999c"}) {
        String text;
        EXPECT_EQ(text.Format(format, INT_MAX, 1, 2), 0);
        EXPECT_STREQ(text.Text(), L"<printf format error>") << Std(format);
    }
    String text;
    EXPECT_EQ(text.Format(L"%*d", INT_MIN, 1), 0);
    EXPECT_EQ(text.Format(L"%.*d", INT_MIN, 1), 1); // a negative precision is none
    EXPECT_EQ(text.Format(L"%500000d%-500000d", 1, 2), 1'000'000);
}

TEST(StringFormatTest, ReadsToTheEndOfATextAndNoFurther) {
    const test::GuardedPages pages;
    wchar_t* const open = std::wmemcpy(pages.Last<wchar_t>(3), L"abc", 3); // not terminated
    String text;
    int counter = -1;
    EXPECT_EQ(text.Format(L"%n%.2s", &counter, open), 0); // the precision does not excuse it
    EXPECT_EQ(counter, -1);
    EXPECT_EQ(text.Format(static_cast<wchar_t*>(pages.Untouchable())), 0);
    EXPECT_EQ(text.Format(open), 0);
    open[2] = L'\0';
    EXPECT_EQ(text.Format(L"%s%n%c%d", open, &counter, 0, 5), 2); // a zero unit ends the text
    EXPECT_EQ(counter, 2);
    EXPECT_STREQ(text.Text(), L"ab");
}

TEST(StringFormatTest, RefusesBadArguments) {
    const test::GuardedPages pages;
    const void* const bad[] = {nullptr, pages.Untouchable()};
    for (const wchar_t* pattern : {L"%s", L"%hs", L"%ls", L"%n", L"%lln", L"%Z"}) {
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
