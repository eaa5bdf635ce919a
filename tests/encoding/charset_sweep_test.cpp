// Conversion and detection of damaged and hostile text: every prefix of a good one, and every byte altered.
// The text ends at a page that must not be accessed.
#include "encoding/charset.h"

#include "tests/support/guarded_pages.h"
#include "util/charset.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <set>
#include <string>
#include <vector>

namespace vxut {
namespace {

using test::GuardedPages;

// All prefixes of a text, and the text with each unit replaced by each of some values.
template <class Unit>
std::vector<std::basic_string<Unit>> Damaged(const std::basic_string<Unit>& good,
                                             const std::vector<Unit>& values) {
    std::vector<std::basic_string<Unit>> all;
    for (size_t i = 0; i <= good.size(); ++i) all.push_back(good.substr(0, i));
    for (size_t i = 0; i < good.size(); ++i) {
        for (const Unit value : values) {
            all.push_back(good);
            all.back()[i] = value;
        }
    }
    return all;
}

std::vector<char> AllBytes(int first) {
    std::vector<char> bytes;
    for (int byte = first; byte < 256; ++byte) bytes.push_back(static_cast<char>(byte));
    return bytes;
}

template <class Unit>
const Unit* Put(const GuardedPages& pages, const std::basic_string<Unit>& text, size_t units) {
    return std::char_traits<Unit>::copy(pages.Last<Unit>(units), text.c_str(), units);
}

// What the system makes of bytes; empty if they cannot be converted.
std::wstring Wide(uint32_t codePage, DWORD flags, const std::string& bytes) {
    std::wstring text(bytes.size() * 2, L'\0');
    const int units = MultiByteToWideChar(codePage, flags, bytes.data(), static_cast<int>(bytes.size()),
                                          text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<size_t>(std::max(units, 0)));
    return text;
}

std::string Narrow(uint32_t codePage, const std::wstring& text) {
    std::string bytes(text.size() * 16, '\0');
    const int length = WideCharToMultiByte(codePage, 0, text.data(), static_cast<int>(text.size()),
                                           bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<size_t>(std::max(length, 0)));
    return bytes;
}

TEST(CharsetSweepTest, Utf8DecodesAsTheSystemDecodesItStrictly) {
    const GuardedPages pages;
    const std::string good = "a\xC3\xA4\xE2\x82\xAC\xEF\xBF\xBD\xF0\x9F\x98\x80z";
    const std::set<std::wstring> kFaults = {L"invalid UTF-8 sequence found!", L"invalid UTF-8 encoding!",
                                            L"UCS-4 not supported!"};
    const auto isSurrogate = [](wchar_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; };
    for (const std::string& bytes : Damaged(good, AllBytes(1))) {
        const std::wstring disguised(bytes.begin(), bytes.end()); // sign-extended: only low bytes count
        const std::wstring decoded = DecodeUtf8String(disguised.c_str()).Text();
        const bool isValid = IsValidUtf8(Put(pages, bytes, bytes.size() + 1));
        EXPECT_EQ(kFaults.contains(decoded), !isValid) << testing::PrintToString(bytes);
        const std::wstring expected = Wide(CP_UTF8, MB_ERR_INVALID_CHARS, bytes);
        if (expected.empty() != bytes.empty()) {
            // The system knows no surrogates outside of pairs, which are decoded here unit by unit.
            EXPECT_TRUE(!isValid || std::any_of(decoded.begin(), decoded.end(), isSurrogate));
        } else if (std::none_of(expected.begin(), expected.end(), isSurrogate)) {
            EXPECT_EQ(decoded, expected) << testing::PrintToString(bytes);
        } else {
            EXPECT_FALSE(isValid) << "characters beyond 16 bits";
        }
    }
}

TEST(CharsetSweepTest, EveryCodePageConvertsAsTheSystemDoes) {
    const GuardedPages bytesAtEnd;
    const GuardedPages textAtEnd;
    const std::string goodBytes = "a\x82\xA0\xE3\x81\x82\xC3\xA4+IKw-\x1B$B$\"\x1B(Bz\xFF";
    const std::wstring goodText = L"a\xE4\x20AC\x3042\xD83D\xDE00\x4E00z";
    const std::vector<wchar_t> values = {0, 1, 0x7F, 0x80, 0xFF, 0x100, 0xD800, 0xDC00, 0xFFFD, 0xFFFF};
    for (const uint32_t codePage :
         {874u, 932u, 936u, 949u, 950u, 1252u, 20866u, 28592u, 65000u, 65001u, 1u}) {
        for (const std::string& bytes : Damaged(goodBytes, AllBytes(0))) {
            clsCharsetConversionStringCP conversion(codePage);
            conversion.Set(Put(bytesAtEnd, bytes, bytes.size()), static_cast<int64_t>(bytes.size()));
            const std::wstring expected = Wide(codePage, 0, bytes);
            const int differs = std::wmemcmp(conversion.GetWide(), expected.c_str(), expected.size() + 1);
            ASSERT_EQ(differs, 0) << codePage << ' ' << testing::PrintToString(bytes);
        }
        for (const std::wstring& text : Damaged(goodText, values)) {
            clsCharsetConversionStringCP conversion(codePage);
            conversion.Set(Put(textAtEnd, text, text.size()), static_cast<int64_t>(text.size()));
            const std::string expected = Narrow(codePage, text);
            const int differs = std::memcmp(conversion.GetNarrow(), expected.c_str(), expected.size() + 1);
            ASSERT_EQ(differs, 0) << codePage << ' ' << testing::PrintToString(text);
        }
    }
}

TEST(CharsetSweepTest, LikelyCharsetsAreKnownAndDoNotDependOnOrderOrPlainText) {
    const GuardedPages pages;
    const std::set<uint32_t> kCharsets = {0, 128, 129, 134, 136, 161, 177, 178, 204, 222};
    std::set<uint32_t> found;
    std::vector<wchar_t> values;
    for (uint32_t unit = 1; unit <= 0xFFFF; unit += 0x25) values.push_back(static_cast<wchar_t>(unit));
    for (const std::wstring good : {L"\x3B1\x3B2", L"\x430\x3042", L"ab"}) {
        for (std::wstring text : Damaged(good, values)) {
            const uint32_t charset = UtilGetLikelyCharsetFromString(Put(pages, text, text.size() + 1));
            EXPECT_TRUE(kCharsets.contains(charset)) << testing::PrintToString(text);
            found.insert(charset);
            std::reverse(text.begin(), text.end());
            EXPECT_EQ(UtilGetLikelyCharsetFromString((text + L" plain 1").c_str()), charset);
        }
    }
    EXPECT_GE(found.size(), 8u) << "the sweep meets most scripts";
}

} // namespace
} // namespace vxut
