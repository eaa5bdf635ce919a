#include "encoding/charset.h"

#include "base/default_code_page.h"
#include "util/charset.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace vxut {
namespace {

// Replaces the default code page for its scope.
struct WithDefaultCodePage {
    explicit WithDefaultCodePage(uint32_t codePage) { SetDefaultCodePage(codePage); }
    ~WithDefaultCodePage() { SetDefaultCodePage(old); }
    const uint32_t old = DefaultCodePage();
};

TEST(CharsetNameTest, FirstRowWinsAndUnknownNamesFallBack) {
    const std::pair<const wchar_t*, uint32_t> kCases[] = {{L"iso-8859-1", 1252},   {L"ISO-8859-1", 1252},
                                                          {L"iso-2022-jp", 50220}, {L"UTF-8", 65001},
                                                          {L"windows-1252", 4711}, {L"", 4711}};
    for (const auto& [name, codePage] : kCases) EXPECT_EQ(CodePageOfCharset(name, 4711), codePage) << name;
}

TEST(CharsetConversionTest, ConvertsBothWays) {
    const std::tuple<uint32_t, const char*, const wchar_t*> kCases[] = {
        {1252, "\x80 caf\xE9", L"\x20AC caf\xE9"},
        {65001, "\xE2\x82\xAC\xF0\x9F\x98\x80", L"\x20AC\xD83D\xDE00"},
        {65000, "+IKw-", L"\x20AC"}, // takes no flags
        {932, "\x82\xA0", L"\x3042"},
        {kCodePageBytes, "\x80\xFF\x01", L"\x80\xFF\x01"}};
    for (const auto& [codePage, bytes, text] : kCases) {
        EXPECT_STREQ(clsCharsetConversionStringCP(bytes, codePage).GetWide(), text);
        EXPECT_STREQ(clsCharsetConversionStringCP(text, codePage).GetNarrow(), bytes);
    }
}

TEST(CharsetConversionTest, LengthsAroundTheInlineStore) {
    for (const size_t length : {62u, 63u, 64u, 65u, 5000u}) {
        const std::string bytes(length, '\xE9');
        const std::wstring text(length, L'\xE9');
        for (const uint32_t codePage : {1252u, kCodePageBytes}) {
            clsCharsetConversionStringCP conversion(bytes.c_str(), codePage);
            EXPECT_EQ(conversion.GetWide(), text);
            conversion.Set(text.c_str());
            EXPECT_EQ(conversion.GetNarrow(), bytes);
        }
    }
}

TEST(CharsetConversionTest, SetReplacesBothFormsAndHonoursALength) {
    const WithDefaultCodePage greek(1253);
    clsCharsetConversionString text("\xE1");
    EXPECT_STREQ(text.GetWide(), L"\x03B1");
    text.Set(L"second text", 6);
    EXPECT_STREQ(text.GetNarrow(), "second");
    text.Set(static_cast<const char*>(nullptr));
    EXPECT_STREQ(text.GetWide(), L"");
    EXPECT_STREQ(clsCharsetConversionStringCP("abc", 12345).GetWide(), L"") << "no such code page";
}

TEST(CharsetConversionTest, ResetCopiesBackWithinTheTargets) {
    char narrow[8] = "-------";
    wchar_t wide[8] = L"-------";
    clsCharsetConversionStringCP text(L"caf\xE9 au lait", 1252);
    text.SetTarget(wide, 3);
    text.SetTarget(narrow, 5); // which leaves the other's size alone
    text.Reset();
    EXPECT_STREQ(narrow, "caf\xE9");
    EXPECT_EQ(narrow[5], '-');
    EXPECT_STREQ(wide, L"ca");
    EXPECT_EQ(wide[3], L'-');
}

TEST(DecodeUtf8Test, DecodesOrTellsWhyNot) {
    const std::tuple<bool, const wchar_t*, std::vector<const char*>> kCases[] = {
        {true, L"\xE4pfel \x20AC", {"\xC3\xA4pfel \xE2\x82\xAC"}},
        {true, L"\x7F\x80\x7FF\x800\xD800", {"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\xA0\x80"}},
        {false, L"invalid UTF-8 sequence found!", {"\x80", "good\xE2\x82", "\xC3z", "\xE2\x28\xA1"}},
        {false, L"UCS-4 not supported!", {"\xF0\x9F\x98\x80", "\xFE\x82\x80\x80\x80\x80\x80"}},
        {false, L"invalid UTF-8 encoding!", {"\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF"}},
        {false, L"invalid UTF-8 encoding!", {"\xFF\x80\x80\x80\x80\x80\x80\x80"}}};
    for (const auto& [isValid, result, texts] : kCases) {
        for (const char* bytes : texts) {
            clsCharsetConversionStringCP disguised(bytes, kCodePageBytes);
            EXPECT_STREQ(DecodeUtf8String(disguised.GetWide()).Text(), result);
            EXPECT_EQ(IsValidUtf8(bytes), isValid) << result;
        }
    }
    // Only low bytes count.
    EXPECT_STREQ(DecodeUtf8String(L"\x01C3\x02A4").Text(), L"\xE4");
}

TEST(LikelyCharsetTest, OneScriptDecides) {
    const std::pair<uint32_t, std::vector<const wchar_t*>> kCharsetsAndTexts[] = {
        {0, {nullptr, L"", L"plain \xE4\x20AC", L"\x036F", L"\x2000", L"\x0530", L"\x3358", L"\xFF00"}},
        {161, {L"abc \x03B1\x03C9", L"\x0370", L"\x1FFF"}},
        {204, {L"\x0400\x052F"}},
        {178, {L"\x0600\xFE70\xFEFF"}},
        {129, {L"\xAC00\x1100\x3130\x3400"}},
        {128, {L"\x3040\x30FF\x3357"}}};
    for (const auto& [charset, texts] : kCharsetsAndTexts)
        for (const wchar_t* text : texts) EXPECT_EQ(UtilGetLikelyCharsetFromString(text), charset);
}

TEST(LikelyCharsetTest, TheCodePageDecidesAmongSeveral) {
    const std::pair<uint32_t, uint32_t> kCodePagesAndCharsets[] = {{932, 128}, {936, 134}, {1252, 0}};
    for (const auto& [codePage, charset] : kCodePagesAndCharsets) {
        const WithDefaultCodePage set(codePage);
        EXPECT_EQ(LikelyCharset(L"\x4E00"), charset);            // an ideograph alone
        EXPECT_EQ(LikelyCharset(L"\x03B1 and \x0430"), charset); // Greek and Cyrillic
        EXPECT_EQ(LikelyCharset(L"\x03B1"), 161u);               // no matter which
    }
}

} // namespace
} // namespace vxut
