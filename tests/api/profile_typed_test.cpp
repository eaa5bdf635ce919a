// Typed values: what is written, and what is made of a text when it is read.
#include "profile_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

namespace vxut::test {
namespace {

// The writers of one type.
template <class Argument>
struct Writers {
    void (*appendWide)(HPROF, HPROFLIST, const wchar_t*, Argument);
    void (*appendNarrow)(HPROF, HPROFLIST, const char*, Argument);
    void (*setWide)(HPROF, HPROFLIST, const wchar_t*, Argument);
    void (*setNarrow)(HPROF, HPROFLIST, const char*, Argument);

    void Expect(Argument value, const std::wstring& appended, const std::wstring& set) const {
        const Job job;
        appendWide(job, nullptr, L"l/v", value);
        appendNarrow(job, nullptr, "l/v", value);
        setWide(job, nullptr, L"w", value);
        setNarrow(job, nullptr, "n", value);
        setNarrow(nullptr, nullptr, "n", value);
        const std::wstring tree =
            L"l{v=" + appended + L";v=" + appended + L";}w=" + set + L";n=" + set + L";";
        EXPECT_EQ(TreeOf(job), tree);
        EXPECT_EQ(ProfGetStringLengthA(job, nullptr, "w"), static_cast<int32_t>(set.size()));
        setWide(job, nullptr, nullptr, value);
        appendNarrow(job, nullptr, nullptr, value);
        EXPECT_EQ(TreeOf(job), tree + L"=" + appended + L";") << "only an appended item may be nameless";
    }
};

TEST(ProfileTypedTest, WritersStoreTheirText) {
    constexpr POINT kPoint{-1, 2};
    constexpr RECT kRect{1, -2, 11, 18};
    const Writers<int> bools{ProfAppendBoolW, ProfAppendBoolA, ProfSetBoolW, ProfSetBoolA};
    bools.Expect(5, L"TRUE", L"TRUE");
    bools.Expect(0, L"FALSE", L"FALSE");
    const Writers<double> doubles{ProfAppendDoubleW, ProfAppendDoubleA, ProfSetDoubleW, ProfSetDoubleA};
    doubles.Expect(-0.25, L"-0.250000", L"-0.250000");
    const Writers<int32_t> ints{ProfAppendIntW, ProfAppendIntA, ProfSetIntW, ProfSetIntA};
    ints.Expect(INT32_MIN, L"-2147483648", L"-2147483648");
    const Writers<int32_t> hex{ProfAppendIntHexW, ProfAppendIntHexA, ProfSetIntHexW, ProfSetIntHexA};
    hex.Expect(255, L"x000000FF", L"xff");
    const Writers<int64_t> longs{ProfAppendInt64W, ProfAppendInt64A, ProfSetInt64W, ProfSetInt64A};
    longs.Expect(-1, L"18446744073709551615", L"18446744073709551615");
    const Writers<int64_t> longHex{ProfAppendInt64HexW, ProfAppendInt64HexA, ProfSetInt64HexW,
                                   ProfSetInt64HexA};
    longHex.Expect(0xABCDEF0123, L"xABCDEF0123", L"xabcdef0123");
    const Writers<const POINT*> points{ProfAppendPointW, ProfAppendPointA, ProfSetPointW, ProfSetPointA};
    points.Expect(&kPoint, L"(-1,2)", L"(-1,2)");
    const Writers<const RECT*> rects{ProfAppendRectW, ProfAppendRectA, ProfSetRectW, ProfSetRectA};
    rects.Expect(&kRect, L"(1,-2,11,18)", L"(1,-2,11,18)");
    const Writers<const RECT*> sizes{ProfAppendRectLTWHW, ProfAppendRectLTWHA, ProfSetRectLTWHW,
                                     ProfSetRectLTWHA};
    sizes.Expect(&kRect, L"(1,-2,10,20)", L"(1,-2,10,20)");
    const Writers<COLORREF> colors{ProfAppendColorrefW, ProfAppendColorrefA, ProfSetColorrefW,
                                   ProfSetColorrefA};
    colors.Expect(RGB(1, 2, 255), L"(1,2,255)", L"(1,2,255)");
    const Job job;
    ProfSetRectW(job, nullptr, L"none", nullptr);
    ProfAppendPointA(job, nullptr, "none", nullptr);
    EXPECT_EQ(TreeOf(job), L"") << "a null pointer does nothing";
    ProfSetDoubleW(job, nullptr, L"v", std::numeric_limits<double>::max());
    EXPECT_EQ(ValueOf(job, L"v").size(), 199u) << "what does not fit is cut";
}

// The numbers that a value consists of.
template <class Value>
std::wstring Text(const Value& value) {
    if constexpr (!std::is_class_v<Value>) {
        return std::to_wstring(value);
    } else {
        const auto* const fields = reinterpret_cast<const LONG*>(&value);
        std::wstring text;
        for (size_t i = 0; i < sizeof(Value) / sizeof(LONG); ++i) text += std::to_wstring(fields[i]) + L" ";
        return text;
    }
}

// A value whose fields are all one number.
template <class Value>
Value Filled(LONG number) {
    if constexpr (!std::is_class_v<Value>) return static_cast<Value>(number);
    LONG fields[sizeof(Value) / sizeof(LONG) + 1];
    std::fill(std::begin(fields), std::end(fields), number);
    return *reinterpret_cast<const Value*>(fields);
}

// What out holds after a call, if it held 77 and the default is 9. Records are passed by pointer.
template <class Value, class Default, class Call>
std::wstring OutOf(Call call) {
    auto out = Filled<Value>(77);
    const auto fallback = Filled<Value>(9);
    if constexpr (std::is_pointer_v<Default>)
        call(&out, &fallback);
    else
        call(&out, fallback);
    return Text(out);
}

using Rows = std::vector<std::pair<std::wstring, std::wstring>>; // a text, and the expected result

// expected is "<code>" if it is not PROF_OK, and what out holds.
template <class Unit, class Value, class Default>
void ExpectReadsOf(int32_t (*get)(HPROF, HPROFLIST, const Unit*, Value*, Default), const Rows& rows) {
    const Unit name[] = {'v', 0};
    for (const auto& [text, expected] : rows) {
        const Job job;
        ProfSetStringW(job, nullptr, L"v", text.c_str());
        int32_t result = PROF_OK;
        const auto call = [&](Value* out, Default fallback) {
            result = get(job, nullptr, name, out, fallback);
        };
        const std::wstring out = OutOf<Value, Default>(call);
        EXPECT_EQ(result ? L"<" + std::to_wstring(result) + L">" + out : out, expected) << text;
        EXPECT_EQ(get(job, nullptr, name, nullptr, Default{}), result) << "out may be null";
    }
}

template <class Value, class Default>
void ExpectReads(int32_t (*wide)(HPROF, HPROFLIST, const wchar_t*, Value*, Default),
                 int32_t (*narrow)(HPROF, HPROFLIST, const char*, Value*, Default), const Rows& rows) {
    ExpectReadsOf(wide, rows);
    ExpectReadsOf(narrow, rows);
}

TEST(ProfileTypedTest, GettersReadWhatTheyCan) {
    const std::wstring blanks(199, L' ');
    ExpectReads(ProfGetBoolW, ProfGetBoolA,
                {{L"TRUE", L"1"}, {L"Yes", L"1"}, {L"true", L"0"}, {L"1", L"0"}, {L" T", L"0"}});
    ExpectReads(ProfGetDoubleW, ProfGetDoubleA,
                {{L"1.5", L"1.500000"}, {L" -2e3x", L"-2000.000000"}, {L"none", L"0.000000"}});
    ExpectReads(ProfGetIntW, ProfGetIntA,
                {{L" +12", L"12"}, {L"-12rest", L"-12"}, {L"99999999999", L"1215752191"}});
    ExpectReads(ProfGetIntW, ProfGetIntA,
                {{L"xff", L"255"}, {L"x000000FF", L"255"}, {L"x 0x1F", L"31"}, {L"x-1", L"-1"}});
    // The text ends before its number: read, and nothing stored. Callers rely on it.
    ExpectReads(ProfGetIntW, ProfGetIntA, {{L"x", L"77"}, {L"x  ", L"77"}, {L"  ", L"77"}, {L"-", L"77"}});
    ExpectReads(ProfGetIntW, ProfGetIntA,
                {{L"xg", L"<-9>77"}, {L"Xff", L"<-9>77"}, {L"none", L"<-9>77"}, {L"", L"<-6>9"}});
    ExpectReads(ProfGetInt64W, ProfGetInt64A,
                {{L"18446744073709551615", L"-1"}, {L"-5", L"-5"}, {L"x", L"77"}});
    ExpectReads(ProfGetInt64W, ProfGetInt64A, {{L"x1abcdef0123", L"1837406028067"}, {L"none", L"<-9>77"}});
    // Only 199 units are looked at, and 63 for 64 bits.
    ExpectReads(ProfGetIntW, ProfGetIntA,
                {{std::wstring(195, L'0') + L"1234567", L"1234"}, {blanks + L"5", L"77"}});
    ExpectReads(ProfGetInt64W, ProfGetInt64A, {{std::wstring(60, L'0') + L"123456", L"123"}});
    ExpectReads(ProfGetColorrefW, ProfGetColorrefA,
                {{L"( 1, 2, 3", L"197121"}, {L"x12345678", L"305419896"}, {L"x", L"77"}});
    ExpectReads(ProfGetColorrefW, ProfGetColorrefA,
                {{L"(1,2)", L"<-9>77"}, {L"(1 ,2,3)", L"<-9>77"}, {L"  ", L"<-9>77"}});
    ExpectReads(ProfGetPointW, ProfGetPointA,
                {{L"(3, 4", L"3 4 "}, {L"(3;4)", L"<-9>3 77 "}, {L"3,4", L"<-9>77 77 "}});
    ExpectReads(ProfGetRectW, ProfGetRectA, {{L"(1,2,3)", L"<-9>1 2 3 77 "}});
    ExpectReads(ProfGetRectLTWHW, ProfGetRectLTWHA,
                {{L"(1,-2,10,20)", L"1 -2 11 18 "}, {L"", L"<-6>9 9 9 9 "}});
    ExpectReads(ProfGetRectLTWHW, ProfGetRectLTWHA,
                {{L"(2147483647,0,1,0)", L"2147483647 0 -2147483648 0 "}});
}

template <class Unit, class Value, class Default>
void ExpectParsesOf(void (*parse)(const Unit*, Value*, Default), const Rows& rows) {
    for (const auto& [text, expected] : rows) {
        const std::basic_string<Unit> own(text.begin(), text.end());
        const auto call = [&](Value* out, Default fallback) { parse(own.c_str(), out, fallback); };
        EXPECT_EQ((OutOf<Value, Default>(call)), expected) << text;
    }
    parse(nullptr, nullptr, Default{});
}

template <class Value, class Default>
void ExpectParses(void (*wide)(const wchar_t*, Value*, Default), void (*narrow)(const char*, Value*, Default),
                  const Rows& rows) {
    ExpectParsesOf(wide, rows);
    ExpectParsesOf(narrow, rows);
}

TEST(ProfileParseTest, TextsOfTheCaller) {
    ExpectParses(ProfLPSTRtoBOOLW, ProfLPSTRtoBOOLA, {{L"", L"1"}, {L"TRUE", L"1"}, {L"yes", L"0"}});
    ExpectParses(ProfLPSTRtoINTW, ProfLPSTRtoINTA, {{L"", L"9"}, {L"-12", L"-12"}, {L"x1F", L"9"}});
    ExpectParses(ProfLPSTRtoINT64W, ProfLPSTRtoINT64A, {{L"4294967297", L"4294967297"}, {L"x1F", L"9"}});
    ExpectParses(ProfLPSTRtoCOLORREFW, ProfLPSTRtoCOLORREFA,
                 {{L"x1F", L"31"}, {L"x", L"9"}, {L"(1,2", L"9"}});
    ExpectParses(ProfLPSTRtoRECTW, ProfLPSTRtoRECTA, {{L"(1,2,3,4", L"1 2 3 4 "}, {L"(1,2,3)", L"9 9 9 9 "}});
}

} // namespace
} // namespace vxut::test
