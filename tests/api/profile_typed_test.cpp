// Typed values: what is written, and what is made of a text when it is read.
#include "profile_support.h"

#include <gtest/gtest.h>

#include <clocale>
#include <limits>

namespace vxut::test {
namespace {

constexpr POINT kPoint{-1, 2};
constexpr RECT kRect{1, -2, 11, 18};

TEST(ProfileTypedTest, WritersStoreTheirText) {
    const struct {
        void (*write)(HPROF job);
        const wchar_t* text;
    } kCases[] = {
        {[](HPROF j) { ProfAppendBoolW(j, nullptr, L"v", 5); }, L"TRUE"},
        {[](HPROF j) { ProfSetBoolA(j, nullptr, "v", 0); }, L"FALSE"},
        {[](HPROF j) { ProfAppendDoubleW(j, nullptr, L"v", 1.5); }, L"1.500000"},
        {[](HPROF j) { ProfSetDoubleA(j, nullptr, "v", -0.25); }, L"-0.250000"},
        {[](HPROF j) { ProfAppendIntW(j, nullptr, L"v", -7); }, L"-7"},
        {[](HPROF j) { ProfSetIntA(j, nullptr, "v", INT32_MIN); }, L"-2147483648"},
        {[](HPROF j) { ProfAppendIntHexW(j, nullptr, L"v", 255); }, L"x000000FF"},
        {[](HPROF j) { ProfSetIntHexW(j, nullptr, L"v", 255); }, L"xff"},
        {[](HPROF j) { ProfSetIntHexA(j, nullptr, "v", 0); }, L"x0"},
        {[](HPROF j) { ProfAppendIntHexA(j, nullptr, "v", -1); }, L"xFFFFFFFF"},
        {[](HPROF j) { ProfAppendInt64W(j, nullptr, L"v", -1); }, L"18446744073709551615"},
        {[](HPROF j) { ProfSetInt64A(j, nullptr, "v", 5'000'000'000); }, L"5000000000"},
        {[](HPROF j) { ProfAppendInt64HexW(j, nullptr, L"v", 0xABCDEF0123); }, L"xABCDEF0123"},
        {[](HPROF j) { ProfSetInt64HexA(j, nullptr, "v", 0xABCDEF0123); }, L"xabcdef0123"},
        {[](HPROF j) { ProfAppendPointW(j, nullptr, L"v", &kPoint); }, L"(-1,2)"},
        {[](HPROF j) { ProfSetPointA(j, nullptr, "v", &kPoint); }, L"(-1,2)"},
        {[](HPROF j) { ProfAppendRectW(j, nullptr, L"v", &kRect); }, L"(1,-2,11,18)"},
        {[](HPROF j) { ProfSetRectA(j, nullptr, "v", &kRect); }, L"(1,-2,11,18)"},
        {[](HPROF j) { ProfAppendRectLTWHW(j, nullptr, L"v", &kRect); }, L"(1,-2,10,20)"},
        {[](HPROF j) { ProfSetRectLTWHA(j, nullptr, "v", &kRect); }, L"(1,-2,10,20)"},
        {[](HPROF j) { ProfAppendColorrefW(j, nullptr, L"v", RGB(1, 2, 255)); }, L"(1,2,255)"},
        {[](HPROF j) { ProfSetColorrefA(j, nullptr, "v", RGB(1, 2, 255)); }, L"(1,2,255)"},
        {[](HPROF j) { ProfSetRectW(j, nullptr, L"v", nullptr); }, L"<-6>"},
        {[](HPROF j) { ProfAppendPointW(j, nullptr, L"v", nullptr); }, L"<-6>"},
    };
    for (const auto& row : kCases) {
        const Job job;
        row.write(job);
        EXPECT_EQ(ValueOf(job, L"v"), row.text);
    }
}

TEST(ProfileTypedTest, ADoubleThatDoesNotFitIsCut) {
    const Job job;
    ProfSetDoubleW(job, nullptr, L"v", std::numeric_limits<double>::max());
    const std::wstring text = ValueOf(job, L"v");
    EXPECT_EQ(text.size(), 199u);
    EXPECT_EQ(text.substr(0, 8), L"17976931");
}

TEST(ProfileTypedTest, SetReplacesTheFirstAndAppendAdds) {
    const Job job;
    ProfAppendIntW(job, nullptr, L"l/v", 1);
    ProfAppendIntW(job, nullptr, L"l/v", 2);
    ProfSetIntW(job, nullptr, L"l/v", 3);
    ProfSetIntW(job, nullptr, nullptr, 4);
    ProfSetIntW(job, nullptr, L"l/w", 5);
    EXPECT_EQ(TreeOf(job), L"l{v=3;v=2;w=5;}");
}

constexpr int kDefault = -99; // what out holds before the call is 77

template <class Value>
using Getter = int32_t (*)(HPROF, HPROFLIST, const wchar_t*, Value*, Value);

template <class Value>
struct ReadCase {
    std::wstring text;
    int32_t result;
    Value out;
};

template <class Value>
void ExpectReads(Getter<Value> get, const std::vector<ReadCase<Value>>& cases) {
    for (const auto& row : cases) {
        const Job job;
        ProfSetStringW(job, nullptr, L"v", row.text.c_str());
        Value out = 77;
        EXPECT_EQ(get(job, nullptr, L"v", &out, static_cast<Value>(kDefault)), row.result) << row.text;
        EXPECT_EQ(out, row.out) << row.text;
        EXPECT_EQ(get(job, nullptr, L"v", nullptr, 0), row.result) << "out may be null";
    }
    const Job job;
    ProfCreateListW(job, nullptr, L"list");
    for (const HPROF handle : {static_cast<HPROF>(job), static_cast<HPROF>(nullptr)}) {
        Value out = 77;
        EXPECT_EQ(get(handle, nullptr, L"list", &out, static_cast<Value>(kDefault)), PROF_ERR_NOT_FOUND);
        EXPECT_EQ(out, static_cast<Value>(kDefault));
    }
}

TEST(ProfileTypedTest, ReadsBools) {
    ExpectReads<int>(ProfGetBoolW, {{L"TRUE", PROF_OK, 1},
                                    {L"Yes", PROF_OK, 1},
                                    {L"T", PROF_OK, 1},
                                    {L"true", PROF_OK, 0},
                                    {L"yes", PROF_OK, 0},
                                    {L"1", PROF_OK, 0},
                                    {L" T", PROF_OK, 0},
                                    {L"", PROF_ERR_NOT_FOUND, kDefault}});
}

TEST(ProfileTypedTest, ReadsDoubles) {
    ExpectReads<double>(ProfGetDoubleW, {{L"1.5", PROF_OK, 1.5},
                                         {L" -2e3x", PROF_OK, -2000},
                                         {L"none", PROF_OK, 0},
                                         {L"", PROF_ERR_NOT_FOUND, kDefault}});
}

TEST(ProfileTypedTest, ReadsInts) {
    const std::wstring longZeros(195, L'0');
    ExpectReads<int32_t>(ProfGetIntW, {{L"12", PROF_OK, 12},
                                       {L" +12", PROF_OK, 12},
                                       {L"-12rest", PROF_OK, -12},
                                       {L"xff", PROF_OK, 255},
                                       {L"x000000FF", PROF_OK, 255},
                                       {L"x 0x1F", PROF_OK, 31},
                                       {L"x-1", PROF_OK, -1},
                                       {L"99999999999", PROF_OK, 1215752191},
                                       // The text ends before its number: read, and nothing stored.
                                       {L"x", PROF_OK, 77},
                                       {L"x  ", PROF_OK, 77},
                                       {L"  ", PROF_OK, 77},
                                       {L"-", PROF_OK, 77},
                                       {L"xg", PROF_ERR_VALUE, 77},
                                       {L"Xff", PROF_ERR_VALUE, 77},
                                       {L"none", PROF_ERR_VALUE, 77},
                                       // Only 199 units are looked at.
                                       {longZeros + L"1234567", PROF_OK, 1234},
                                       {std::wstring(199, L' ') + L"5", PROF_OK, 77},
                                       {L"", PROF_ERR_NOT_FOUND, kDefault}});
}

TEST(ProfileTypedTest, ReadsInt64s) {
    ExpectReads<int64_t>(ProfGetInt64W, {{L"18446744073709551615", PROF_OK, -1},
                                         {L"-5", PROF_OK, -5},
                                         {L"xFFFFFFFFFFFFFFFF", PROF_OK, -1},
                                         {L"x1abcdef0123", PROF_OK, 0x1ABCDEF0123},
                                         {L"x", PROF_OK, 77},
                                         {L" ", PROF_OK, 77},
                                         {L"none", PROF_ERR_VALUE, 77},
                                         // Only 63 units are looked at.
                                         {std::wstring(60, L'0') + L"123456", PROF_OK, 123},
                                         {L"", PROF_ERR_NOT_FOUND, kDefault}});
}

TEST(ProfileTypedTest, ReadsColors) {
    ExpectReads<COLORREF>(ProfGetColorrefW, {{L"(1,2,255)", PROF_OK, RGB(1, 2, 255)},
                                             {L"( 1, 2, 3", PROF_OK, RGB(1, 2, 3)},
                                             {L"x12345678", PROF_OK, 0x12345678},
                                             {L"x", PROF_OK, 77},
                                             {L"(1,2)", PROF_ERR_VALUE, 77},
                                             {L"(1 ,2,3)", PROF_ERR_VALUE, 77},
                                             {L"  ", PROF_ERR_VALUE, 77},
                                             {L"", PROF_ERR_NOT_FOUND, static_cast<COLORREF>(kDefault)}});
}

TEST(ProfileTypedTest, ReadsPoints) {
    const struct {
        const wchar_t* text;
        int32_t result;
        POINT out;
    } kCases[] = {{L"(-3,4)", PROF_OK, {-3, 4}},       {L"(3, 4", PROF_OK, {3, 4}},
                  {L"(3;4)", PROF_ERR_VALUE, {3, 77}}, // as far as parsed
                  {L"3,4", PROF_ERR_VALUE, {77, 77}},  {L"(", PROF_ERR_VALUE, {77, 77}},
                  {L"", PROF_ERR_NOT_FOUND, {5, 6}}};
    const POINT fallback{5, 6};
    for (const auto& row : kCases) {
        const Job job;
        ProfSetStringW(job, nullptr, L"v", row.text);
        POINT out{77, 77};
        EXPECT_EQ(ProfGetPointW(job, nullptr, L"v", &out, &fallback), row.result) << row.text;
        EXPECT_EQ(out.x, row.out.x) << row.text;
        EXPECT_EQ(out.y, row.out.y) << row.text;
    }
    POINT out{77, 77};
    EXPECT_EQ(ProfGetPointA(nullptr, nullptr, "v", &out, nullptr), PROF_ERR_NOT_FOUND);
    EXPECT_EQ(out.x, 77) << "no default leaves out alone";
}

TEST(ProfileTypedTest, ReadsRectanglesBothWays) {
    const struct {
        const wchar_t* text;
        int32_t result;
        RECT plain;
        RECT sized;
    } kCases[] = {{L"(1,-2,10,20)", PROF_OK, {1, -2, 10, 20}, {1, -2, 11, 18}},
                  {L"(2147483647,0,1,0)", PROF_OK, {INT32_MAX, 0, 1, 0}, {INT32_MAX, 0, INT32_MIN, 0}},
                  {L"(1,2,3)", PROF_ERR_VALUE, {1, 2, 3, 77}, {1, 2, 3, 77}}, // without the additions
                  {L"", PROF_ERR_NOT_FOUND, {5, 6, 7, 8}, {5, 6, 7, 8}}};
    const RECT fallback{5, 6, 7, 8};
    const auto expect = [](const RECT& out, const RECT& wanted, const wchar_t* text) {
        EXPECT_TRUE(EqualRect(&out, &wanted))
            << text << ": " << out.left << "," << out.top << "," << out.right << "," << out.bottom;
    };
    for (const auto& row : kCases) {
        const Job job;
        ProfSetStringW(job, nullptr, L"v", row.text);
        RECT out{77, 77, 77, 77};
        EXPECT_EQ(ProfGetRectW(job, nullptr, L"v", &out, &fallback), row.result) << row.text;
        expect(out, row.plain, row.text);
        out = {77, 77, 77, 77};
        EXPECT_EQ(ProfGetRectLTWHA(job, nullptr, "v", &out, &fallback), row.result) << row.text;
        expect(out, row.sized, row.text);
    }
}

TEST(ProfileTypedTest, WhatNarrowGettersRead) {
    const Job job;
    ProfSetStringW(job, nullptr, L"l/v", L"x10");
    int32_t number = 0;
    int64_t wide = 0;
    int isTrue = 7;
    double real = 7;
    COLORREF color = 0;
    EXPECT_EQ(ProfGetIntA(job, nullptr, "l/v", &number, 1), PROF_OK);
    EXPECT_EQ(ProfGetInt64A(job, nullptr, "l/v", &wide, 1), PROF_OK);
    EXPECT_EQ(ProfGetBoolA(job, nullptr, "l/v", &isTrue, 1), PROF_OK);
    EXPECT_EQ(ProfGetDoubleA(job, nullptr, "l/v", &real, 1), PROF_OK);
    EXPECT_EQ(ProfGetColorrefA(job, nullptr, "l/v", &color, 1), PROF_OK);
    EXPECT_EQ(number, 16);
    EXPECT_EQ(wide, 16);
    EXPECT_EQ(isTrue, 0);
    EXPECT_EQ(real, 0);
    EXPECT_EQ(color, 16u);
    EXPECT_EQ(ProfGetIntA(job, nullptr, nullptr, &number, 3), PROF_ERR_NOT_FOUND);
    EXPECT_EQ(number, 3);
}

TEST(ProfileParseTest, TextsOfTheCaller) {
    const struct {
        const wchar_t* text;
        int boolean;
        int32_t number;
        int64_t number64;
        COLORREF color;
    } kCases[] = {{nullptr, kDefault, kDefault, kDefault, 9},
                  {L"", 1, kDefault, kDefault, 9}, // an empty text is TRUE
                  {L"TRUE", 1, kDefault, kDefault, 9},
                  {L"yes", 0, kDefault, kDefault, 9},
                  {L"-12", 0, -12, -12, 9},
                  {L"4294967297", 0, 1, 4294967297, 9},
                  {L"x1F", 0, kDefault, kDefault, 31},
                  {L"x", 0, kDefault, kDefault, 9},
                  {L"(1,2,3)", 0, kDefault, kDefault, RGB(1, 2, 3)},
                  {L"(1,2", 0, kDefault, kDefault, 9}};
    for (const auto& row : kCases) {
        const std::wstring wide = row.text ? row.text : L"";
        const std::string bytes(wide.begin(), wide.end());
        const char* const narrow = row.text ? bytes.c_str() : nullptr;
        int boolean[2] = {77, 77};
        int32_t number[2] = {77, 77};
        int64_t number64[2] = {77, 77};
        COLORREF color[2] = {77, 77};
        ProfLPSTRtoBOOLW(row.text, &boolean[0], kDefault);
        ProfLPSTRtoBOOLA(narrow, &boolean[1], kDefault);
        ProfLPSTRtoINTW(row.text, &number[0], kDefault);
        ProfLPSTRtoINTA(narrow, &number[1], kDefault);
        ProfLPSTRtoINT64W(row.text, &number64[0], kDefault);
        ProfLPSTRtoINT64A(narrow, &number64[1], kDefault);
        ProfLPSTRtoCOLORREFW(row.text, &color[0], 9);
        ProfLPSTRtoCOLORREFA(narrow, &color[1], 9);
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(boolean[i], row.boolean) << wide;
            EXPECT_EQ(number[i], row.number) << wide;
            EXPECT_EQ(number64[i], row.number64) << wide;
            EXPECT_EQ(color[i], row.color) << wide;
        }
    }
}

TEST(ProfileParseTest, RectanglesAreWholeOrTheDefault) {
    const RECT fallback{5, 6, 7, 8};
    const RECT wanted{1, 2, 3, 4};
    for (const wchar_t* text :
         {L"(1,2,3,4)", L"(1,2,3,4", L"(1,2,3)", L"", static_cast<const wchar_t*>(nullptr)}) {
        RECT out{77, 77, 77, 77};
        ProfLPSTRtoRECTW(text, &out, &fallback);
        EXPECT_TRUE(EqualRect(&out, text && wcslen(text) > 7 ? &wanted : &fallback))
            << (text ? text : L"null");
    }
    RECT out{77, 77, 77, 77};
    ProfLPSTRtoRECTA("(1,2,3)", &out, nullptr);
    EXPECT_EQ(out.left, 77);
    ProfLPSTRtoRECTA("(1,2,3,4)", nullptr, nullptr);
}

} // namespace
} // namespace vxut::test
