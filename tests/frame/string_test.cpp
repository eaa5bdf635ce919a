#include "frame/string.h"

#include "frame/containers.h"
#include "frame/default_code_page.h"
#include "tests/support/debug_listener.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>
#include <string>

namespace vxut {
namespace {

// A String that counts what its mutators announce.
class CountingString : public String {
public:
    using String::String;
    int changes = 0;

protected:
    void OnChange() override { ++changes; }
};

std::wstring Std(const String& text) { return {text.Text(), static_cast<size_t>(text.Length())}; }

TEST(StringCopyTest, SharesTheBufferUntilOneSideChanges) {
    const String original(L"shared");
    String copy(original);
    EXPECT_EQ(copy.Text(), original.Text());
    copy.Append(L'!');
    EXPECT_STREQ(copy.Text(), L"shared!");
    EXPECT_STREQ(original.Text(), L"shared");
    String assigned;
    assigned = original;
    EXPECT_EQ(assigned.Text(), original.Text());
}

TEST(StringCopyTest, OnlyAssignmentTakesTheCodePage) {
    String utf8(L"x");
    utf8.SetCodePage(CP_UTF8);
    const String copy(utf8);
    EXPECT_EQ(copy.CodePage(), DefaultCodePage());
    String assigned;
    assigned = utf8;
    EXPECT_EQ(assigned.CodePage(), static_cast<uint32_t>(CP_UTF8));
    String taker;
    taker.Take(assigned);
    EXPECT_EQ(taker.CodePage(), DefaultCodePage());
    EXPECT_TRUE(assigned.IsEmpty());
}

TEST(StringCopyTest, DebuggingAidMakesDeepCopies) {
    const String original(L"deep");
    stringSharingOff = true;
    const String copy(original);
    stringSharingOff = false;
    EXPECT_NE(copy.Text(), original.Text());
    EXPECT_STREQ(copy.Text(), L"deep");
}

TEST(StringCopyTest, BuffersLiveAsLongAsTheirThreads) {
    String text(L"a text that several threads copy and change");
    constexpr int kThreads = 4;
    HANDLE threads[kThreads];
    for (HANDLE& thread : threads) {
        thread = CreateThread(
            nullptr, 0,
            [](void* shared) -> DWORD {
                DWORD failures = 0;
                const String base(*static_cast<const String*>(shared));
                for (int i = 0; i < 20000; ++i) {
                    String copy(base);
                    if (i % 3 == 0) copy.Append(L'x');
                    failures += copy.Length() != base.Length() + (i % 3 == 0);
                }
                return failures;
            },
            &text, 0, nullptr);
    }
    WaitForMultipleObjects(kThreads, threads, TRUE, INFINITE);
    for (HANDLE thread : threads) {
        DWORD failures = 1;
        GetExitCodeThread(thread, &failures);
        EXPECT_EQ(failures, 0u);
        CloseHandle(thread);
    }
    text.Append(L'!');
    EXPECT_EQ(text.Length(), 44);
}

TEST(StringAssignTest, TakesPartsOfWideText) {
    struct Case {
        int64_t start, count;
        const wchar_t* expected;
    };
    constexpr Case kCases[] = {
        {0, String::kWhole, L"abcdef"},
        {2, 3, L"cde"},
        {4, 99, L"ef"},
        {4, String::kWhole, L"ef"},
        {6, 1, L""},
        {7, 1, L""},
        {0, 0, L""},
        {0, -1, L""},
        {-1, 3, L""},
    };
    for (const Case& c : kCases) {
        EXPECT_STREQ(String(L"abcdef", c.start, c.count).Text(), c.expected) << c.start << ',' << c.count;
        EXPECT_STREQ(String("abcdef", c.start, c.count).Text(), c.expected) << c.start << ',' << c.count;
    }
}

TEST(StringAssignTest, ReadsNoFurtherThanAsked) {
    const wchar_t wide[] = {L'a', L'b', L'c'}; // not terminated
    EXPECT_STREQ(String(wide, 1, 2).Text(), L"bc");
    const char narrow[] = {'a', 'b', 'c'};
    EXPECT_STREQ(String(narrow, 0, 3).Text(), L"abc");
}

TEST(StringAssignTest, ConvertsByItsCodePage) {
    String text;
    text.SetCodePage(CP_UTF8);
    text.Assign("\xC3\xA4\xE2\x82\xAC", 0, String::kWhole);
    EXPECT_STREQ(text.Text(), L"\u00E4\u20AC");
    EXPECT_STREQ(text.Narrow(), "\xC3\xA4\xE2\x82\xAC");
    text.SetCodePage(1252);
    EXPECT_STREQ(text.Narrow(), "\xE4\x80");
    text.SetCodePage(CP_UTF7); // takes no conversion flags
    text.Assign("plain", 0, String::kWhole);
    EXPECT_STREQ(text.Text(), L"plain");
}

TEST(StringAssignTest, TextOfItsOwnIsSafe) {
    String text(L"0123456789");
    text.Assign(text.Text() + 4);
    EXPECT_STREQ(text.Text(), L"456789");
    text.Append(text.Text() + 3);
    EXPECT_STREQ(text.Text(), L"456789789");
    text.Append(text);
    EXPECT_STREQ(text.Text(), L"456789789456789789");
    text.Insert(1, text);
    EXPECT_EQ(text.Length(), 36);
    text.Assign(text.Narrow(), 0, 3);
    EXPECT_STREQ(text.Text(), L"445");
    text.ReplaceText(text, text);
    text.Take(text);
    text = *&text;
    EXPECT_STREQ(text.Text(), L"445");
}

TEST(StringNarrowTest, StaysUntilAMutation) {
    String text(L"abc");
    const char* view = text.Narrow();
    text.Append(L"");
    text.Append(String());
    text.Append(L'\0');
    EXPECT_EQ(text.Narrow(), view);
    text.Append(L'd');
    EXPECT_STREQ(text.Narrow(), "abcd");
    EXPECT_STREQ(String().Narrow(), "");
}

TEST(StringChangeTest, EveryMutatorAnnouncesItselfOnce) {
    CountingString text(L"abc");
    text.changes = 0;
    text.Append(L"d");
    text.Insert(0, L"x");
    text.Delete(0, 1);
    text.TrimRight(L'd');
    text.Empty();
    EXPECT_EQ(text.changes, 5);
    text.Delete(0, 1); // nothing to delete
    EXPECT_EQ(text.changes, 5);
}

TEST(StringChangeTest, CapacityGrowsInStepsOfEight) {
    String text(L"1234567");
    const wchar_t* place = text.Text();
    text.Empty();
    text.Append(L"7654321");
    EXPECT_EQ(text.Text(), place);
    text.Append(L'8');
    EXPECT_STREQ(text.Text(), L"76543218");
    wchar_t* buffer = text.GetBuffer(20);
    EXPECT_EQ(buffer[23], 0);
    std::wcscpy(buffer, L"written directly");
    text.SetLengthByScan();
    EXPECT_EQ(text.Length(), 16);
}

TEST(StringChangeTest, InsertsDeletesAndTrims) {
    struct Case {
        const wchar_t* name;
        void (*change)(String&);
        const wchar_t* expected;
    };
    const Case kCases[] = {
        {L"insert front", [](String& s) { s.Insert(0, L"__"); }, L"__ abcd "},
        {L"insert end", [](String& s) { s.Insert(6, L"__"); }, L" abcd __"},
        {L"insert beyond", [](String& s) { s.Insert(7, L"__"); }, L" abcd "},
        {L"delete middle", [](String& s) { s.Delete(2, 2); }, L" ad "},
        {L"delete past end", [](String& s) { s.Delete(3, INT64_MAX); }, L" ab"},
        {L"delete beyond", [](String& s) { s.Delete(6, 1); }, L" abcd "},
        {L"trim left", [](String& s) { s.TrimLeft(); }, L"abcd "},
        {L"trim right", [](String& s) { s.TrimRight(); }, L" abcd"},
        {L"range shorter", [](String& s) { s.ReplaceRange(1, 3, L"x"); }, L" xd "},
        {L"range longer", [](String& s) { s.ReplaceRange(1, 1, L"xyz"); }, L" xyzbcd "},
        {L"range over the end", [](String& s) { s.ReplaceRange(5, 9, L"xyz"); }, L" abcdxyz"},
        {L"range beyond", [](String& s) { s.ReplaceRange(6, 9, L"xyz"); }, L" abcd "},
        {L"delimited", [](String& s) { s.AppendDelimited(L",", L"e"); }, L" abcd ,e"},
    };
    for (const Case& c : kCases) {
        String text(L" abcd ");
        c.change(text);
        EXPECT_STREQ(text.Text(), c.expected) << String(c.name).Narrow();
        EXPECT_EQ(text.Length(), static_cast<int64_t>(std::wcslen(c.expected)));
    }
    String empty;
    empty.AppendDelimited(L",", L"e");
    EXPECT_STREQ(empty.Text(), L"e");
}

TEST(StringReplaceTest, FollowsTheThreeStrategies) {
    struct Case {
        const wchar_t *text, *find, *replacement;
        int64_t maximum;
        const wchar_t* expected;
        int64_t count;
    };
    constexpr Case kCases[] = {
        {L"abcabc", L"bc", L"xy", String::kWhole, L"axyaxy", 2},
        {L"abcabc", L"bc", L"xy", 1, L"axyabc", 1},
        {L"abcabc", L"bc", L"wxyz", String::kWhole, L"awxyzawxyz", 2},
        {L"abcabc", L"bc", L"wxyz", 1, L"awxyzabc", 1},
        {L"aaaa", L"a", L"aa", String::kWhole, L"aaaaaaaa", 4},
        {L"abcabcd", L"bc", L"x", String::kWhole, L"axaxd", 2},
        {L"abcabc", L"bc", L"x", 1, L"ax", 1}, // the text ends where the maximum is used up
        {L"abcabc", L"bc", L"x", 0, L"", 0},
        {L"abcabc", L"bc", L"xy", 0, L"abcabc", 0},
        {L"abc", L"zz", L"", String::kWhole, L"abc", 0},
        {L"abc", L"", L"x", String::kWhole, L"abc", 0},
        {L"", L"a", L"x", String::kWhole, L"", 0},
    };
    for (const Case& c : kCases) {
        String text(c.text);
        EXPECT_EQ(text.ReplaceText(c.find, c.replacement, c.maximum), c.count) << String(c.expected).Narrow();
        EXPECT_STREQ(text.Text(), c.expected);
    }
    String units(L"a-b-c-");
    EXPECT_EQ(units.ReplaceUnit(L'-', L'+', 2), 2);
    EXPECT_STREQ(units.Text(), L"a+b+c-");
    EXPECT_EQ(units.ReplaceUnit(L'+', 0), 2);
    EXPECT_STREQ(units.Text(), L"abc-");
}

TEST(StringPartTest, CutsAndClamps) {
    const String text(L"abcdef");
    EXPECT_STREQ(text.Left(2).Text(), L"ab");
    EXPECT_EQ(text.Left(6).Text(), text.Text());
    EXPECT_STREQ(text.Right(2).Text(), L"ef");
    EXPECT_EQ(text.Right(99).Text(), text.Text());
    EXPECT_STREQ(text.Mid(4).Text(), L"ef");
    EXPECT_STREQ(text.Mid(1, 2).Text(), L"bc");
    EXPECT_STREQ(text.Mid(-3, 2).Text(), L"ab");
    EXPECT_TRUE(text.Left(-1).IsEmpty());
    EXPECT_TRUE(text.Right(-1).IsEmpty());
    EXPECT_TRUE(text.Mid(6).IsEmpty());
    EXPECT_EQ(Find(L"abcabc", L"ca"), 2);
    EXPECT_EQ(Find(L"abc", L""), -1);
    EXPECT_EQ(Find(L"abc", L"d"), -1);
}

TEST(StringPartTest, SplitsAndJoins) {
    struct Case {
        const wchar_t* text;
        const wchar_t* joined;
        int pieces;
    };
    constexpr Case kCases[] = {{L"a,,b,", L"a||b", 3}, {L"", L"", 0},     {L",", L"", 1},
                               {L"abc", L"abc", 1},    {L",a", L"|a", 2}, {L",,", L"|", 2}};
    for (const Case& c : kCases) {
        const WCValSList<String> pieces = String(c.text).Split(L',');
        EXPECT_EQ(pieces.entries(), c.pieces) << String(c.text).Narrow();
        String joined;
        joined.Join(L"|", pieces);
        EXPECT_STREQ(joined.Text(), c.joined);
    }
}

TEST(StringIndexTest, GuardsItsEnds) {
    String text(L"abc");
    text[1] = L'B';
    const String& constant = text;
    EXPECT_STREQ(constant.Text(), L"aBc");
    EXPECT_EQ(constant[3], 0);
    EXPECT_EQ(constant[4], 0);
    EXPECT_EQ(constant[-1], 0);
    DebugListener listener;
    text[3] = L'!';
    {
        const String witness;
    }
    text[3] = 0;
    EXPECT_TRUE(listener.Heard(L"WRN: detected write to String::operator[] with index out of bounds"));
    EXPECT_STREQ(constant.Text(), L"aBc");
}

TEST(StringCompareTest, OrdersByTheLeftObjectsCase) {
    struct Case {
        const wchar_t *left, *right;
        int64_t n;
        int exact, folded; // signs
    };
    constexpr Case kCases[] = {
        {L"abc", L"abc", -1, 0, 0},  {L"ABC", L"abc", -1, -1, 0}, {L"abc", L"abd", 2, 0, 0},
        {L"ABc", L"abd", 2, -1, 0},  {L"", L"", -1, 0, 0},        {L"", L"a", -1, -1, -1},
        {L"a", L"", -1, 1, 1},       {L"a", nullptr, -1, 1, 1},   {L"x", L"y", 0, 0, 0},
        {L"\uFFFD", L"a", -1, 1, 1}, {L"ab", L"abc", -1, -1, -1},
    };
    const auto sign = [](int value) { return (value > 0) - (value < 0); };
    for (const Case& c : kCases) {
        EXPECT_EQ(sign(String(c.left).CompareTo(c.right, c.n)), c.exact) << String(c.left).Narrow();
        EXPECT_EQ(sign(IString(c.left).CompareTo(c.right, c.n)), c.folded) << String(c.left).Narrow();
    }
    EXPECT_TRUE(IString(L"ABC") == String(L"abc"));
    EXPECT_FALSE(String(L"ABC") == IString(L"abc"));
}

TEST(StringFormatTest, SpeaksMicrosoftsFormats) {
    const auto format = [](const wchar_t* pattern, auto... arguments) {
        String text;
        EXPECT_EQ(text.Format(pattern, arguments...), text.Length());
        return Std(text);
    };
    EXPECT_EQ(format(L"%d%%", 5), L"5%");
    EXPECT_EQ(format(L"%s-%hs-%S-%ls", L"wide", "narrow", "swapped", L"long"), L"wide-narrow-swapped-long");
    EXPECT_EQ(format(L"%I64d|%I64x", INT64_MIN, UINT64_MAX), L"-9223372036854775808|ffffffffffffffff");
    EXPECT_EQ(format(L"%-*s|%.*s", 4, L"ab", 2, L"xyz"), L"ab  |xy");
    EXPECT_EQ(format(L"%#x %+d %05.1f %c", 255, 7, 2.25, L'c'), L"0xff +7 002.3 c");
    const std::wstring longText(5000, L'z');
    EXPECT_EQ(format(L"[%s]", longText.c_str()), L"[" + longText + L"]");
    EXPECT_EQ(format(L"%200s", L"r").size(), 200u);
    EXPECT_EQ(format(L"%.6f", 1e30).size(), 38u);
    EXPECT_EQ(format(L"trailing %"), L"trailing ");
}

TEST(StringFormatTest, RefusesBadArguments) {
    void* page = VirtualAlloc(nullptr, 4096, MEM_COMMIT | MEM_RESERVE, PAGE_NOACCESS);
    const auto* unreadable = static_cast<const wchar_t*>(page);
    const std::pair<const wchar_t*, const void*> kCases[] = {
        {L"%s", nullptr},    {L"%hs", nullptr},    {L"%n", nullptr},
        {L"%s", unreadable}, {L"%hs", unreadable}, {L"%ls", unreadable},
    };
    for (const auto& [pattern, argument] : kCases) {
        String text(L"before");
        EXPECT_EQ(text.Format(pattern, argument), 0);
        EXPECT_STREQ(text.Text(), L"<printf format error>");
    }
    VirtualFree(page, 0, MEM_RELEASE);
    String text;
    EXPECT_EQ(text.Format(nullptr), 0);
}

TEST(StringFormatTest, FillsMessageTemplates) {
    const auto message = [](const wchar_t* pattern, ...) {
        va_list arguments;
        va_start(arguments, pattern);
        String text = String::VMessage(pattern, &arguments);
        va_end(arguments);
        return Std(text);
    };
    EXPECT_EQ(message(L"%2 before %1", L"one", L"two"), L"two before one");
    EXPECT_EQ(message(L""), L"");
}

TEST(StringFormatTest, WordsSystemErrors) {
    const String text = String::FromError(ERROR_ACCESS_DENIED);
    EXPECT_GT(text.Length(), 13);
    EXPECT_STREQ(text.Right(11).Text(), L" (00000005)");
    EXPECT_EQ(Find(text.Text(), L"\n"), -1);
    EXPECT_STREQ(String::FromError(0x0F00F00F).Text(), L"(error code 0xf00f00f)");
}

TEST(StringMapTest, MapsCase) {
    EXPECT_STREQ(String(L"Stra\u00DFe \u00E4\u00C9").Upper().Text(), L"STRA\u00DFE \u00C4\u00C9");
    EXPECT_STREQ(String(L"\u0394ELTA").Lower().Text(), L"\u03B4elta");
    const String text(String(L'q', 1000));
    EXPECT_EQ(Std(text.Upper()), std::wstring(1000, L'Q'));
    String invariant(L"mixed");
    invariant.LCMapString(LCMAP_UPPERCASE, LOCALE_INVARIANT);
    EXPECT_STREQ(invariant.Text(), L"MIXED");
}

TEST(StringMapTest, KeepsTheTextWhenMappingFails) {
    DebugListener listener;
    String text(L"kept");
    text.LCMapString(LCMAP_UPPERCASE | LCMAP_LOWERCASE, LOCALE_USER_DEFAULT);
    EXPECT_STREQ(text.Text(), L"kept");
    EXPECT_TRUE(listener.Heard(L"ERR: String::LCMapString[Ex]("));
}

TEST(StringConversionTest, MakesBstrsAndCharStrings) {
    BSTR target = nullptr;
    EXPECT_TRUE(String(L"first").ToBSTR(&target));
    EXPECT_TRUE(String(L"second text").ToBSTR(&target));
    EXPECT_STREQ(target, L"second text");
    EXPECT_EQ(SysStringLen(target), 11u);
    SysFreeString(target);
    EXPECT_STREQ(clsCHARString("\xE4z", 2).ToString(0).Text(), L"\u00E4z");
    EXPECT_STREQ(clsCHARString("\xC3\xA4", 2).ToString(CP_UTF8).Text(), L"\u00E4");
    EXPECT_TRUE(clsCHARString(nullptr, 5).ToString(0).IsEmpty());
}

} // namespace
} // namespace vxut
