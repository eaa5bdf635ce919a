#include "base/byte_cursor.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string_view>

namespace vxut {
namespace {

constexpr uint8_t kBytes[] = {0x01, 0x02, 0x83, 0x04, 0x05, 0x06, 0x07, 0x88, 0x09};

TEST(ByteCursor, ReadsIntegersInBothOrders) {
    clsByteCursor cursor{kBytes};
    uint8_t byte;
    int16_t word;
    uint32_t large;
    uint64_t largest;
    EXPECT_TRUE(cursor.ReadBig(byte) && byte == 0x01);
    EXPECT_TRUE(cursor.PeekLittle(word) && word == static_cast<int16_t>(0x8302));
    EXPECT_TRUE(cursor.ReadBig(word) && word == 0x0283);
    EXPECT_TRUE(cursor.PeekLittle(large) && large == 0x07060504);
    EXPECT_TRUE(cursor.Read(large, ByteOrder::kBig) && large == 0x04050607);
    EXPECT_EQ(cursor.Position(), 7u);
    EXPECT_TRUE(cursor.Seek(1) && cursor.PeekBig(largest) && largest == 0x0283040506078809);
    EXPECT_TRUE(cursor.ReadLittle(largest) && largest == 0x0988070605048302);
    EXPECT_TRUE(cursor.IsAtEnd());
}

constexpr bool ReadsAtCompileTime() {
    clsByteCursor cursor{kBytes};
    uint32_t value = 0;
    return cursor.Skip(5) && cursor.ReadBig(value) && value == 0x06078809 && !cursor.ReadBig(value);
}
static_assert(ReadsAtCompileTime());

// From each position: what does not fit leaves the cursor and the target alone, whatever the size asked for.
TEST(ByteCursor, LeavesEverythingAloneWhenAReadDoesNotFit) {
    struct Header {
        uint8_t bytes[5];
    };
    for (size_t position = 0; position <= std::size(kBytes); ++position) {
        clsByteCursor cursor{kBytes};
        ASSERT_TRUE(cursor.Seek(position));
        const size_t left = std::size(kBytes) - position;
        for (const size_t size : {left + 1, SIZE_MAX - position / 2, SIZE_MAX}) {
            std::span<const uint8_t> bytes;
            clsByteCursor part;
            EXPECT_FALSE(cursor.Skip(size) || cursor.PeekBytes(size, bytes) ||
                         cursor.ReadBytes(size, bytes) || cursor.ReadPart(size, part) ||
                         cursor.Part(position, size, part) || cursor.Part(SIZE_MAX, size, part))
                << position << " " << size;
            EXPECT_EQ(bytes.data(), nullptr);
            EXPECT_EQ(part.Size(), 0u);
        }
        uint32_t value = 77;
        EXPECT_EQ(cursor.PeekLittle(value), left >= 4);
        EXPECT_EQ(value == 77, left < 4);
        Header header = {{42}};
        clsByteCursor copy = cursor;
        EXPECT_EQ(copy.ReadObject(header), left >= 5);
        EXPECT_EQ(copy.Position(), left >= 5 ? position + 5 : position);
        EXPECT_EQ(header.bytes[0], left >= 5 ? kBytes[position] : 42);
        EXPECT_FALSE(cursor.Seek(std::size(kBytes) + 1) || cursor.Seek(SIZE_MAX));
        EXPECT_EQ(cursor.Position(), position);
    }
}

TEST(ByteCursor, PartsEndWhereTheyAreSaidTo) {
    clsByteCursor cursor{kBytes};
    clsByteCursor part;
    uint16_t word;
    uint8_t byte;
    ASSERT_TRUE(cursor.Skip(2) && cursor.ReadPart(3, part));
    EXPECT_EQ(cursor.Position(), 5u);
    EXPECT_TRUE(part.ReadBig(word) && word == 0x8304);
    EXPECT_FALSE(part.ReadBig(word));
    EXPECT_TRUE(part.ReadBig(byte) && byte == 5);
    ASSERT_TRUE(cursor.Part(7, 2, part)); // of the whole, wherever the position is
    EXPECT_TRUE(part.ReadBig(word) && word == 0x8809);
    EXPECT_TRUE(cursor.Part(std::size(kBytes), 0, part) && part.IsAtEnd());
}

TEST(ByteCursor, FindsBytesFromThePositionOn) {
    constexpr std::string_view kText("obj\0endobj endobx endobj", 24);
    clsByteCursor cursor(kText.data(), kText.size());
    EXPECT_TRUE(cursor.ReadMagic("obj"));
    EXPECT_FALSE(cursor.ReadMagic("obj"));
    EXPECT_TRUE(cursor.Find("endobj") && cursor.Position() == 4);
    EXPECT_TRUE(cursor.Skip(1) && cursor.Find("endobj") && cursor.Position() == 18);
    EXPECT_TRUE(cursor.Skip(1));
    EXPECT_FALSE(cursor.Find("endobj"));
    EXPECT_EQ(cursor.Position(), 19u);
    EXPECT_FALSE(cursor.StartsWith("ndobjx")); // longer than what is left
    EXPECT_TRUE(cursor.Find(""));
    clsByteCursor none;
    EXPECT_TRUE(none.IsAtEnd() && none.StartsWith("") && !none.Find("x"));
}

} // namespace
} // namespace vxut
