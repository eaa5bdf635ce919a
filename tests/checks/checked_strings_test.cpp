#include "util/strings.h"

#include "checks/validate.h"
#include "tests/support/debug_listener.h"
#include "tests/support/guarded_pages.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <string>

namespace vxut {
namespace {

const wchar_t* Put(wchar_t* place, const std::wstring& text) {
    return std::wmemcpy(place, text.c_str(), text.size() + 1);
}

// A text of distinct units that ends at a page that must not be accessed, and memory for another one.
class TextLoopTest : public testing::TestWithParam<uint32_t> {
protected:
    TextLoopTest() {
        for (uint32_t i = 0; i < length; ++i) sample += static_cast<wchar_t>(L'\x4100' + i);
        text = Put(source.Last<wchar_t>(length + 1), sample);
    }

    const test::GuardedPages source, dest;
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

class ParameterCheckTest : public testing::Test {
protected:
    ~ParameterCheckTest() override { parameterCheckSwitch = 0; }

    test::GuardedPages pages;
    wchar_t* const small = std::wmemcpy(pages.Last<wchar_t>(3), L"ab", 3);
};

TEST_F(ParameterCheckTest, ChangesTextsInPlace) {
    using T = wchar_t*;
    const struct {
        const wchar_t *before, *after;
        wchar_t* (*call)(T);
        const wchar_t* afterChecked = nullptr; // if the checks make a difference, which callers rely on
    } kRows[] = {
        {L"  a b  ", L"a b", [](T t) { return UtilAtrim(t), t; }},
        {L"  a ", L"a ", [](T t) { return UtilLtrim(t), t; }},
        {L"  a\t ", L"  a\t", [](T t) { return UtilRtrim(t), t; }},
        {L"   ", L"", [](T t) { return UtilRtrim(t), t; }},
        {L"   ", L"", [](T t) { return UtilLtrim(t), t; }},
        {L"\t a\x00A0 ", L"\t a\x00A0", [](T t) { return UtilAtrim(t), t; }}, // blanks only
        {L"abcd", L"a", [](T t) { return UtilStuff(t, 2, 0xFFFFFFFF, L""); }},
        {L"abcdef", L"yza", [](T t) { return UtilSubstr(t, -1, 3); }, L"yz"},
        {L"abcdef", L"yzabcd", [](T t) { return UtilSubstr(t, -1, 0xFFFFFFFF); }, L"yz"}, // does not grow
        {L"abcd", L"aabcd", [](T t) { return UtilStrcpy(t + 1, t) - 1; }, L"aa"},
        {L"abcd", L"aabcd", [](T t) { return UtilMemcpy(t + 1, t, 8), t; }},
        {L"abcd", L"\x4141\x4141\x4141\x4141", [](T t) { return static_cast<T>(UtilMemset(t, 0x141, 8)); }},
        {L"abcd", L"abcd", [](T t) { return static_cast<T>(UtilMemset(t, 0, 0)); }},
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
}

TEST_F(ParameterCheckTest, ComparesWithOrWithoutCase) {
    const struct {
        const wchar_t *left, *right;
        int sign, signWithoutCase;
    } kRows[] = {
        {L"abc", L"abc", 0, 0}, {L"abc", L"ABC", 1, 0}, {L"ab", L"ABC", 1, -1},
        {L"", L"a", -1, -1},    {L"a_", L"aZ", 1, -1},  {L"a", L"\xE4", -1, -1},
    };
    const auto signOf = [](int result) { return (result > 0) - (result < 0); };
    for (const auto& [left, right, sign, signWithoutCase] : kRows) {
        for (parameterCheckSwitch = 0; parameterCheckSwitch < 2; ++parameterCheckSwitch) {
            EXPECT_EQ(UtilStrcmp(left, right), sign) << left << ' ' << right;
            EXPECT_EQ(UtilStrncmp(left, right, 9), sign) << left << ' ' << right;
            EXPECT_EQ(signOf(UtilStricmp(left, right)), signWithoutCase) << left << ' ' << right;
            EXPECT_EQ(signOf(UtilStricmp(right, left)), -signWithoutCase) << left << ' ' << right;
            EXPECT_EQ(signOf(UtilStrnicmp(left, right, 9)), signWithoutCase) << left << ' ' << right;
        }
    }
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
}

TEST_F(ParameterCheckTest, SprintfCutsAndTerminatesAndReports) {
    const std::pair<uint32_t, const wchar_t*> cases[] = {{7, L"abc 12"}, {6, L"abc 1"}, {1, L""}};
    for (const auto& [capacity, text] : cases) {
        for (parameterCheckSwitch = 0; parameterCheckSwitch < 2; ++parameterCheckSwitch) {
            const DebugListener heard;
            wchar_t* const place = pages.Last<wchar_t>(capacity);
            EXPECT_EQ(UtilSafeSprintf(place, capacity, L"%hs %d", "abc", 12), capacity == 7 ? 6 : -1);
            EXPECT_STREQ(place, text);
            EXPECT_EQ(heard.Heard(L"UtilSafeSprintf: destination buffer too small\n"),
                      parameterCheckSwitch && capacity < 7);
        }
    }
}

TEST_F(ParameterCheckTest, ComparisonsOfACountTestWhatTheyRead) {
    wchar_t* const unterminated = std::wmemcpy(pages.Last<wchar_t>(3), L"abc", 3);
    const std::wstring longer = L"ABCD";
    const struct {
        uint32_t count;
        bool isGood;
    } kRows[] = {{0, true}, {2, true}, {3, true}, {4, false}, {6, false}, {UINT32_MAX, false}};
    parameterCheckSwitch = 1;
    for (const auto& [count, isGood] : kRows) {
        const DebugListener heard;
        EXPECT_EQ(UtilStrnicmp(unterminated, longer.c_str(), count), 0) << count;
        EXPECT_EQ(UtilStrncmp(L"abc", unterminated, count), 0) << count;
        EXPECT_EQ(heard.Heard(L"error in 'UtilStrnicmp': Parameter1\n"), !isGood) << count;
        EXPECT_EQ(heard.Heard(L"error in 'UtilStrncmp': Parameter2\n"), !isGood) << count;
    }
    const DebugListener heard;
    EXPECT_LT(UtilStrnicmp(unterminated, L"ABZ", 1000), 0) << "nothing is read after a difference";
    EXPECT_EQ(UtilStrncmp(L"Abc", unterminated, 1000), -1);
    Put(small, L"ab");
    EXPECT_LT(UtilStrnicmp(small, L"abz", 1000), 0) << "nothing is read after the terminator";
    EXPECT_EQ(UtilStrncmp(L"abz", small, UINT32_MAX), 1);
    EXPECT_TRUE(heard.Lines().empty());
}

// The system's probe looks at the first 65535 units of a text.
TEST_F(ParameterCheckTest, LongTextsWithoutAnEndAreFoundToo) {
    constexpr size_t kUnits = 70000;
    const test::GuardedPages many(PAGE_READWRITE, kUnits * sizeof(wchar_t));
    wchar_t* const text = std::wmemset(many.Last<wchar_t>(kUnits), L'x', kUnits);
    std::wstring target(kUnits + 1, L'-');
    parameterCheckSwitch = 1;
    EXPECT_EQ(UtilStrlen(text), 0u);
    EXPECT_EQ(UtilStrcpy(target.data(), text), nullptr);
    EXPECT_EQ(UtilStrcmp(text, L"x"), 0);
    EXPECT_EQ(UtilStrstr(text, L"y"), nullptr);
    EXPECT_EQ(UtilStrchr(text, L'x'), nullptr);
    EXPECT_EQ(UtilStrcat(text, L"y"), nullptr);
    EXPECT_EQ(UtilStuff(text, 1, 1, nullptr), nullptr);
    EXPECT_EQ(UtilSubstr(text, 1, 1), nullptr);
    EXPECT_EQ(target, std::wstring(kUnits + 1, L'-'));
    text[kUnits - 1] = L'\0';
    EXPECT_EQ(UtilStrlen(text), kUnits - 1);
}

TEST_F(ParameterCheckTest, StuffTestsThePlaceOfItsTerminator) {
    const test::GuardedPages readOnly(PAGE_READONLY);
    wchar_t* const empty = readOnly.Last<wchar_t>(1);
    parameterCheckSwitch = 1;
    EXPECT_EQ(UtilStuff(empty, 1, 1, nullptr), nullptr);
}

TEST_F(ParameterCheckTest, NamesTheFirstBadParameterAndTouchesNothing) {
    static constexpr auto AsNumber = [](const void* pointer) { return reinterpret_cast<intptr_t>(pointer); };
    using T = wchar_t*;
    const struct {
        const wchar_t *function, *parameter;
        intptr_t (*call)(T); // with a text of three units at the end of its memory
    } kRows[] = {
        {L"UtilStrcpy", L"Destination", [](T t) { return AsNumber(UtilStrcpy(t, L"good")); }},
        {L"UtilStrcmp", L"Parameter1", [](T t) { return intptr_t{UtilStrcmp(t + 3, t + 3)}; }},
        {L"UtilStrncmp", L"Parameter1", [](T t) { return intptr_t{UtilStrncmp(t + 3, L"good", 1)}; }},
        {L"UtilStrnicmp", L"Parameter2", [](T t) { return intptr_t{UtilStrnicmp(L"good", t + 3, 1)}; }},
        {L"UtilVScanf", L"Parameter2", [](T t) { return AsNumber(UtilStrstr(L"good", t + 3)); }},
        {L"UtilMemset", L"Destination", [](T t) { return AsNumber(UtilMemset(t, 0, 7)); }},
        {L"UtilLtrim", L"String", [](T t) { return UtilLtrim(t + 3), intptr_t{0}; }},
        {L"UtilRtrim", L"String", [](T t) { return UtilRtrim(t + 3), intptr_t{0}; }},
        {L"UtilStricmp", L"Parameter2", [](T t) { return intptr_t{UtilStricmp(L"good", t + 3)}; }},
        {L"UtilMemcpy", L"Destination", [](T t) { return AsNumber(UtilMemcpy(t, t + 3, 4)); }},
        {L"UtilStuffA", L"Destination", [](T t) { return AsNumber(UtilStuff(t, 1, 1, L"abc")); }},
        {L"UtilSafeSprintf", L"Destination", [](T t) { return intptr_t{UtilSafeSprintf(t, 4, L"x")}; }},
    };
    parameterCheckSwitch = 1;
    for (const auto& row : kRows) {
        const DebugListener heard;
        const auto banner = L"error in '" + std::wstring(row.function) + L"': " + row.parameter + L"\n ptr=";
        EXPECT_EQ(row.call(small), 0) << banner;
        EXPECT_TRUE(heard.Heard(banner.c_str())) << banner;
        EXPECT_STREQ(small, L"ab") << banner;
    }
}

} // namespace
} // namespace vxut
