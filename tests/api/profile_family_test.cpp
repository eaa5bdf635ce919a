// The exports with two text forms: what the wide form does, the narrow form does with
// names and values in the code page of the profile store.
#include "profile_support.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

namespace vxut::test {
namespace {

constexpr char kNarrowName[] = "N\xE4rrow";
constexpr wchar_t kNarrowNameAsWide[] = L"N\xE4rrow";

// The forms of one type's functions. Argument is how a value is passed; types without a reader of their own
// are read with that of another one.
template <class Value, class Argument>
struct Family {
    void (*appendWide)(HPROF, HPROFLIST, const wchar_t*, Argument);
    void (*appendNarrow)(HPROF, HPROFLIST, const char*, Argument);
    void (*setWide)(HPROF, HPROFLIST, const wchar_t*, Argument);
    void (*setNarrow)(HPROF, HPROFLIST, const char*, Argument);
    int32_t (*getWide)(HPROF, HPROFLIST, const wchar_t*, Value*, Argument);
    int32_t (*getNarrow)(HPROF, HPROFLIST, const char*, Value*, Argument);
};

template <class Argument, class Value>
Argument Passed(const Value& value) {
    if constexpr (std::is_pointer_v<Argument>)
        return &value;
    else
        return value;
}

template <class Value>
bool AreSame(const Value& left, const Value& right) {
    return std::memcmp(&left, &right, sizeof left) == 0;
}

std::wstring Both(const std::wstring& value) {
    return L"Wide=" + value + L";" + kNarrowNameAsWide + L"=" + value + L";";
}

// Appends the first value and sets the second one, each in both forms, and reads it back.
template <class Value, class Argument>
void ExpectFamily(const Family<Value, Argument>& family, const std::pair<Value, Value>& values,
                  const wchar_t* appended, const wchar_t* set) {
    const Job job;
    const auto first = Passed<Argument>(values.first);
    const auto second = Passed<Argument>(values.second);
    family.appendWide(job, nullptr, L"Wide", first);
    family.appendNarrow(job, nullptr, kNarrowName, first);
    EXPECT_EQ(TreeOf(job), Both(appended));
    family.setWide(job, nullptr, L"Wide", second);
    family.setNarrow(job, nullptr, kNarrowName, second);
    EXPECT_EQ(TreeOf(job), Both(set));

    Value out{};
    EXPECT_EQ(family.getWide(job, nullptr, L"Wide", &out, first), PROF_OK);
    EXPECT_TRUE(AreSame(out, values.second)) << set;
    out = {};
    EXPECT_EQ(family.getNarrow(job, nullptr, kNarrowName, &out, first), PROF_OK);
    EXPECT_TRUE(AreSame(out, values.second)) << set;
    EXPECT_EQ(family.getNarrow(job, nullptr, "N", &out, first), PROF_ERR_NOT_FOUND);
    EXPECT_TRUE(AreSame(out, values.first)) << "the default";

    // A null name is an empty one to append, and none to set; a null job does nothing.
    family.setWide(job, nullptr, nullptr, first);
    family.setNarrow(job, nullptr, nullptr, first);
    family.appendNarrow(nullptr, nullptr, kNarrowName, first);
    family.setNarrow(nullptr, nullptr, kNarrowName, first);
    EXPECT_EQ(TreeOf(job), Both(set));
    EXPECT_EQ(family.getNarrow(nullptr, nullptr, kNarrowName, &out, second), PROF_ERR_NOT_FOUND);
    EXPECT_TRUE(AreSame(out, values.second));
    family.appendWide(job, nullptr, nullptr, first);
    family.appendNarrow(job, nullptr, nullptr, first);
    EXPECT_EQ(TreeOf(job), Both(set) + L"=" + appended + L";=" + appended + L";");
}

TEST(ProfileFamilyTest, TypedValuesInBothForms) {
    ExpectFamily<int, int>(
        {ProfAppendBoolW, ProfAppendBoolA, ProfSetBoolW, ProfSetBoolA, ProfGetBoolW, ProfGetBoolA}, {1, 0},
        L"TRUE", L"FALSE");
    ExpectFamily<double, double>({ProfAppendDoubleW, ProfAppendDoubleA, ProfSetDoubleW, ProfSetDoubleA,
                                  ProfGetDoubleW, ProfGetDoubleA},
                                 {-0.5, 1e3}, L"-0.500000", L"1000.000000");
    ExpectFamily<int32_t, int32_t>(
        {ProfAppendIntW, ProfAppendIntA, ProfSetIntW, ProfSetIntA, ProfGetIntW, ProfGetIntA}, {-7, INT32_MAX},
        L"-7", L"2147483647");
    ExpectFamily<int32_t, int32_t>(
        {ProfAppendIntHexW, ProfAppendIntHexA, ProfSetIntHexW, ProfSetIntHexA, ProfGetIntW, ProfGetIntA},
        {0xAB, 0xCD}, L"x000000AB", L"xcd");
    ExpectFamily<int64_t, int64_t>(
        {ProfAppendInt64W, ProfAppendInt64A, ProfSetInt64W, ProfSetInt64A, ProfGetInt64W, ProfGetInt64A},
        {-1, 5'000'000'000}, L"18446744073709551615", L"5000000000");
    ExpectFamily<int64_t, int64_t>({ProfAppendInt64HexW, ProfAppendInt64HexA, ProfSetInt64HexW,
                                    ProfSetInt64HexA, ProfGetInt64W, ProfGetInt64A},
                                   {0xABCDEF0123, 0xABCDEF0123}, L"xABCDEF0123", L"xabcdef0123");
    ExpectFamily<POINT, const POINT*>(
        {ProfAppendPointW, ProfAppendPointA, ProfSetPointW, ProfSetPointA, ProfGetPointW, ProfGetPointA},
        {{1, -2}, {-3, 4}}, L"(1,-2)", L"(-3,4)");
    ExpectFamily<RECT, const RECT*>(
        {ProfAppendRectW, ProfAppendRectA, ProfSetRectW, ProfSetRectA, ProfGetRectW, ProfGetRectA},
        {{1, -2, 11, 18}, {5, 6, 7, 8}}, L"(1,-2,11,18)", L"(5,6,7,8)");
    ExpectFamily<RECT, const RECT*>({ProfAppendRectLTWHW, ProfAppendRectLTWHA, ProfSetRectLTWHW,
                                     ProfSetRectLTWHA, ProfGetRectLTWHW, ProfGetRectLTWHA},
                                    {{1, -2, 11, 18}, {5, 6, 7, 8}}, L"(1,-2,10,20)", L"(5,6,2,2)");
    ExpectFamily<COLORREF, COLORREF>({ProfAppendColorrefW, ProfAppendColorrefA, ProfSetColorrefW,
                                      ProfSetColorrefA, ProfGetColorrefW, ProfGetColorrefA},
                                     {RGB(1, 2, 255), RGB(0, 128, 3)}, L"(1,2,255)", L"(0,128,3)");
}

// Parses a text in both forms, over a value that is neither the expected one nor the default.
template <class Value, class Argument>
void ExpectParsed(void (*parseWide)(const wchar_t*, Value*, Argument),
                  void (*parseNarrow)(const char*, Value*, Argument), const std::string& text,
                  const Value& expected, const Value& fallback) {
    Value wide{};
    Value narrow{};
    parseWide(std::wstring(text.begin(), text.end()).c_str(), &wide, Passed<Argument>(fallback));
    parseNarrow(text.c_str(), &narrow, Passed<Argument>(fallback));
    EXPECT_TRUE(AreSame(wide, expected)) << text;
    EXPECT_TRUE(AreSame(narrow, expected)) << text;
}

TEST(ProfileFamilyTest, TextsOfTheCallerInBothForms) {
    constexpr RECT kRect{1, -2, 3, 4};
    constexpr RECT kNine{9, 9, 9, 9};
    ExpectParsed(ProfLPSTRtoBOOLW, ProfLPSTRtoBOOLA, "Yes", 1, 9);
    ExpectParsed(ProfLPSTRtoINTW, ProfLPSTRtoINTA, "-12", -12, 9);
    ExpectParsed(ProfLPSTRtoINTW, ProfLPSTRtoINTA, "x12", 9, 9);
    ExpectParsed<int64_t>(ProfLPSTRtoINT64W, ProfLPSTRtoINT64A, "4294967297", 4294967297, 9);
    ExpectParsed<int64_t>(ProfLPSTRtoINT64W, ProfLPSTRtoINT64A, "none", 9, 9);
    ExpectParsed(ProfLPSTRtoRECTW, ProfLPSTRtoRECTA, "(1,-2,3,4)", kRect, kNine);
    ExpectParsed(ProfLPSTRtoRECTW, ProfLPSTRtoRECTA, "(1,-2,3)", kNine, kNine);
    ExpectParsed<COLORREF>(ProfLPSTRtoCOLORREFW, ProfLPSTRtoCOLORREFA, "(1,2,3)", RGB(1, 2, 3), 9);
    ExpectParsed<COLORREF>(ProfLPSTRtoCOLORREFW, ProfLPSTRtoCOLORREFA, "x1F", 0x1F, 9);
}

std::string NarrowPath(const wchar_t* path) {
    char narrow[MAX_PATH * 2] = "";
    WideCharToMultiByte(CP_ACP, 0, path, -1, narrow, sizeof narrow, nullptr, nullptr);
    return narrow;
}

TEST(ProfileFamilyTest, FilesByNarrowNames) {
    const FilePlace file;
    const std::string name = NarrowPath(file);
    EXPECT_EQ(ProfGetError(Job(ProfJobOpenA(name.c_str()))), PROF_ERR_OPEN);
    {
        const Job job(ProfJobOpenExclusiveA(name.c_str()));
        EXPECT_EQ(ProfGetError(job), PROF_OK);
        ProfSetStringA(job, nullptr, kNarrowName, "v\xE4lue");
        EXPECT_EQ(ProfSaveA(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
        EXPECT_EQ(CreateFileW(file, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                              0, nullptr),
                  INVALID_HANDLE_VALUE)
            << "others may not write";
    }
    const Job job(ProfJobOpenA(name.c_str()));
    EXPECT_EQ(ProfGetError(job), PROF_OK);
    EXPECT_EQ(TreeOf(job), kNarrowNameAsWide + std::wstring(L"=v\xE4lue;"));
}

TEST(ProfileFamilyTest, EntriesAndLengthsInNarrowForm) {
    struct Heard {
        std::string text;
        int limit;
    };
    const ProfEnumFunctionA hear = [](HPROF, const char* name, const char* value, HPROFLIST sublist,
                                      void* user) -> int {
        auto& heard = *static_cast<Heard*>(user);
        heard.text += std::string(name) + (sublist ? "{}" : "=") + value + ";";
        return --heard.limit;
    };
    const Job job;
    ProfSetStringW(job, nullptr, kNarrowNameAsWide, L"v\xE4lue \x20AC");
    ProfSetStringW(job, nullptr, L"List/a", L"1");
    ProfSetStringW(job, nullptr, L"b", L"2");
    const std::pair<int, const char*> kRows[] = {{9, "N\xE4rrow=v\xE4lue \x80;List{};b=2;"},
                                                 {2, "N\xE4rrow=v\xE4lue \x80;List{};"}};
    for (const auto& [limit, text] : kRows) {
        Heard heard{"", limit};
        EXPECT_EQ(ProfEnumA(job, nullptr, hear, &heard), limit > 2);
        EXPECT_EQ(heard.text, text);
    }
    EXPECT_EQ(ProfEnumA(job, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(ProfGetStringLengthA(job, nullptr, kNarrowName), 7);
    EXPECT_EQ(ProfGetStringLengthA(job, nullptr, "List/a"), 1);
    EXPECT_EQ(ProfGetStringLengthA(job, nullptr, "none"), PROF_ERR_NOT_FOUND);
    ProfSetDebug();
    EXPECT_EQ(ProfGetStringLengthA(job, nullptr, "b"), 1) << "nothing has changed";
}

} // namespace
} // namespace vxut::test
