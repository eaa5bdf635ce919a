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

int Sign(int value) { return (value > 0) - (value < 0); }

// A text of distinct units.
std::wstring Sample(size_t length) {
    std::wstring text;
    for (size_t i = 0; i < length; ++i) text += static_cast<wchar_t>(L'\x4100' + i);
    return text;
}

// Round the sizes at which the loops change their step.
constexpr size_t kLengths[] = {0, 1, 2, 3, 4, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 200};

const wchar_t* Put(wchar_t* place, const std::wstring& text) {
    return std::wmemcpy(place, text.c_str(), text.size() + 1);
}

// A text that ends at a page nobody may touch, and a place for another one.
struct TextAtPageEnd {
    explicit TextAtPageEnd(size_t itsLength)
        : length(itsLength), sample(Sample(length)), text(Put(source.Last<wchar_t>(length + 1), sample)) {}

    const GuardedPages source, dest;
    const size_t length;
    const std::wstring sample;
    const wchar_t* const text;
};

TEST(TextLoopTest, FindsWithoutLeavingTheText) {
    for (const size_t size : kLengths) {
        SCOPED_TRACE(size);
        const TextAtPageEnd place(size);
        const auto& [source, dest, length, sample, text] = place;
        EXPECT_EQ(UtilStrlen(text), length);
        EXPECT_EQ(UtilStrchr(text, L'\x4000'), nullptr);
        EXPECT_EQ(UtilStrrchr(text, L'\x4000'), nullptr);
        EXPECT_EQ(UtilStrchr(text, 0), text + length);
        EXPECT_EQ(UtilStrrchr(text, 0), text + length);
        for (size_t i = 0; i < length; ++i) {
            EXPECT_EQ(UtilStrchr(text, sample[i]), text + i);
            EXPECT_EQ(UtilStrrchr(text, sample[i]), text + i);
        }
    }
}

TEST(TextLoopTest, ComparesWithTextsThatPartAnywhere) {
    for (const size_t size : kLengths) {
        SCOPED_TRACE(size);
        const TextAtPageEnd place(size);
        const auto& [source, dest, length, sample, text] = place;
        wchar_t* const other = dest.Last<wchar_t>(length + 1);
        for (size_t at = 0; at <= length; ++at) {
            Put(other, sample);
            EXPECT_EQ(UtilStrcmp(text, other), 0);
            other[at] = L'\xFFFF'; // above all others, taken as unsigned
            EXPECT_EQ(UtilStrcmp(text, other), -1);
            EXPECT_EQ(UtilStrcmp(other, text), 1);
            EXPECT_EQ(UtilStrncmp(text, other, static_cast<uint32_t>(at)), 0);
            EXPECT_EQ(UtilStrncmp(other, text, static_cast<uint32_t>(at) + 1), 1);
        }
    }
}

TEST(TextLoopTest, CopiesIntoJustEnoughRoom) {
    for (const size_t size : kLengths) {
        SCOPED_TRACE(size);
        const TextAtPageEnd place(size);
        const auto& [source, dest, length, sample, text] = place;
        wchar_t* const whole = dest.Last<wchar_t>(length + 1);
        EXPECT_EQ(UtilStrcpy(whole, text), whole);
        EXPECT_EQ(whole, sample);
        EXPECT_EQ(UtilStrncpy(whole, sample.c_str(), 0xFFFFFFFF), whole);
        EXPECT_EQ(whole, sample);
        for (size_t room = 1; room <= length; ++room) {
            // Neither more is written nor more is read than fits, terminator or not.
            wchar_t* const part = dest.Last<wchar_t>(room);
            const wchar_t* const unterminated =
                std::wmemcpy(source.Last<wchar_t>(room - 1), sample.c_str(), room - 1);
            EXPECT_EQ(UtilStrncpy(part, unterminated, static_cast<uint32_t>(room)), part);
            EXPECT_EQ(part, sample.substr(0, room - 1));
        }
    }
}

TEST(TextLoopTest, AppendsAtEveryPlace) {
    for (const size_t size : kLengths) {
        SCOPED_TRACE(size);
        const TextAtPageEnd place(size);
        const auto& [source, dest, length, sample, text] = place;
        for (size_t had = 0; had <= length; ++had) {
            wchar_t* const joined = dest.Last<wchar_t>(length + 1);
            Put(joined, sample.substr(0, had));
            EXPECT_EQ(UtilStrcat(joined, text + had), joined);
            EXPECT_EQ(joined, sample);
        }
    }
}

TEST(TextLoopTest, MovesAndFillsBytes) {
    for (const size_t size : kLengths) {
        SCOPED_TRACE(size);
        const TextAtPageEnd place(size);
        const auto& [source, dest, length, sample, text] = place;
        constexpr size_t kMargin = 3;
        const size_t bytes = length; // odd numbers too
        std::string buffer(bytes + 2 * kMargin, '-');
        std::string from(bytes, '\0');
        for (size_t i = 0; i < bytes; ++i) from[i] = static_cast<char>(i);
        EXPECT_EQ(UtilMemcpy(buffer.data() + kMargin, from.data(), static_cast<uint32_t>(bytes)),
                  buffer.data() + kMargin);
        EXPECT_EQ(buffer, "---" + from + "---");
        // Onto itself, one byte on.
        UtilMemcpy(buffer.data() + kMargin + 1, buffer.data() + kMargin, static_cast<uint32_t>(bytes));
        EXPECT_EQ(buffer.substr(kMargin + 1, bytes), from);
        UtilMemset(buffer.data() + kMargin, 0x1AB, static_cast<uint32_t>(bytes));
        EXPECT_EQ(buffer.substr(kMargin, bytes), std::string(bytes, '\xAB'));
        EXPECT_EQ(buffer.substr(0, kMargin), "---");
    }
}

TEST(TextLoopTest, CrossesPages) {
    constexpr size_t kPageUnits = 2048;
    alignas(4096) static wchar_t pages[2 * kPageUnits];
    for (size_t start = kPageUnits - 20; start <= kPageUnits; ++start) {
        const std::wstring sample = Sample(20);
        wchar_t* const text = std::wmemcpy(pages + start, sample.c_str(), 21);
        EXPECT_EQ(UtilStrlen(text), 20u);
        EXPECT_EQ(UtilStrcmp(text, sample.c_str()), 0);
        EXPECT_EQ(UtilStrrchr(text, sample[5]), text + 5);
    }
}

TEST(CheckedStringsTest, ComparesLikeTheRunTimeLibrary) {
    const struct {
        const wchar_t *left, *right;
        uint32_t count;
        int exact, caseless, exactOfCount, caselessOfCount;
    } kRows[] = {
        {L"a", L"\xE4", 9, -1, -1, -1, -1},
        {L"abc", L"ABC", 9, 1, 0, 1, 0},
        {L"abcX", L"abcY", 3, -1, -1, 0, 0},
        {L"Zebra", L"zebu", 3, -1, -1, -1, 0},
        {L"abc", L"abcd", 0xFFFFFFFF, -1, -1, -1, -1},
        {L"x", L"y", 0, -1, -1, 0, 0},
    };
    for (const auto& row : kRows) {
        EXPECT_EQ(UtilStrcmp(row.left, row.right), row.exact) << row.left;
        EXPECT_EQ(Sign(UtilStricmp(row.left, row.right)), row.caseless) << row.left;
        EXPECT_EQ(Sign(UtilStrncmp(row.left, row.right, row.count)), row.exactOfCount) << row.left;
        EXPECT_EQ(Sign(UtilStrnicmp(row.left, row.right, row.count)), row.caselessOfCount) << row.left;
    }
}

TEST(CheckedStringsTest, TrimsBlanksOnly) {
    const struct {
        const wchar_t *text, *left, *right, *both;
    } kRows[] = {{L"  a b  ", L"a b  ", L"  a b", L"a b"},
                 {L"   ", L"", L"", L""},
                 {L"", L"", L"", L""},
                 {L"\t a\t ", L"\t a\t ", L"\t a\t", L"\t a\t"},
                 {L" \x00A0 ", L"\x00A0 ", L" \x00A0", L"\x00A0"}};
    for (const auto& row : kRows) {
        std::wstring left(row.text), right(row.text), both(row.text);
        UtilLtrim(left.data());
        UtilRtrim(right.data());
        UtilAtrim(both.data());
        EXPECT_STREQ(left.c_str(), row.left);
        EXPECT_STREQ(right.c_str(), row.right);
        EXPECT_STREQ(both.c_str(), row.both);
    }
}

TEST(CheckedStringsTest, StuffDeletes) {
    const struct {
        uint32_t position, deleteCount;
        const wchar_t* expected;
    } kRows[] = {{2, 2, L"ad"},   {2, 100, L"a"},  {1, 4, L""},     {2, 0xFFFFFFFF, L"a"},
                 {5, 1, L"abcd"}, {6, 1, L"abcd"}, {0, 1, L"abcd"}, {3, 0, L"abcd"}};
    for (const auto& row : kRows) {
        for (const wchar_t* nothing : {static_cast<const wchar_t*>(nullptr), L""}) {
            wchar_t text[] = L"abcd";
            EXPECT_EQ(UtilStuff(text, row.position, row.deleteCount, nothing), text);
            EXPECT_STREQ(text, row.expected) << row.position << ' ' << row.deleteCount;
        }
    }
}

// Whether inserting ends with an access violation.
bool StuffFaults(wchar_t* text, uint32_t position) {
    __try {
        UtilStuff(text, position, 1, L"new");
    } __except (GetExceptionCode() == EXCEPTION_ACCESS_VIOLATION) {
        return true;
    }
    return false;
}

TEST(CheckedStringsTest, StuffRefusesToInsert) {
    wchar_t text[] = L"abcd";
    EXPECT_TRUE(StuffFaults(text, 2));
    EXPECT_STREQ(text, L"abcd");
    EXPECT_FALSE(StuffFaults(text, 9)); // there is no such place
    EXPECT_STREQ(text, L"abcd");
}

TEST(CheckedStringsTest, SubstrCutsInPlace) {
    const struct {
        int32_t start;
        uint32_t length;
        bool isFound;
        const wchar_t* expected;
    } kRows[] = {{2, 3, true, L"bcd"},
                 {1, 2, true, L"ab"},
                 {3, 0xFFFFFFFF, true, L"cdef"},
                 {6, 9, true, L"f"},
                 {2, 0, true, L""},
                 {0, 4, true, L""},
                 {7, 1, false, L""},
                 {-7, 1, false, L""},
                 {INT32_MIN, 1, false, L""},
                 {-1, 3, true, L"yza"},
                 // Bounded by what the text held.
                 {-1, 0xFFFFFFFF, true, L"yzabcd"}};
    for (const auto& row : kRows) {
        wchar_t buffer[] = L"xyzabcdef\0!!!!";
        wchar_t* const text = buffer + 3;
        EXPECT_EQ(UtilSubstr(text, row.start, row.length), row.isFound ? text : nullptr) << row.start;
        EXPECT_STREQ(text, row.expected) << row.start << ' ' << row.length;
        EXPECT_STREQ(buffer + 10, L"!!!!");
    }
}

TEST(CheckedStringsTest, SprintfCutsAndTerminates) {
    const struct {
        uint32_t capacity;
        int result;
        const wchar_t* expected;
    } kRows[] = {{20, 6, L"abc 12"}, {7, 6, L"abc 12"}, {6, -1, L"abc 1"}, {1, -1, L""}};
    for (const auto& row : kRows) {
        const GuardedPages pages;
        wchar_t* const text = pages.Last<wchar_t>(row.capacity);
        EXPECT_EQ(UtilSafeSprintf(text, row.capacity, L"%hs %d", "abc", 12), row.result);
        EXPECT_STREQ(text, row.expected);
    }
    EXPECT_EQ(UtilSafeSprintf(nullptr, 0, L"abc"), -1);
}

// With the switch on.
class ParameterCheckTest : public testing::Test {
protected:
    ParameterCheckTest() { parameterCheckSwitch = 1; }
    ~ParameterCheckTest() override { parameterCheckSwitch = 0; }

    GuardedPages pages;
    wchar_t* const small = std::wmemcpy(pages.Last<wchar_t>(3), L"ab", 3);
};

// What the calls below get: a text, a text with no room behind it, and a pointer to nothing.
struct CallArguments {
    wchar_t *good, *small, *wild;
};

TEST_F(ParameterCheckTest, NamesTheFirstBadParameterAndTouchesNothing) {
    static constexpr auto AsNumber = [](const void* pointer) { return reinterpret_cast<intptr_t>(pointer); };
    using A = const CallArguments&;
    const struct {
        const wchar_t *function, *parameter;
        intptr_t (*call)(A);
    } kRows[] = {
        {L"UtilStrcpy", L"Source", [](A a) { return AsNumber(UtilStrcpy(a.small, a.wild)); }},
        {L"UtilStrcpy", L"Destination", [](A a) { return AsNumber(UtilStrcpy(a.small, a.good)); }},
        {L"UtilStrcat", L"Source", [](A a) { return AsNumber(UtilStrcat(a.wild, a.wild)); }},
        {L"UtilStrcat", L"Destination", [](A a) { return AsNumber(UtilStrcat(a.small, a.good + 3)); }},
        {L"UtilStrncpy", L"Source", [](A a) { return AsNumber(UtilStrncpy(a.small, a.wild, 0)); }},
        {L"UtilStrncpy", L"Destination", [](A a) { return AsNumber(UtilStrncpy(a.small, a.good, 4)); }},
        {L"UtilStrcmp", L"Parameter1", [](A a) { return intptr_t{UtilStrcmp(a.wild, a.wild)}; }},
        {L"UtilStricmp", L"Parameter2", [](A a) { return intptr_t{UtilStricmp(a.good, a.wild)}; }},
        {L"UtilStrncmp", L"Parameter1", [](A a) { return intptr_t{UtilStrncmp(a.small, a.wild, 7)}; }},
        {L"UtilStrnicmp", L"Parameter2", [](A a) { return intptr_t{UtilStrnicmp(a.good, a.small, 7)}; }},
        {L"UtilVScanf", L"Parameter2", [](A a) { return AsNumber(UtilStrstr(a.good, a.wild)); }},
        {L"UtilStrchr", L"String", [](A a) { return AsNumber(UtilStrchr(a.wild, L'a')); }},
        {L"UtilStrrchr", L"String", [](A a) { return AsNumber(UtilStrrchr(a.wild, L'a')); }},
        {L"UtilStrlen", L"String", [](A a) { return static_cast<intptr_t>(UtilStrlen(a.wild)); }},
        {L"UtilMemcpy", L"Destination", [](A a) { return AsNumber(UtilMemcpy(a.small, a.wild, 4)); }},
        {L"UtilMemcpy", L"Source", [](A a) { return AsNumber(UtilMemcpy(a.good, a.small, 7)); }},
        {L"UtilMemset", L"Destination", [](A a) { return AsNumber(UtilMemset(a.small, 0, 7)); }},
        {L"UtilStuffA", L"Destination", [](A a) { return AsNumber(UtilStuff(a.wild, 1, 1, a.wild)); }},
        {L"UtilStuffA", L"Source", [](A a) { return AsNumber(UtilStuff(a.small, 1, 1, a.wild)); }},
        {L"UtilStuffA", L"Destination", [](A a) { return AsNumber(UtilStuff(a.small, 1, 1, L"abc")); }},
        {L"UtilSubstr", L"String", [](A a) { return AsNumber(UtilSubstr(a.wild, 1, 1)); }},
        {L"UtilSafeSprintf", L"Format", [](A a) { return intptr_t{UtilSafeSprintf(a.wild, 3, a.wild)}; }},
        {L"UtilSafeSprintf", L"Destination", [](A a) { return intptr_t{UtilSafeSprintf(a.small, 4, L"x")}; }},
    };
    wchar_t good[16] = L"good";
    for (const auto& row : kRows) {
        const DebugListener listener;
        const std::wstring banner =
            std::wstring(L"error in '") + row.function + L"': " + row.parameter + L"\n ptr=";
        EXPECT_EQ(row.call({good, small, static_cast<wchar_t*>(pages.Untouchable())}), 0) << banner;
        EXPECT_TRUE(listener.Heard(banner.c_str())) << banner;
        EXPECT_EQ(listener.Lines().size(), 2u) << banner; // the banner and its detail
        EXPECT_STREQ(small, L"ab") << banner;
        EXPECT_STREQ(good, L"good") << banner;
    }
}

TEST_F(ParameterCheckTest, TrimsReportUnderTheirOwnNames) {
    const DebugListener listener;
    UtilAtrim(static_cast<wchar_t*>(pages.Untouchable()));
    ASSERT_EQ(listener.Lines().size(), 4u);
    EXPECT_NE(listener.Lines()[0].find(L"error in 'UtilRtrim': String"), std::wstring::npos);
    EXPECT_NE(listener.Lines()[2].find(L"error in 'UtilLtrim': String"), std::wstring::npos);
    const GuardedPages readOnly(PAGE_READONLY);
    UtilRtrim(readOnly.Last<wchar_t>(1));
    EXPECT_NE(listener.Last().find(L"does not point to writeable memory at all"), std::wstring::npos);
}

TEST_F(ParameterCheckTest, GoodCallsDoTheirWorkInSilence) {
    const DebugListener listener;
    EXPECT_STREQ(UtilStrcpy(small, L"xy"), L"xy");
    EXPECT_STREQ(UtilStrncpy(small, L"longer", 3), L"lo");
    EXPECT_STREQ(UtilStrncpy(small, L"untouched", 0), L"lo");
    EXPECT_STREQ(UtilStrcat(UtilSubstr(small, 2, 1), L"k"), L"ok");
    EXPECT_STREQ(UtilStuff(small, 2, 100, nullptr), L"o");
    EXPECT_EQ(UtilSafeSprintf(small, 3, L"%d", 42), 2);
    EXPECT_EQ(UtilStrcmp(small, L"42"), 0);
    EXPECT_TRUE(listener.Lines().empty());
}

TEST_F(ParameterCheckTest, EmptiesTheDestinationBeforeItCopies) {
    wchar_t overlapping[] = L"abcd";
    UtilStrcpy(overlapping + 1, overlapping);
    EXPECT_STREQ(overlapping, L"aa"); // the source ended where the destination begins
    wchar_t same[] = L"abcd";
    EXPECT_STREQ(UtilStrcpy(same, same), L"abcd");
    EXPECT_STREQ(UtilStrncpy(same, same, 3), L"ab");
}

TEST_F(ParameterCheckTest, SprintfReportsTextsThatAreCutOrEmpty) {
    const struct {
        const wchar_t* format;
        int result;
    } kRows[] = {{L"cut off", -1}, {L"", 0}};
    for (const auto& row : kRows) {
        const DebugListener listener;
        EXPECT_EQ(UtilSafeSprintf(small, 3, row.format), row.result);
        EXPECT_TRUE(listener.Heard(L"UtilSafeSprintf: destination buffer too small\n"));
        EXPECT_EQ(listener.Lines().size(), 1u);
    }
}

} // namespace
} // namespace vxut
