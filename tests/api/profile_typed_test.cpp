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

TEST(ProfileTypedTest, WritersStoreTheirText) {
    constexpr POINT kPoint{-1, 2};
    constexpr RECT kRect{1, -2, 11, 18};
    const Job job;
    ProfAppendBoolW(job, nullptr, L"Bool", 5);
    ProfSetBoolA(job, nullptr, "bool", 0);
    ProfSetDoubleA(job, nullptr, "double", -0.25);
    ProfAppendIntW(job, nullptr, L"Int", -7);
    ProfSetIntA(job, nullptr, "int", INT32_MIN);
    ProfAppendIntHexW(job, nullptr, L"Hex", 255);
    ProfSetIntHexA(job, nullptr, "hex", 255);
    ProfAppendInt64W(job, nullptr, L"Int64", -1);
    ProfSetInt64A(job, nullptr, "int64", 5'000'000'000);
    ProfAppendInt64HexW(job, nullptr, L"Hex64", 0xABCDEF0123);
    ProfSetInt64HexA(job, nullptr, "hex64", 0xABCDEF0123);
    ProfSetPointA(job, nullptr, "point", &kPoint);
    ProfAppendRectA(job, nullptr, "Rect", &kRect);
    ProfSetRectLTWHW(job, nullptr, L"rect", &kRect);
    ProfAppendColorrefW(job, nullptr, L"Color", RGB(1, 2, 255));
    ProfSetRectW(job, nullptr, L"none", nullptr);
    ProfSetIntW(job, nullptr, L"Int", -8);
    EXPECT_EQ(TreeOf(job),
              L"Bool=TRUE;bool=FALSE;double=-0.250000;Int=-8;int=-2147483648;Hex=x000000FF;hex=xff;"
              L"Int64=18446744073709551615;int64=5000000000;Hex64=xABCDEF0123;hex64=xabcdef0123;"
              L"point=(-1,2);Rect=(1,-2,11,18);rect=(1,-2,10,20);Color=(1,2,255);");
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

using Rows = std::vector<std::pair<std::wstring, std::wstring>>; // a text, and what is told of it

// Told is "<code>" if it is not PROF_OK, and what out holds.
template <class Unit, class Value, class Default>
void ExpectReads(int32_t (*get)(HPROF, HPROFLIST, const Unit*, Value*, Default), const Rows& rows) {
    const Unit name[] = {'v', 0};
    for (const auto& [text, told] : rows) {
        const Job job;
        ProfSetStringW(job, nullptr, L"v", text.c_str());
        int32_t result = PROF_OK;
        const auto call = [&](Value* out, Default fallback) {
            result = get(job, nullptr, name, out, fallback);
        };
        const std::wstring out = OutOf<Value, Default>(call);
        EXPECT_EQ(result ? L"<" + std::to_wstring(result) + L">" + out : out, told) << text;
        EXPECT_EQ(get(job, nullptr, name, nullptr, Default{}), result) << "out may be null";
    }
}

TEST(ProfileTypedTest, GettersReadWhatTheyCan) {
    const std::wstring blanks(199, L' ');
    ExpectReads(ProfGetBoolW,
                {{L"TRUE", L"1"}, {L"Yes", L"1"}, {L"true", L"0"}, {L"1", L"0"}, {L" T", L"0"}});
    ExpectReads(ProfGetDoubleW,
                {{L"1.5", L"1.500000"}, {L" -2e3x", L"-2000.000000"}, {L"none", L"0.000000"}});
    ExpectReads(ProfGetIntW, {{L" +12", L"12"}, {L"-12rest", L"-12"}, {L"99999999999", L"1215752191"}});
    ExpectReads(ProfGetIntW, {{L"xff", L"255"}, {L"x000000FF", L"255"}, {L"x 0x1F", L"31"}, {L"x-1", L"-1"}});
    // The text ends before its number: read, and nothing stored. Callers rely on it.
    ExpectReads(ProfGetIntW, {{L"x", L"77"}, {L"x  ", L"77"}, {L"  ", L"77"}, {L"-", L"77"}});
    ExpectReads(ProfGetIntW,
                {{L"xg", L"<-9>77"}, {L"Xff", L"<-9>77"}, {L"none", L"<-9>77"}, {L"", L"<-6>9"}});
    ExpectReads(ProfGetInt64W, {{L"18446744073709551615", L"-1"}, {L"-5", L"-5"}, {L"x", L"77"}});
    ExpectReads(ProfGetInt64W, {{L"x1abcdef0123", L"1837406028067"}, {L"none", L"<-9>77"}});
    // Only 199 units are looked at, and 63 for 64 bits.
    ExpectReads(ProfGetIntW, {{std::wstring(195, L'0') + L"1234567", L"1234"}, {blanks + L"5", L"77"}});
    ExpectReads(ProfGetInt64W, {{std::wstring(60, L'0') + L"123456", L"123"}});
    ExpectReads(ProfGetColorrefW, {{L"( 1, 2, 3", L"197121"}, {L"x12345678", L"305419896"}, {L"x", L"77"}});
    ExpectReads(ProfGetColorrefW, {{L"(1,2)", L"<-9>77"}, {L"(1 ,2,3)", L"<-9>77"}, {L"  ", L"<-9>77"}});
    ExpectReads(ProfGetPointW, {{L"(3, 4", L"3 4 "}, {L"(3;4)", L"<-9>3 77 "}, {L"3,4", L"<-9>77 77 "}});
    ExpectReads(ProfGetRectW, {{L"(1,2,3)", L"<-9>1 2 3 77 "}});
    ExpectReads(ProfGetRectLTWHW, {{L"(1,-2,10,20)", L"1 -2 11 18 "}, {L"", L"<-6>9 9 9 9 "}});
    ExpectReads(ProfGetRectLTWHW, {{L"(2147483647,0,1,0)", L"2147483647 0 -2147483648 0 "}});
    ExpectReads(ProfGetIntA, {{L"x10", L"16"}, {L"", L"<-6>9"}});
}

template <class Unit, class Value, class Default>
void ExpectParses(void (*parse)(const Unit*, Value*, Default), const Rows& rows) {
    for (const auto& [text, told] : rows) {
        const std::basic_string<Unit> own(text.begin(), text.end());
        const auto call = [&](Value* out, Default fallback) { parse(own.c_str(), out, fallback); };
        EXPECT_EQ((OutOf<Value, Default>(call)), told) << text;
    }
    parse(nullptr, nullptr, Default{});
}

TEST(ProfileParseTest, TextsOfTheCaller) {
    ExpectParses(ProfLPSTRtoBOOLW, {{L"", L"1"}, {L"TRUE", L"1"}, {L"yes", L"0"}});
    ExpectParses(ProfLPSTRtoINTW, {{L"", L"9"}, {L"-12", L"-12"}, {L"x1F", L"9"}});
    ExpectParses(ProfLPSTRtoINT64A, {{L"4294967297", L"4294967297"}, {L"x1F", L"9"}});
    ExpectParses(ProfLPSTRtoCOLORREFW, {{L"x1F", L"31"}, {L"x", L"9"}, {L"(1,2", L"9"}});
    ExpectParses(ProfLPSTRtoRECTA, {{L"(1,2,3,4", L"1 2 3 4 "}, {L"(1,2,3)", L"9 9 9 9 "}});
}

} // namespace
} // namespace vxut::test
