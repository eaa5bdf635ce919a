// Values as text in the caller's buffers, wide and narrow.
#include "profile_support.h"

#include <gtest/gtest.h>

namespace vxut::test {
namespace {

TEST(ProfileStringTest, ValuesAndDefaultsAreCutToTheBuffer) {
    const struct {
        const char* path;
        uint32_t capacity;
        const char* fallback;
        int32_t result;
        const char* buffer; // up to its end, with what follows the text
    } kCases[] = {
        {"v", 6, "d", 5, "value\0###"},
        {"v", 5, "d", 4, "valu\0####"},
        {"v", 0, "d", 0, "#########"},
        {"none", 10, "default", -6, "default\0#"},
        {"none", 4, "default", -6, "def\0#####"},
        {"none", 10, nullptr, -6, "\0########"},
        {"empty", 10, "d", 0, "\0########"},
        {"list", 10, "d", -6, "d\0#######"},
        {nullptr, 10, "d", -6, "d\0#######"},
    };
    const auto widen = [](const char* text) { return std::wstring(text, text + std::strlen(text)); };
    const Job job;
    ProfSetStringW(job, nullptr, L"v", L"value");
    ProfSetStringW(job, nullptr, L"empty", L"");
    ProfCreateListW(job, nullptr, L"list");
    for (const auto& [path, capacity, fallback, result, buffer] : kCases) {
        SCOPED_TRACE(testing::Message() << (path ? path : "null") << ' ' << capacity);
        wchar_t wide[] = L"#########";
        EXPECT_EQ(ProfGetStringW(job, nullptr, path ? widen(path).c_str() : nullptr, wide, capacity,
                                 fallback ? widen(fallback).c_str() : nullptr),
                  result);
        EXPECT_EQ(std::wstring(wide, 9), std::wstring(buffer, buffer + 9));
        char narrow[] = "#########";
        EXPECT_EQ(ProfGetStringA(job, nullptr, path, narrow, capacity, fallback), result);
        EXPECT_STREQ(narrow, buffer);
    }
    wchar_t buffer[] = L"default";
    EXPECT_EQ(ProfGetStringW(job, nullptr, L"none", buffer, 4, buffer), PROF_ERR_NOT_FOUND);
    EXPECT_STREQ(buffer, L"default") << "a default in the buffer stays";
}

TEST(ProfileStringTest, LongValuesSurviveReplacementEvenByAPieceOfThemselves) {
    const Job job;
    for (const size_t length : {0u, 31u, 32u, 33u, 500u, 499u, 1u, 2000u}) {
        ProfSetStringW(job, nullptr, L"n", std::wstring(length, L'v').c_str());
        EXPECT_EQ(ValueOf(job, L"n"), std::wstring(length, L'v'));
    }
    const auto shorten = [](HPROF j, const wchar_t* name, const wchar_t* text, HPROFLIST, void*) {
        ProfSetStringW(j, nullptr, name, text + 1960);
        return 1;
    };
    ProfEnumW(job, nullptr, shorten, nullptr);
    EXPECT_EQ(ValueOf(job, L"n"), std::wstring(40, L'v'));
}

TEST(ProfileNarrowTest, TextPassesThroughTheDefaultCodePage) {
    const uint32_t old = ProfGetOption(PROF_OPTION_CODE_PAGE);
    const Job job;
    ProfSetOption(PROF_OPTION_CODE_PAGE, 0x10000 + 1252);
    EXPECT_EQ(ProfGetOption(PROF_OPTION_CODE_PAGE), 1252u);
    ProfSetOption(PROF_OPTION_CODE_PAGE, 0);
    EXPECT_EQ(ProfGetOption(PROF_OPTION_CODE_PAGE), 0u);
    ProfSetStringA(job, nullptr, "ansi", "\x41");
    EXPECT_EQ(ValueOf(job, L"ansi"), L"A") << "0 is the system's code page";
    ProfSetOption(PROF_OPTION_CODE_PAGE, 1252);
    ProfSetStringA(job, nullptr, "Gr\xF6\xDF/n", "\x80 5");
    EXPECT_EQ(ValueOf(job, L"Gr\u00F6\u00DF/n"), L"\u20AC 5");
    ProfSetOption(PROF_OPTION_CODE_PAGE, 65001);
    char buffer[8] = "#######";
    // The result counts wide units, and the last byte of the buffer is 0 whatever was cut.
    EXPECT_EQ(ProfGetStringA(job, nullptr, "Gr\xC3\xB6\xC3\x9F/n", buffer, 4, nullptr), 3);
    EXPECT_EQ(std::string(buffer, 7), std::string("\xE2\x82\xAC\0###", 7));
    std::string seen;
    const auto see = [](HPROF, const char* name, const char* value, HPROFLIST sublist, void* user) {
        *static_cast<std::string*>(user) += std::string(name) + (sublist ? "/" : "=") + value;
        return 1;
    };
    EXPECT_EQ(ProfEnumA(job, nullptr, see, &seen), 1);
    EXPECT_EQ(ProfEnumA(job, ProfGetListW(job, nullptr, L"Gr\u00F6\u00DF"), see, &seen), 1);
    EXPECT_EQ(seen, "ansi=AGr\xC3\xB6\xC3\x9F/n=\xE2\x82\xAC 5");
    ProfSetOption(PROF_OPTION_CODE_PAGE, old);
}

} // namespace
} // namespace vxut::test
