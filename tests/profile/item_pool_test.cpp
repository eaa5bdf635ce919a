#include "profile/item_pool.h"

#include "profile/item_list.h"

#include <gtest/gtest.h>

#include <vector>

namespace vxut {
namespace {

constexpr uint32_t kSlots = clsItemBlock::kSlots;

std::vector<clsItem*> Take(clsItemPool& pool, uint32_t count) {
    std::vector<clsItem*> items;
    for (uint32_t i = 0; i < count; ++i) items.push_back(pool.Take());
    return items;
}

TEST(ItemPoolTest, FillsABlockInOrderBeforeItMakesAnother) {
    clsItemPool pool;
    const auto items = Take(pool, kSlots);
    for (uint32_t i = 0; i < kSlots; ++i) EXPECT_EQ(items[i], items[0] + i);
    EXPECT_EQ(pool.Counts().hits, kSlots);
    EXPECT_EQ(pool.Counts().blocks, 1u);
    clsItem* const next = pool.Take();
    EXPECT_NE(next->Block(), items[0]->Block());
    EXPECT_EQ(pool.Counts().blocks, 2u);

    for (clsItem* const item : items) pool.Give(item);
    EXPECT_EQ(pool.Counts().blocks, 1u) << "an old block goes with its last item";
    pool.Give(next);
    EXPECT_EQ(pool.Counts().blocks, 1u) << "the current block stays";
    pool.ShutDown();
    EXPECT_EQ(pool.Counts().blocks, 0u);
}

TEST(ItemPoolTest, AFreedSlotIsTakenNextAndThenTheLowestFree) {
    clsItemPool pool;
    auto items = Take(pool, 10);
    pool.Give(items[2]);
    pool.Give(items[7]);
    EXPECT_EQ(pool.Take(), items[7]);
    EXPECT_EQ(pool.Counts().scans, 0u);
    EXPECT_EQ(pool.Take(), items[2]) << "slot 8 is taken";
    EXPECT_EQ(pool.Counts().scans, 1u);
    pool.ShutDown();
    EXPECT_EQ(pool.Counts().blocks, 1u) << "items still live in it";
    for (clsItem* const item : items) pool.Give(item);
    pool.ShutDown();
    EXPECT_EQ(pool.Counts().blocks, 0u);
}

TEST(ItemPoolTest, ATreeGivesBackAllItTook) {
    const uint64_t before = ItemPool().Counts().blocks;
    {
        clsItemList root(L"/");
        for (int i = 0; i < 500; ++i) root.AppendList(L"l").AppendItem(L"n", L"v");
        EXPECT_GE(ItemPool().Counts().blocks, before + 1000 / kSlots - 1);
    }
    EXPECT_LE(ItemPool().Counts().blocks, before + 1);
}

} // namespace
} // namespace vxut
