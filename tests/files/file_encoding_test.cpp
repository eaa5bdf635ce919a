// The recognition of text encodings.
#include "files/file.h"

#include "frame/utf8.h"
#include "tests/support/debug_listener.h"
#include "tests/support/fake_stream.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace vxut {
namespace {

using test::FakeStream;

std::string Repeat(const std::string& text, size_t times) {
    std::string result;
    while (times-- > 0) result += text;
    return result;
}

std::string SwapBytes(std::string text) {
    for (size_t i = 0; i + 1 < text.size(); i += 2) std::swap(text[i], text[i + 1]);
    return text;
}

// 16-bit text whose first unit, in either byte order, is not UTF-8.
const std::string kWideText("\xAC\x20 \0a\0b\0c\0 \0", 12);

TEST(UtfTypeTest, MarkOrContentDecides) {
    const struct {
        const char* what;
        std::string content;
        UtfType type;
        int64_t position;
    } kCases[] = {
        {"empty", "", kUtfNone, 0},
        {"one byte of a mark", "\xFF", kUtfNone, 0},
        {"little-endian mark alone", "\xFF\xFE", kUtf16LittleEndian, 2},
        {"big-endian mark alone", "\xFE\xFF", kUtf16BigEndian, 2},
        {"two thirds of a mark", "\xEF\xBB", kUtfNone, 0},
        {"UTF-8 mark alone", "\xEF\xBB\xBF", kUtf8, 3},
        {"mark and an odd byte", "\xFF\xFEz", kUtf16LittleEndian, 2},
        {"200 bytes of UTF-8", Repeat("\xC3\xA9", 100), kUtfNone, 0},
        {"201 bytes of UTF-8", Repeat("\xC3\xA9", 100) + "a", kUtf8, 0},
        {"201 bytes of ASCII", std::string(201, 'a'), kUtf8, 0},
        {"201 bytes cut within a character", std::string(200, 'a') + "\xC3", kUtfNone, 0},
        {"ANSI text", Repeat("\xE9z ", 100), kUtfNone, 0},
        {"16-bit text", Repeat(kWideText, 40), kUtf16LittleEndian, 0},
        {"16-bit text, bytes swapped", SwapBytes(Repeat(kWideText, 40)), kUtf16BigEndian, 0},
        {"valid up to the first zero byte", std::string("a\0", 2) + Repeat("\xFF", 300), kUtf8, 0},
        {"mark before invalid bytes", "\xEF\xBB\xBF" + Repeat("\xFF", 300), kUtf8, 3},
    };
    for (const auto& row : kCases) {
        FakeStream stream(row.content);
        clsFile file(&stream);
        EXPECT_EQ(file.GetUTFType(), row.type) << row.what;
        EXPECT_EQ(file.GetPosition(), row.position) << row.what;
    }
    EXPECT_EQ(clsFile().GetUTFType(), kUtfNone);
}

TEST(UtfTypeTest, ProbeFromElsewhereJudgesByContentAndComesBack) {
    const DebugListener listener;
    const std::pair<std::string, UtfType> kContents[] = {{"\xFF\xFEzzzzzz", kUtfNone},
                                                         {"\xEF\xBB\xBF" + std::string(300, 'a'), kUtf8}};
    for (const auto& [content, type] : kContents) {
        FakeStream stream(content);
        clsFile file(&stream);
        file.SetPosition(5);
        EXPECT_EQ(file.GetUTFType(), type);
        EXPECT_EQ(file.GetPosition(), 5);
        EXPECT_TRUE(listener.Heard(L"clsFile::GetUTFType(): file not at BOF!"));
    }
}

TEST(UtfTypeTest, LiesAboutTheSizeAreSurvived) {
    for (const uint64_t claim : {uint64_t{0}, uint64_t{301}, uint64_t{1} << 40, UINT64_MAX}) {
        FakeStream stream(std::string(300, 'a'));
        stream.claimedSize = claim;
        EXPECT_EQ(clsFile(&stream).GetUTFType(), kUtfNone) << claim;
        EXPECT_EQ(stream.position, 0u);
    }
    FakeStream trickle(std::string(300, 'a'));
    trickle.maxPiece = 7;
    EXPECT_EQ(clsFile(&trickle).GetUTFType(), kUtfNone);
}

// The lowest and the highest of each length; a surrogate is a unit like any other.
TEST(Utf8Test, AcceptsShortestFormsBelow0x10000) {
    for (const char* bytes :
         {"", "plain", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xEF\xBF\xBF", "\xED\xA0\x80"})
        EXPECT_TRUE(IsValidUtf8(bytes)) << testing::PrintToString(bytes);
    for (const char* bytes :
         {"\x80", "a\xBFz",                                           // stray
          "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", // longer than needed
          "\xC3", "\xE2\x82", "\xE2\x28\xA1",                         // cut
          "\xF0\x90\x80\x80", "\xFE\x82\x80\x80\x80\x80\x80", "\xFF\x80\x80\x80\x80\x80\x80\x80"}) // too wide
        EXPECT_FALSE(IsValidUtf8(bytes)) << testing::PrintToString(bytes);
}

} // namespace
} // namespace vxut
