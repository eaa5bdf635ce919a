// The recognition of text encodings.
#include "files/file.h"

#include "tests/support/fake_stream.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace vxut {
namespace {

using test::FakeStream;

std::string Repeat(const std::string& text, size_t times) {
    std::string result;
    while (times-- > 0) result += text;
    return result;
}

// 16-bit text whose first unit, in either byte order, is not UTF-8.
const std::string kWideText("\xAC\x20 \0a\0b\0c\0 \0", 12), kSwappedText("\x20\xAC\0 \0a\0b\0c\0 ", 12);

TEST(UtfTypeTest, MarkOrContentDecides) {
    const std::string accents = Repeat("\xC3\xA9", 100);
    const std::pair<UtfType, std::vector<std::pair<std::string, int64_t>>> kTypesAndContents[] = {
        // Nothing, parts of a mark, too little to judge, and what is neither.
        {kUtfNone, {{"", 0}, {"\xFF", 0}, {"\xEF\xBB", 0}, {accents, 0}, {Repeat("\xE9z ", 100), 0}}},
        {kUtfNone, {{std::string(200, 'a') + "\xC3", 0}}}, // cut within a character
        {kUtf8, {{"\xEF\xBB\xBF", 3}, {"\xEF\xBB\xBF" + Repeat("\xFF", 300), 3}, {accents + "a", 0}}},
        {kUtf8, {{std::string("a\0", 2) + Repeat("\xFF", 300), 0}}}, // only what precedes the zero counts
        {kUtf16LittleEndian, {{"\xFF\xFE", 2}, {"\xFF\xFEz", 2}, {Repeat(kWideText, 40), 0}}},
        {kUtf16BigEndian, {{"\xFE\xFF", 2}, {Repeat(kSwappedText, 40), 0}}}};
    for (const auto& [type, contents] : kTypesAndContents) {
        for (const auto& [content, position] : contents) {
            FakeStream stream(content);
            clsFile file(&stream);
            EXPECT_EQ(file.GetUTFType(), type) << testing::PrintToString(content);
            EXPECT_EQ(file.GetPosition(), position) << testing::PrintToString(content);
        }
    }
}

TEST(UtfTypeTest, ProbeFromElsewhereAndLiesAboutTheSizeAreSurvived) {
    for (const uint64_t claim : {uint64_t{0}, uint64_t{303}, uint64_t{1} << 40, UINT64_MAX}) {
        FakeStream stream("\xFF\xFE" + std::string(300, 'a'));
        stream.claimedSize = claim;
        stream.position = 5;
        EXPECT_EQ(clsFile(&stream).GetUTFType(), kUtfNone) << claim;
        EXPECT_EQ(stream.position, 5u);
    }
}

} // namespace
} // namespace vxut
