#include "util/strings.h"

#include "frame/validate.h"
#include "tests/support/debug_listener.h"
#include "tests/support/guarded_pages.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <string>

namespace vxut {
namespace {

using test::GuardedPages;

const wchar_t* Put(wchar_t* place, const std::wstring& text) {
    return std::wmemcpy(place, text.c_str(), text.size() + 1);
}

// A text of distinct units that ends at a page nobody may touch, and a place for another one.
class TextLoopTest : public testing::TestWithParam<uint32_t> {
protected:
    TextLoopTest() {
        for (uint32_t i = 0; i < length; ++i) sample += static_cast<wchar_t>(L'\x4100' + i);
        text = Put(source.Last<wchar_t>(length + 1), sample);
    }

    const GuardedPages source, dest;
    const uint32_t length = GetParam();
    std::wstring sample;
    const wchar_t* text;
    wchar_t* const other = dest.Last<wchar_t>(length + 1);
};

// Round the sizes at which the loops change their step.
INSTANTIATE_TEST_SUITE_P(Lengths, TextLoopTest,
                         testing::Values(0, 1, 2, 3, 4, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 200));

TEST_P(TextLoopTest, FindsWithoutLeavingTheText) {
    EXPECT_EQ(UtilStrlen(text), length);
    EXPECT_EQ(UtilStrchr(text, L'\x4000'), nullptr);
    EXPECT_EQ(UtilStrrchr(text, L'\x4000'), nullptr);
    for (uint32_t i = 0; i <= length; ++i) { // the terminator too
        EXPECT_EQ(UtilStrchr(text, text[i]), text + i);
        EXPECT_EQ(UtilStrrchr(text, text[i]), text + i);
    }
}

TEST_P(TextLoopTest, ComparesWithTextsThatPartAnywhere) {
    for (uint32_t at = 0; at <= length; ++at) {
        Put(other, sample);
        EXPECT_EQ(UtilStrcmp(text, other), 0);
        other[at] = L'\xFFFF'; // above all others, taken as unsigned
        EXPECT_EQ(UtilStrcmp(text, other), -1);
        EXPECT_EQ(UtilStrcmp(other, text), 1);
        EXPECT_EQ(UtilStrncmp(text, other, at), 0);
        EXPECT_EQ(UtilStrncmp(other, text, at + 1), 1);
    }
}

TEST_P(TextLoopTest, CopiesAndAppendsIntoJustEnoughRoom) {
    EXPECT_EQ(std::wstring(UtilStrcpy(other, text)), sample);
    EXPECT_EQ(std::wstring(UtilStrncpy(other, sample.c_str(), 0xFFFFFFFF)), sample);
    for (uint32_t had = 0; had <= length; ++had) {
        Put(other, sample.substr(0, had));
        EXPECT_EQ(std::wstring(UtilStrcat(other, text + had)), sample);
        // Neither more is written nor more is read than fits, terminator or not.
        wchar_t* const part = dest.Last<wchar_t>(had + 1);
        const wchar_t* const unterminated = std::wmemcpy(source.Last<wchar_t>(had), sample.c_str(), had);
        EXPECT_EQ(std::wstring(UtilStrncpy(part, unterminated, had + 1)), sample.substr(0, had));
        Put(source.Last<wchar_t>(length + 1), sample);
    }
}

TEST_P(TextLoopTest, MovesAndFillsBytes) {
    std::string from, buffer(length + 6, '-');
    for (uint32_t i = 0; i < length; ++i) from += static_cast<char>(i);
    char* const bytes = buffer.data() + 3;
    EXPECT_EQ(UtilMemcpy(bytes, from.data(), length), bytes);
    EXPECT_EQ(buffer, "---" + from + "---");
    UtilMemcpy(bytes + 1, bytes, length); // onto itself, one byte on
    EXPECT_EQ(buffer.substr(4), from + "--");
    UtilMemset(bytes, 0x1AB, length);
    EXPECT_EQ(buffer.substr(0, 3 + length), "---" + std::string(length, '\xAB'));
}

TEST_P(TextLoopTest, CrossesPages) {
    alignas(4096) static wchar_t pages[2 * 2048];
    for (size_t before = 0; before <= length; ++before) {
        const wchar_t* const crossing = Put(pages + 2048 - before, sample);
        EXPECT_EQ(UtilStrlen(crossing), length);
        EXPECT_EQ(UtilStrcmp(crossing, text), 0);
        EXPECT_EQ(UtilStrrchr(crossing, text[length / 2]), crossing + length / 2);
    }
}

TEST(CheckedStringsTest, ComparesWithoutCaseUpToTheCount) {
    EXPECT_EQ(UtilStricmp(L"abc", L"ABC"), 0);
    EXPECT_LT(UtilStricmp(L"abc", L"ABCD"), 0);
    EXPECT_EQ(UtilStrnicmp(L"Zebra", L"zebu", 3), 0);
    EXPECT_LT(UtilStrnicmp(L"Zebra", L"zebu", 0xFFFFFFFF), 0);
}

class ParameterCheckTest : public testing::Test {
protected:
    ~ParameterCheckTest() override { parameterCheckSwitch = 0; }

    GuardedPages pages, readOnly{PAGE_READONLY};
    DebugListener listener;
    wchar_t* const small = std::wmemcpy(pages.Last<wchar_t>(3), L"ab", 3);
};

TEST_F(ParameterCheckTest, ChangesTextsInPlaceAndInSilence) {
    using T = wchar_t*;
    const struct {
        const wchar_t *before, *after;
        wchar_t* (*call)(T);
        const wchar_t* afterChecked = nullptr; // if the checks make a difference, which callers rely on
    } kRows[] = {
        {L"  a b  ", L"a b  ", [](T t) { return UtilLtrim(t), t; }},
        {L"  a b  ", L"  a b", [](T t) { return UtilRtrim(t), t; }},
        {L"  a b  ", L"a b", [](T t) { return UtilAtrim(t), t; }},
        {L"   ", L"", [](T t) { return UtilAtrim(t), t; }},
        {L"\t a\x00A0 ", L"\t a\x00A0", [](T t) { return UtilAtrim(t), t; }}, // blanks only
        {L"abcd", L"ad", [](T t) { return UtilStuff(t, 2, 2, nullptr); }},
        {L"abcd", L"a", [](T t) { return UtilStuff(t, 2, 0xFFFFFFFF, L""); }},
        {L"abcd", L"abcd", [](T t) { return UtilStuff(t, 5, 1, nullptr); }},
        {L"abcd", L"abcd", [](T t) { return UtilStuff(t, 6, 1, L"new"); }}, // there is no such place
        {L"abcd", L"abcd", [](T t) { return UtilStuff(t, 0, 1, nullptr); }},
        {L"abcdef", L"bcd", [](T t) { return UtilSubstr(t, 2, 3); }},
        {L"abcdef", L"f", [](T t) { return UtilSubstr(t, 6, 0xFFFFFFFF); }},
        {L"abcdef", L"", [](T t) { return UtilSubstr(t, 0, 4); }},
        {L"abcdef", L"yza", [](T t) { return UtilSubstr(t, -1, 3); }, L"yz"},
        {L"abcdef", L"yzabcd", [](T t) { return UtilSubstr(t, -1, 0xFFFFFFFF); }, L"yz"}, // does not grow
        {L"abcdef", L"", [](T t) { return UtilSubstr(t, 7, 1) ? nullptr : t; }},
        {L"abcdef", L"", [](T t) { return UtilSubstr(t, INT32_MIN, 1) ? nullptr : t; }},
        {L"abcd", L"aabcd", [](T t) { return UtilStrcpy(t + 1, t) - 1; }, L"aa"},
        {L"abcd", L"abcd", [](T t) { return UtilStrcpy(t, t); }},
        {L"abcd", L"abcd", [](T t) { return UtilStrncpy(t, L"untouched", 0); }},
    };
    for (const auto& row : kRows) {
        for (parameterCheckSwitch = 0; parameterCheckSwitch < 2; ++parameterCheckSwitch) {
            std::wstring buffer = L"xyz" + std::wstring(row.before) + std::wstring(9, L'\0');
            const wchar_t* const text = buffer.data() + 3;
            const bool differs = parameterCheckSwitch && row.afterChecked;
            EXPECT_EQ(row.call(buffer.data() + 3), text);
            EXPECT_STREQ(text, differs ? row.afterChecked : row.after) << &row - kRows;
        }
    }
    EXPECT_TRUE(listener.Lines().empty()) << listener.Last();
}

TEST_F(ParameterCheckTest, StuffRefusesToInsert) {
    const auto faults = [](wchar_t* text) {
        __try {
            UtilStuff(text, 2, 1, L"new");
        } __except (GetExceptionCode() == EXCEPTION_ACCESS_VIOLATION) {
            return true;
        }
        return false;
    };
    EXPECT_TRUE(faults(small));
    EXPECT_STREQ(small, L"ab");
}

TEST_F(ParameterCheckTest, SprintfCutsAndTerminatesAndReports) {
    const struct {
        const wchar_t* format;
        uint32_t capacity;
        int result;
        const wchar_t* text;
    } kRows[] = {
        {L"%hs %d", 7, 6, L"abc 12"}, {L"%hs %d", 6, -1, L"abc 1"}, {L"x", 1, -1, L""}, {L"", 3, 0, L""}};
    for (const auto& [format, capacity, result, text] : kRows) {
        for (parameterCheckSwitch = 0; parameterCheckSwitch < 2; ++parameterCheckSwitch) {
            const DebugListener heard;
            wchar_t* const place = pages.Last<wchar_t>(capacity);
            EXPECT_EQ(UtilSafeSprintf(place, capacity, format, "abc", 12), result);
            EXPECT_STREQ(place, text);
            const bool reports = parameterCheckSwitch && result < 1;
            EXPECT_EQ(heard.Lines().size(), reports ? 1u : 0u);
            EXPECT_EQ(heard.Heard(L"UtilSafeSprintf: destination buffer too small\n"), reports);
        }
    }
    parameterCheckSwitch = 0;
    EXPECT_EQ(UtilSafeSprintf(nullptr, 0, L"abc"), -1);
}

// What the calls below get: a text, one with no room behind it, one in memory that cannot be written, and a
// pointer to nothing.
struct CallArguments {
    wchar_t *good, *small, *fixed, *wild;
};

TEST_F(ParameterCheckTest, NamesTheFirstBadParameterAndTouchesNothing) {
    static constexpr auto AsNumber = [](const void* pointer) { return reinterpret_cast<intptr_t>(pointer); };
    using A = const CallArguments&;
    const struct {
        const wchar_t *function, *parameter;
        intptr_t (*call)(A);
    } kRows[] = {
        {L"UtilStrcpy", L"Destination", [](A a) { return AsNumber(UtilStrcpy(a.small, a.good)); }},
        {L"UtilStrcat", L"Source", [](A a) { return AsNumber(UtilStrcat(a.wild, a.wild)); }},
        {L"UtilStrcat", L"Destination", [](A a) { return AsNumber(UtilStrcat(a.small, a.good + 3)); }},
        {L"UtilStrncpy", L"Source", [](A a) { return AsNumber(UtilStrncpy(a.small, a.wild, 0)); }},
        {L"UtilStrncpy", L"Destination", [](A a) { return AsNumber(UtilStrncpy(a.small, a.good, 4)); }},
        {L"UtilStrcmp", L"Parameter1", [](A a) { return intptr_t{UtilStrcmp(a.wild, a.wild)}; }},
        {L"UtilStrncmp", L"Parameter1", [](A a) { return intptr_t{UtilStrncmp(a.small, a.wild, 7)}; }},
        {L"UtilStrnicmp", L"Parameter2", [](A a) { return intptr_t{UtilStrnicmp(a.good, a.small, 7)}; }},
        {L"UtilVScanf", L"Parameter2", [](A a) { return AsNumber(UtilStrstr(a.good, a.wild)); }},
        {L"UtilStrchr", L"String", [](A a) { return AsNumber(UtilStrchr(a.wild, L'a')); }},
        {L"UtilStrrchr", L"String", [](A a) { return AsNumber(UtilStrrchr(a.wild, L'a')); }},
        {L"UtilStrlen", L"String", [](A a) { return static_cast<intptr_t>(UtilStrlen(a.wild)); }},
        {L"UtilMemcpy", L"Destination", [](A a) { return AsNumber(UtilMemcpy(a.small, a.wild, 4)); }},
        {L"UtilMemcpy", L"Source", [](A a) { return AsNumber(UtilMemcpy(a.good, a.small, 7)); }},
        {L"UtilMemset", L"Destination", [](A a) { return AsNumber(UtilMemset(a.small, 0, 7)); }},
        {L"UtilLtrim", L"String", [](A a) { return UtilLtrim(a.wild), intptr_t{0}; }},
        {L"UtilRtrim", L"String", [](A a) { return UtilRtrim(a.fixed), intptr_t{0}; }},
        {L"UtilStuffA", L"Source", [](A a) { return AsNumber(UtilStuff(a.small, 1, 1, a.wild)); }},
        {L"UtilStuffA", L"Destination", [](A a) { return AsNumber(UtilStuff(a.small, 1, 1, L"abc")); }},
        {L"UtilSubstr", L"String", [](A a) { return AsNumber(UtilSubstr(a.wild, 1, 1)); }},
        {L"UtilSafeSprintf", L"Format", [](A a) { return intptr_t{UtilSafeSprintf(a.wild, 3, a.wild)}; }},
        {L"UtilSafeSprintf", L"Destination", [](A a) { return intptr_t{UtilSafeSprintf(a.small, 4, L"x")}; }},
    };
    parameterCheckSwitch = 1;
    wchar_t good[16] = L"good";
    const CallArguments arguments{good, small, readOnly.Last<wchar_t>(1),
                                  static_cast<wchar_t*>(pages.Untouchable())};
    for (const auto& row : kRows) {
        const DebugListener heard;
        const auto banner = L"error in '" + std::wstring(row.function) + L"': " + row.parameter + L"\n ptr=";
        EXPECT_EQ(row.call(arguments), 0) << banner;
        EXPECT_TRUE(heard.Heard(banner.c_str())) << banner;
        EXPECT_EQ(heard.Lines().size(), 2u) << banner; // the banner and its detail
        EXPECT_STREQ(small, L"ab") << banner;
        EXPECT_STREQ(good, L"good") << banner;
    }
}

} // namespace
} // namespace vxut
