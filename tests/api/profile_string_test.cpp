// Values as text in the caller's buffers, wide and narrow.
#include "profile_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace vxut::test {
namespace {

// Sets the default code page for a scope.
class CodePageScope {
public:
    explicit CodePageScope(uint32_t codePage) : old_(ProfGetOption(PROF_OPTION_CODE_PAGE)) {
        ProfSetOption(PROF_OPTION_CODE_PAGE, codePage);
    }
    ~CodePageScope() { ProfSetOption(PROF_OPTION_CODE_PAGE, old_); }

private:
    uint32_t old_;
};

std::string Narrow(const wchar_t* text) { return {text, text + wcslen(text)}; }

TEST(ProfileStringTest, ValuesAndDefaultsAreCutToTheBuffer) {
    const struct {
        const wchar_t* path;
        uint32_t capacity;
        const wchar_t* fallback;
        int32_t result;
        const wchar_t* buffer;
    } kCases[] = {
        {L"v", 10, L"d", 5, L"value"},        {L"v", 6, L"d", 5, L"value"},
        {L"v", 5, L"d", 4, L"valu"},          {L"v", 1, L"d", 0, L""},
        {L"v", 0, L"d", 0, L"#########"},     {L"none", 10, L"default", -6, L"default"},
        {L"none", 4, L"default", -6, L"def"}, {L"none", 10, nullptr, -6, L""},
        {L"none", 0, L"d", -6, L"#########"}, {L"empty", 10, L"d", 0, L""},
        {L"list", 10, L"d", -6, L"d"},        {nullptr, 10, L"d", -6, L"d"},
    };
    const Job job;
    ProfSetStringW(job, nullptr, L"v", L"value");
    ProfSetStringW(job, nullptr, L"empty", L"");
    ProfCreateListW(job, nullptr, L"list");
    for (const auto& row : kCases) {
        SCOPED_TRACE(testing::Message() << (row.path ? row.path : L"null") << ' ' << row.capacity);
        wchar_t wide[] = L"#########";
        EXPECT_EQ(ProfGetStringW(job, nullptr, row.path, wide, row.capacity, row.fallback), row.result);
        char narrow[] = "#########";
        EXPECT_EQ(ProfGetStringA(job, nullptr, row.path ? Narrow(row.path).c_str() : nullptr, narrow,
                                 row.capacity, row.fallback ? Narrow(row.fallback).c_str() : nullptr),
                  row.result);
        EXPECT_STREQ(wide, row.buffer);
        EXPECT_EQ(std::wstring(narrow, narrow + strlen(narrow)), row.buffer);
        for (uint32_t i = std::max(row.capacity, 1u); i < 9; ++i) EXPECT_EQ(wide[i], L'#');
    }
}

TEST(ProfileStringTest, TheBufferMayHoldTheDefault) {
    const Job job;
    wchar_t buffer[] = L"default";
    EXPECT_EQ(ProfGetStringW(job, nullptr, L"none", buffer, 4, buffer), PROF_ERR_NOT_FOUND);
    EXPECT_STREQ(buffer, L"default");
    char narrow[] = "default";
    EXPECT_EQ(ProfGetStringA(job, nullptr, "none", narrow, 8, narrow), PROF_ERR_NOT_FOUND);
    EXPECT_STREQ(narrow, "default");
    EXPECT_EQ(ProfGetStringW(job, nullptr, L"none", nullptr, 4, L"d"), PROF_ERR_NOT_FOUND);
}

TEST(ProfileStringTest, LongNamesAndValuesSurviveReplacementEvenByAPieceOfThemselves) {
    const Job job;
    const std::wstring name(50, L'n');
    for (const size_t length : {0u, 31u, 32u, 33u, 500u, 499u, 1u, 2000u}) {
        ProfSetStringW(job, nullptr, name.c_str(), std::wstring(length, L'v').c_str());
        EXPECT_EQ(ValueOf(job, name.c_str()), std::wstring(length, L'v'));
    }
    ProfSetStringW(job, nullptr, name.c_str(), (L"123" + std::wstring(40, L'w')).c_str());
    const auto shorten = [](HPROF j, const wchar_t* itemName, const wchar_t* text, HPROFLIST, void*) {
        ProfSetStringW(j, nullptr, itemName, text + 3);
        return 1;
    };
    ProfEnumW(job, nullptr, shorten, nullptr);
    EXPECT_EQ(ValueOf(job, name.c_str()), std::wstring(40, L'w'));
}

TEST(ProfileNarrowTest, TextPassesThroughTheDefaultCodePage) {
    const Job job;
    {
        const CodePageScope scope(1252);
        ProfSetStringA(job, nullptr, "Gr\xF6\xDF/n", "\x80 5");
        char buffer[8];
        EXPECT_EQ(ProfGetStringA(job, nullptr, "Gr\xF6\xDF/n", buffer, sizeof(buffer), nullptr), 3);
        EXPECT_STREQ(buffer, "\x80 5");
    }
    EXPECT_EQ(ValueOf(job, L"Gr\u00F6\u00DF/n"), L"\u20AC 5");
    const CodePageScope scope(65001);
    char buffer[8] = "#######";
    EXPECT_EQ(ProfGetStringLengthA(job, nullptr, "Gr\xC3\xB6\xC3\x9F/n"), 3);
    // The result counts wide units, and the last byte of the buffer is 0 whatever was cut.
    EXPECT_EQ(ProfGetStringA(job, nullptr, "Gr\xC3\xB6\xC3\x9F/n", buffer, 4, nullptr), 3);
    EXPECT_STREQ(buffer, "\xE2\x82\xAC");
    EXPECT_EQ(buffer[4], '#');
}

TEST(ProfileNarrowTest, WritersAppendAndReplace) {
    const Job job;
    ProfAppendStringA(job, nullptr, "a/x", "1");
    ProfAppendStringA(job, ProfGetListA(job, nullptr, "a"), nullptr, "2");
    ProfSetStringA(job, nullptr, "a/x", "3");
    EXPECT_EQ(TreeOf(job), L"a{x=3;=2;}");
}

TEST(ProfileOptionTest, OnlyTheCodePageCanBeSetAndVersionsAreTold) {
    const CodePageScope scope(1252);
    ProfSetOption(PROF_OPTION_CODE_PAGE, 0x10000 + 1250);
    EXPECT_EQ(ProfGetOption(PROF_OPTION_CODE_PAGE), 1250u);
    ProfSetOption(2, 437);
    EXPECT_EQ(ProfGetOption(2), 0u);
    EXPECT_EQ(ProfGetOption(PROF_OPTION_CODE_PAGE), 1250u);
    ProfSetDebug();

    const uint32_t versions[] = {0x1501, 21, 1, 0xFFFFFFFF};
    for (uint32_t selector = 0; selector < 4; ++selector)
        EXPECT_EQ(ProfGetVersion(selector), versions[selector]);
}

} // namespace
} // namespace vxut::test
