#include "profile/small_blocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

namespace vxut {
namespace {

struct Block {
    void* memory;
    size_t bytes;
    int fill;

    bool IsIntact() const {
        const auto* const begin = static_cast<const unsigned char*>(memory);
        return std::all_of(begin, begin + bytes, [this](unsigned char byte) { return byte == fill; });
    }
};

TEST(SmallBlocksTest, BlocksOfAllSizesKeepTheirContentsAndGoBackInAnyOrder) {
    clsSmallBlocks source;
    std::mt19937 random(6); // NOLINT: the same order in every run
    std::vector<Block> blocks;
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 20'000; ++i) {
            const size_t bytes = 1 + random() % (clsSmallBlocks::kMaxBytes + 40);
            blocks.push_back({source.Take(bytes), bytes, i % 256});
            ASSERT_NE(blocks.back().memory, nullptr);
            std::memset(blocks.back().memory, blocks.back().fill, bytes);
        }
        std::shuffle(blocks.begin(), blocks.end(), random);
        for (int i = 0; i < 15'000; ++i) {
            const Block block = blocks.back();
            blocks.pop_back();
            ASSERT_TRUE(block.IsIntact()) << block.bytes;
            source.Give(block.memory, block.bytes);
        }
    }
    EXPECT_TRUE(
        std::all_of(blocks.begin(), blocks.end(), [](const Block& block) { return block.IsIntact(); }));
    for (const Block& block : blocks) source.Give(block.memory, block.bytes);
    EXPECT_LE(source.Slabs(), clsSmallBlocks::kMaxBytes / clsSmallBlocks::kGrain)
        << "one of each size is kept";
    source.ShutDown();
    EXPECT_EQ(source.Slabs(), 0u);
}

} // namespace
} // namespace vxut
