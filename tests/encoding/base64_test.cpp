#include "encoding/base64.h"

#include "encoding/base64_avx2.h"
#include "tests/support/guarded_pages.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace vxut {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes BytesOf(const std::string& text) { return {text.begin(), text.end()}; }

std::wstring Encode(const Bytes& bytes) {
    std::wstring text(Base64Length(bytes.size()), L'?');
    EncodeBase64(bytes, text.data());
    return text;
}

Bytes Decode(const std::wstring& text, Base64Count count = Base64Count::kByPadding) {
    Bytes bytes(Base64Capacity(text.size()));
    size_t size = 0;
    EXPECT_TRUE(DecodeBase64(text, bytes, count, size));
    bytes.resize(size);
    return bytes;
}

TEST(Base64Test, AgreesWithThePublishedVectors) {
    const std::pair<std::string, std::wstring> rows[] = {
        {"", L""},
        {"f", L"Zg=="},
        {"fo", L"Zm8="},
        {"foo", L"Zm9v"},
        {"foob", L"Zm9vYg=="},
        {"fooba", L"Zm9vYmE="},
        {"foobar", L"Zm9vYmFy"},
        {"\xFB\xEF\xFF", L"++//"},
    };
    for (const auto& [bytes, text] : rows) {
        EXPECT_EQ(Encode(BytesOf(bytes)), text);
        EXPECT_EQ(Decode(text), BytesOf(bytes));
    }
}

// A plain codec of one bit after the other.
std::wstring SlowEncode(const Bytes& bytes) {
    const std::wstring alphabet = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::wstring text;
    for (size_t bit = 0; bit < bytes.size() * 8; bit += 6) {
        unsigned value = 0;
        for (size_t i = bit; i < bit + 6; ++i)
            value = value << 1 | (i / 8 < bytes.size() ? bytes[i / 8] >> (7 - i % 8) & 1u : 0u);
        text += alphabet[value];
    }
    while (text.size() % 4) text += L'=';
    return text;
}

// Input ends, and output ends, at pages that must not be touched.
TEST(Base64Test, AllLengthsAreRightAndStayInTheirBuffers) {
    std::mt19937 random(1);
    const test::GuardedPages in;
    const test::GuardedPages out;
    for (size_t size = 0; size <= 300; ++size) {
        Bytes bytes(size);
        for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
        auto* const source = in.Last<uint8_t>(size);
        if (size > 0) std::memcpy(source, bytes.data(), size);
        const size_t length = Base64Length(size);
        auto* const text = out.Last<wchar_t>(length);
        EncodeBase64({source, size}, text);
        ASSERT_EQ(std::wstring(text, length), SlowEncode(bytes)) << size;

        const std::wstring copy(text, length);
        auto* const symbols = in.Last<wchar_t>(length);
        std::memcpy(symbols, copy.data(), length * sizeof(wchar_t));
        const size_t groups = length / 4 * 3;
        auto* const decoded = out.Last<uint8_t>(groups);
        size_t count = 0;
        ASSERT_TRUE(DecodeBase64({symbols, length}, {decoded, groups}, Base64Count::kByPadding, count));
        ASSERT_EQ(Bytes(decoded, decoded + count), bytes) << size;
    }
}

TEST(Base64Test, UnitsOutsideTheAlphabetAreSkippedWhereverTheyAre) {
    const Bytes bytes(60, 0xA5);
    const std::wstring text = Encode(bytes);
    for (uint32_t unit = 1; unit < 0x10000; ++unit) {
        const auto wide = static_cast<wchar_t>(unit);
        if (text.find(wide) != std::wstring::npos) continue;
        const bool isSymbol = unit < 128 && std::wstring(L"+/=").find(wide) != std::wstring::npos
                                  ? true
                                  : unit < 128 && std::iswalnum(wide);
        if (isSymbol) continue;
        std::wstring marred = text;
        marred.insert(36, 1, wide); // between groups, within a step of the vector code
        ASSERT_EQ(Decode(marred), bytes) << std::hex << unit;
    }
}

TEST(Base64Test, OddGroupsCountAsTheirUnitsSay) {
    const struct {
        std::wstring text;
        std::string bytes;
        std::string whole; // every group counts three bytes
    } rows[] = {
        {L"QUJD\r\nREVG\r\n", "ABCDEF", "ABCDEF"},
        {L"QUJD\r\nRA==", "ABCD", std::string("ABCD\0\0", 6)},
        {L"QU\nI=", std::string("AB\0", 3), std::string("AB\0", 3)}, // the break hides the padding
        {L"Q\nUI=", std::string("AB\0", 3), std::string("AB\0", 3)},
        {L"QUI", std::string("AB\0", 3), std::string("AB\0", 3)},
        {L"Q", std::string("@\0\0", 3), std::string("@\0\0", 3)},
        {L"QQ==QUJD", std::string("A\0\0A", 4), std::string("A\0\0ABC", 6)},
        {L"QQ=A", "A", std::string("A\0\0", 3)},
        {L"=QUI", "", std::string("\x01\x05\x08", 3)},
        {L"@QUJD", "ABC", "ABC"},
        {L" \t\n", "", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Decode(row.text), BytesOf(row.bytes)) << testing::PrintToString(row.text);
        EXPECT_EQ(Decode(row.text, Base64Count::kWholeGroups), BytesOf(row.whole))
            << testing::PrintToString(row.text);
    }
}

TEST(Base64Test, TextBehindAFullTargetIsAnError) {
    Bytes bytes(3);
    size_t size = 0;
    EXPECT_TRUE(DecodeBase64(L"QUJD \n", bytes, Base64Count::kByPadding, size));
    EXPECT_FALSE(DecodeBase64(L"QUJDQ", bytes, Base64Count::kByPadding, size));
}

} // namespace
} // namespace vxut
