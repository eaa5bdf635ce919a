// Typed values: what is written, and what is made of a text when it is read.
#include "profile_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vxut::test {
namespace {

constexpr POINT kPoint{-1, 2};
constexpr RECT kRect{1, -2, 11, 18};

TEST(ProfileTypedTest, WritersStoreTheirText) {
    const Job job;
    ProfAppendBoolW(job, nullptr, L"Bool", 5);
    ProfSetBoolA(job, nullptr, "bool", 0);
    ProfAppendDoubleW(job, nullptr, L"Double", 1.5);
    ProfSetDoubleA(job, nullptr, "double", -0.25);
    ProfAppendIntW(job, nullptr, L"Int", -7);
    ProfSetIntA(job, nullptr, "int", INT32_MIN);
    ProfAppendIntHexW(job, nullptr, L"Hex", 255);
    ProfSetIntHexA(job, nullptr, "hex", 255);
    ProfAppendInt64W(job, nullptr, L"Int64", -1);
    ProfSetInt64A(job, nullptr, "int64", 5'000'000'000);
    ProfAppendInt64HexW(job, nullptr, L"Hex64", 0xABCDEF0123);
    ProfSetInt64HexA(job, nullptr, "hex64", 0xABCDEF0123);
    ProfAppendPointW(job, nullptr, L"Point", &kPoint);
    ProfSetPointA(job, nullptr, "point", &kPoint);
    ProfAppendRectA(job, nullptr, "Rect", &kRect);
    ProfSetRectLTWHW(job, nullptr, L"rect", &kRect);
    ProfAppendColorrefW(job, nullptr, L"Color", RGB(1, 2, 255));
    ProfSetRectW(job, nullptr, L"none", nullptr);
    ProfAppendPointW(job, nullptr, L"none", nullptr);
    EXPECT_EQ(TreeOf(job),
              L"Bool=TRUE;bool=FALSE;Double=1.500000;double=-0.250000;Int=-7;int=-2147483648;"
              L"Hex=x000000FF;hex=xff;Int64=18446744073709551615;int64=5000000000;"
              L"Hex64=xABCDEF0123;hex64=xabcdef0123;Point=(-1,2);point=(-1,2);"
              L"Rect=(1,-2,11,18);rect=(1,-2,10,20);Color=(1,2,255);");
    ProfSetDoubleW(job, nullptr, L"v", std::numeric_limits<double>::max());
    EXPECT_EQ(ValueOf(job, L"v").size(), 199u) << "what does not fit is cut";
}

TEST(ProfileTypedTest, SetReplacesTheFirstAndAppendAdds) {
    const Job job;
    for (const int32_t value : {1, 2}) ProfAppendIntW(job, nullptr, L"l/v", value);
    ProfSetIntW(job, nullptr, L"l/v", 3);
    ProfSetIntW(job, nullptr, nullptr, 4);
    ProfSetIntW(job, nullptr, L"l/w", 5);
    EXPECT_EQ(TreeOf(job), L"l{v=3;v=2;w=5;}");
}

// A value whose fields are all one number.
template <class Value>
Value Filled(LONG number) {
    if constexpr (!std::is_class_v<Value>) return static_cast<Value>(number);
    LONG fields[sizeof(Value) / sizeof(LONG) + 1];
    std::fill(std::begin(fields), std::end(fields), number);
    return *reinterpret_cast<const Value*>(fields);
}

template <class Value>
std::wstring Text(const Value& value) {
    if constexpr (std::is_class_v<Value>) {
        const auto* const fields = reinterpret_cast<const LONG*>(&value);
        std::wstring text;
        for (size_t i = 0; i < sizeof(Value) / sizeof(LONG); ++i) text += std::to_wstring(fields[i]) + L" ";
        return text;
    } else {
        return std::to_wstring(value);
    }
}

// Records go to the library by pointer, plain values as they are.
template <class Default, class Value>
Default AsDefault(const Value& value) {
    if constexpr (std::is_pointer_v<Default>)
        return &value;
    else
        return value;
}

constexpr LONG kBefore = 77; // what out holds before a call
constexpr LONG kDefault = 9;

// What a getter makes of item "v": "<code>" if it is not PROF_OK, and what out holds.
template <class Unit, class Value, class Default>
std::wstring Read(int32_t (*get)(HPROF, HPROFLIST, const Unit*, Value*, Default), HPROF job) {
    const Unit name[] = {'v', 0};
    auto out = Filled<Value>(kBefore);
    const auto fallback = Filled<Value>(kDefault);
    const int32_t result = get(job, nullptr, name, &out, AsDefault<Default>(fallback));
    EXPECT_EQ(get(job, nullptr, name, nullptr, AsDefault<Default>(fallback)), result) << "out may be null";
    return (result == PROF_OK ? L"" : L"<" + std::to_wstring(result) + L">") + Text(out);
}

using Reader = std::wstring (*)(HPROF);
constexpr Reader kBool = [](HPROF job) { return Read(ProfGetBoolW, job); };
constexpr Reader kDouble = [](HPROF job) { return Read(ProfGetDoubleW, job); };
constexpr Reader kInt = [](HPROF job) { return Read(ProfGetIntW, job); };
constexpr Reader kInt64 = [](HPROF job) { return Read(ProfGetInt64W, job); };
constexpr Reader kColor = [](HPROF job) { return Read(ProfGetColorrefW, job); };
constexpr Reader kNarrowInt = [](HPROF job) { return Read(ProfGetIntA, job); };
constexpr Reader kNarrowRect = [](HPROF job) { return Read(ProfGetRectLTWHA, job); };
constexpr Reader kReadPoint = [](HPROF job) { return Read(ProfGetPointW, job); };
constexpr Reader kReadRect = [](HPROF job) { return Read(ProfGetRectW, job); };
constexpr Reader kSized = [](HPROF job) { return Read(ProfGetRectLTWHW, job); };

TEST(ProfileTypedTest, GettersReadWhatTheyCan) {
    const std::wstring blanks(199, L' ');
    const struct {
        Reader read;
        std::vector<std::pair<std::wstring, std::wstring>> textsAndWhatIsTold;
    } kCases[] = {
        {kBool,
         {{L"TRUE", L"1"}, {L"Yes", L"1"}, {L"T", L"1"}, {L"true", L"0"}, {L"1", L"0"}, {L" T", L"0"}}},
        {kDouble, {{L"1.5", L"1.500000"}, {L" -2e3x", L"-2000.000000"}, {L"none", L"0.000000"}}},
        {kInt, {{L"12", L"12"}, {L" +12", L"12"}, {L"-12rest", L"-12"}, {L"99999999999", L"1215752191"}}},
        {kInt, {{L"xff", L"255"}, {L"x000000FF", L"255"}, {L"x 0x1F", L"31"}, {L"x-1", L"-1"}}},
        // The text ends before its number: read, and nothing stored. Callers rely on it.
        {kInt, {{L"x", L"77"}, {L"x  ", L"77"}, {L"  ", L"77"}, {L"-", L"77"}}},
        {kInt, {{L"xg", L"<-9>77"}, {L"Xff", L"<-9>77"}, {L"none", L"<-9>77"}, {L"", L"<-6>9"}}},
        {kInt64, {{L"18446744073709551615", L"-1"}, {L"-5", L"-5"}, {L"x", L"77"}, {L"none", L"<-9>77"}}},
        {kInt64, {{L"x1abcdef0123", L"1837406028067"}, {L"xFFFFFFFFFFFFFFFF", L"-1"}}},
        // Only 199 units are looked at, and 63 for 64 bits.
        {kInt, {{std::wstring(195, L'0') + L"1234567", L"1234"}, {blanks + L"5", L"77"}}},
        {kInt64, {{std::wstring(60, L'0') + L"123456", L"123"}}},
        {kColor, {{L"(1,2,255)", L"16712193"}, {L"( 1, 2, 3", L"197121"}, {L"x12345678", L"305419896"}}},
        {kColor, {{L"x", L"77"}, {L"(1,2)", L"<-9>77"}, {L"(1 ,2,3)", L"<-9>77"}, {L"  ", L"<-9>77"}}},
        {kReadPoint, {{L"(-3,4)", L"-3 4 "}, {L"(3, 4", L"3 4 "}, {L"(3;4)", L"<-9>3 77 "}}},
        {kReadPoint, {{L"3,4", L"<-9>77 77 "}, {L"(", L"<-9>77 77 "}, {L"", L"<-6>9 9 "}}},
        {kReadRect, {{L"(1,-2,10,20)", L"1 -2 10 20 "}, {L"(1,2,3)", L"<-9>1 2 3 77 "}}},
        {kSized, {{L"(1,-2,10,20)", L"1 -2 11 18 "}, {L"(1,2,3)", L"<-9>1 2 3 77 "}, {L"", L"<-6>9 9 9 9 "}}},
        {kSized, {{L"(2147483647,0,1,0)", L"2147483647 0 -2147483648 0 "}}},
        {kNarrowInt, {{L"x10", L"16"}, {L"", L"<-6>9"}}},
        {kNarrowRect, {{L"(1,-2,10,20)", L"1 -2 11 18 "}}},
    };
    for (const auto& row : kCases) {
        for (const auto& [text, told] : row.textsAndWhatIsTold) {
            const Job job;
            ProfSetStringW(job, nullptr, L"v", text.c_str());
            EXPECT_EQ(row.read(job), told) << text;
        }
    }
    POINT out{77, 77};
    EXPECT_EQ(ProfGetPointA(nullptr, nullptr, "v", &out, nullptr), PROF_ERR_NOT_FOUND);
    EXPECT_EQ(out.x, 77) << "no default leaves out alone";
}

// What a parser makes of a text: the same in both forms.
template <class Value, class Default>
std::wstring Parse(void (*wide)(const wchar_t*, Value*, Default),
                   void (*narrow)(const char*, Value*, Default), const wchar_t* text) {
    const std::string bytes = text ? std::string(text, text + wcslen(text)) : "";
    auto out = Filled<Value>(kBefore);
    auto narrowOut = Filled<Value>(kBefore);
    const auto fallback = Filled<Value>(kDefault);
    wide(text, &out, AsDefault<Default>(fallback));
    narrow(text ? bytes.c_str() : nullptr, &narrowOut, AsDefault<Default>(fallback));
    EXPECT_EQ(Text(out), Text(narrowOut));
    return Text(out);
}

TEST(ProfileParseTest, TextsOfTheCaller) {
    const wchar_t* const kNone = L"9 9 9 9 ";
    const std::array<const wchar_t*, 6> kCases[] = {
        // text, bool, int, int64, color, rectangle
        {nullptr, L"9", L"9", L"9", L"9", kNone},
        {L"", L"1", L"9", L"9", L"9", kNone}, // an empty text is TRUE
        {L"TRUE", L"1", L"9", L"9", L"9", kNone},
        {L"yes", L"0", L"9", L"9", L"9", kNone},
        {L"-12", L"0", L"-12", L"-12", L"9", kNone},
        {L"4294967297", L"0", L"1", L"4294967297", L"9", kNone},
        {L"x1F", L"0", L"9", L"9", L"31", kNone},
        {L"x", L"0", L"9", L"9", L"9", kNone},
        {L"(1,2,3)", L"0", L"9", L"9", L"197121", kNone},
        {L"(1,2,3,4", L"0", L"9", L"9", L"197121", L"1 2 3 4 "},
        {L"(1,2", L"0", L"9", L"9", L"9", kNone}};
    for (const auto& [text, boolean, number, number64, color, rect] : kCases) {
        SCOPED_TRACE(testing::Message() << (text ? text : L"null"));
        EXPECT_EQ(Parse(ProfLPSTRtoBOOLW, ProfLPSTRtoBOOLA, text), boolean);
        EXPECT_EQ(Parse(ProfLPSTRtoINTW, ProfLPSTRtoINTA, text), number);
        EXPECT_EQ(Parse(ProfLPSTRtoINT64W, ProfLPSTRtoINT64A, text), number64);
        EXPECT_EQ(Parse(ProfLPSTRtoCOLORREFW, ProfLPSTRtoCOLORREFA, text), color);
        EXPECT_EQ(Parse(ProfLPSTRtoRECTW, ProfLPSTRtoRECTA, text), rect);
    }
    RECT out{77, 77, 77, 77};
    ProfLPSTRtoRECTA("(1,2,3)", &out, nullptr);
    EXPECT_EQ(out.left, 77);
    ProfLPSTRtoRECTA("(1,2,3,4)", nullptr, nullptr);
}

} // namespace
} // namespace vxut::test
