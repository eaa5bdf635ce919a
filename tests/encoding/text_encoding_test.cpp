#include "encoding/text_encoding.h"

#include "base/default_code_page.h"
#include "encoding/base64.h"
#include "encoding/blowfish.h"
#include "encoding/deflate.h"
#include "tests/support/fake_stream.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace vxut {
namespace {

using test::FakeStream;
using test::FreshFolder;

std::string Pattern(size_t size) {
    std::string bytes;
    for (size_t i = 0; i < size; ++i) bytes += static_cast<char>(i * i / 7);
    return bytes;
}

std::string Noise(size_t size) {
    std::mt19937 random(7);
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
}

String Encode(const std::string& bytes, bool compress, const wchar_t* password = L"") {
    FakeStream stream(bytes);
    clsFile file(&stream);
    DWORD error = ERROR_INVALID_DATA;
    String text = UtilEncodeFile(file, compress, password, &error);
    EXPECT_EQ(error, static_cast<DWORD>(ERROR_SUCCESS));
    return text;
}

// What a stream holds after a text was decoded into it.
std::string Decode(const String& text, const wchar_t* password = L"") {
    FakeStream stream("old content");
    clsFile file(&stream);
    DWORD error = ERROR_INVALID_DATA;
    EXPECT_EQ(UtilDecodeFile(file, text, password, &error), !text.IsEmpty());
    EXPECT_EQ(error, static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_TRUE(text.IsEmpty() || stream.position == 0);
    return stream.bytes;
}

String Base64Of(const std::string& bytes) { return Encode(bytes, false); }

std::string Deflated(const std::string& bytes) {
    std::string packed(bytes.size() + 100, '\0');
    auto size = static_cast<uLongf>(packed.size());
    compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
              static_cast<uLong>(bytes.size()), 6);
    packed.resize(size);
    return packed;
}

std::string SizeField(uint32_t size) { return {reinterpret_cast<const char*>(&size), sizeof size}; }
const std::string kMagic("QzR_Packed\0", 11);

TEST(TextEncodingTest, AllSizesRoundTripInAllForms) {
    for (const size_t size : {1, 2, 3, 7, 8, 9, 11, 12, 13, 16, 100, 4097, 100000}) {
        for (const std::string& bytes : {Pattern(size), Noise(size)}) {
            EXPECT_EQ(Decode(Encode(bytes, false)), bytes) << size;
            EXPECT_EQ(Decode(Encode(bytes, true)), bytes) << size;
            EXPECT_EQ(Decode(Encode(bytes, true, L"secret"), L"secret"), bytes) << size;
            const bool isLeftEncrypted = size >= 8 && size <= 11;
            EXPECT_EQ(Decode(Encode(bytes, false, L"secret"), L"secret") == bytes, !isLeftEncrypted) << size;
        }
    }
    EXPECT_TRUE(Encode("", true).IsEmpty());
    EXPECT_EQ(Decode(String()), "old content");
}

TEST(TextEncodingTest, ThePackedFormIsABlockOfKnownBytes) {
    const String text = Encode(std::string(100, 'a'), true);
    ASSERT_TRUE(text.Left(3) == L"@2@");
    const std::string block = Decode(text.Mid(3));
    EXPECT_EQ(block.substr(0, 15), SizeField(100) + kMagic);
    EXPECT_EQ(block.substr(15, 2), "\x78\xDA"); // zlib format, window of 32 KB, best compression
    EXPECT_TRUE(Encode(std::string(100, 'a'), false)[0] == L'Y');
}

TEST(TextEncodingTest, OlderBlocksAreRead) {
    const std::string bytes = Pattern(1000);
    for (size_t spare = 0; spare < 3; ++spare) // the padding of the last group counts as bytes
        EXPECT_EQ(
            Decode(String(L"@1@") + Base64Of(SizeField(1000) + Deflated(bytes) + std::string(spare, '\0'))),
            bytes);
    EXPECT_EQ(Decode(String(L"@1@") + Base64Of(SizeField(999) + Deflated(bytes))), "");
    EXPECT_EQ(Decode(L"@1@"), "");
    EXPECT_EQ(Decode(L"@1@QUJD"), "");
}

TEST(TextEncodingTest, DamagedBlocksDecodeToNothingAndForeignOnesToThemselves) {
    const std::string bytes = Pattern(1000);
    const std::string block = SizeField(1000) + kMagic + Deflated(bytes);
    std::string flipped = block;
    flipped[block.size() - 1] ^= 1; // in the checksum
    const struct {
        std::string block;
        std::string decoded;
    } rows[] = {
        {block, bytes},
        {block + "spare", bytes},
        {block.substr(0, block.size() - 1), ""},
        {block.substr(0, 15), ""},
        {flipped, ""},
        {SizeField(999) + kMagic + Deflated(bytes), ""},
        {SizeField(1001) + kMagic + Deflated(bytes), ""},
        {SizeField(0xFFFFFFFF) + kMagic + Deflated(bytes), ""},
        {block.substr(0, 14), block.substr(0, 14)},
        {"no block at all, but text", "no block at all, but text"},
    };
    for (const auto& row : rows) EXPECT_EQ(Decode(String(L"@2@") + Base64Of(row.block)), row.decoded);
    // After a wrong password a packed block is a foreign one.
    EXPECT_EQ(Decode(Encode(bytes, true, L"right"), L"wrong").size(),
              Decode(Encode(bytes, true).Mid(3)).size());
}

TEST(TextEncodingTest, AnUnknownPrefixIsSkippedAndTheTextEndsAtAZero) {
    EXPECT_EQ(Decode(L"@3@QUJD"), std::string("\xDD\x05\x09\x0C\0\0", 6)); // the groups "3QUJ" and "D"
    EXPECT_EQ(Decode(L"@QUJD"), "ABC");
    String text = L"QUJD";
    text.Append(L"\0REVG", 5);
    EXPECT_EQ(Decode(text), "ABC");
}

// The same password is another key under another code page.
TEST(TextEncodingTest, PasswordsCountInTheDefaultCodePage) {
    const uint32_t before = DefaultCodePage();
    const std::string bytes = Pattern(40);
    SetDefaultCodePage(1251);
    const String text = Encode(bytes, false, L"\u0434\u0435");
    EXPECT_EQ(Decode(text, L"\u0434\u0435"), bytes);
    SetDefaultCodePage(1252);
    EXPECT_EQ(Decode(text, L"\u00E4\u00E5"), bytes); // the same bytes
    SetDefaultCodePage(before);
}

TEST(TextEncodingTest, EachFailingCallIsReportedAndRestoresTheContent) {
    const String text = Encode(Pattern(5000), true);
    int struck = 0;
    for (int number = 1; number < 100; ++number) {
        FakeStream stream(Pattern(3000));
        clsFile file(&stream);
        stream.FailCall(number, false);
        DWORD error = ERROR_SUCCESS;
        const String encoded = UtilEncodeFile(file, true, String(), &error);
        EXPECT_EQ(error != ERROR_SUCCESS, encoded.IsEmpty());
        const bool hasStruck = stream.HasStruck();
        if (hasStruck) ++struck;
        EXPECT_EQ(hasStruck, error != ERROR_SUCCESS);

        stream.FailCall(number, false);
        UtilDecodeFile(file, text, String(), &error);
        EXPECT_TRUE(error == ERROR_SUCCESS ? stream.bytes == Pattern(5000) : stream.HasStruck());
        if (!hasStruck && !stream.HasStruck()) break;
        ++struck;
    }
    EXPECT_GT(struck, 6);

    FakeStream unsized(Pattern(3000)); // the new content is longer, so that it need not be cut
    unsized.setSizeResult = E_NOTIMPL;
    clsFile unsizedFile(&unsized);
    DWORD sizeError = ERROR_INVALID_DATA;
    EXPECT_TRUE(UtilDecodeFile(unsizedFile, text, String(), &sizeError));
    EXPECT_EQ(sizeError, static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(unsized.bytes, Pattern(5000));

    FakeStream full(Pattern(3000));
    full.capacity = 4000;
    clsFile file(&full);
    DWORD error = ERROR_SUCCESS;
    EXPECT_TRUE(UtilDecodeFile(file, text, String(), &error));
    EXPECT_NE(error, static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(full.bytes, Pattern(3000));
}

TEST(TextEncodingTest, SourcesThatLieAboutTheirSizeAreRefused) {
    for (const uint64_t size : {uint64_t{101}, uint64_t{1} << 32, uint64_t{1} << 62}) {
        FakeStream stream(Pattern(100));
        stream.claimedSize = size;
        clsFile file(&stream);
        DWORD error = ERROR_SUCCESS;
        EXPECT_TRUE(UtilEncodeFile(file, false, String(), &error).IsEmpty());
        EXPECT_NE(error, static_cast<DWORD>(ERROR_SUCCESS)) << size;
    }
}

} // namespace
} // namespace vxut
