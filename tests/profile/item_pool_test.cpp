#include "profile/item_pool.h"

#include "profile/item_list.h"

#include <gtest/gtest.h>

namespace vxut {
namespace {

constexpr uint32_t kSlots = clsItemBlock::kSlots;

TEST(ItemPoolTest, FillsABlockBeforeItMakesAnotherAndTakesAFreedSlotNext) {
    clsItemPool pool;
    clsItem* items[kSlots];
    const auto take = [&pool] { return pool.Take({}, {}).release(); };
    for (clsItem*& item : items) item = take();
    EXPECT_EQ(items[kSlots - 1], items[0] + kSlots - 1);
    pool.Give(items[2]);
    pool.Give(items[7]);
    EXPECT_EQ(take(), items[7]);
    EXPECT_EQ(take(), items[2]) << "slot 8 is taken";
    EXPECT_EQ(pool.Counts().scans, 1u);
    clsItem* const next = take();
    EXPECT_TRUE(next < items[0] || next > items[kSlots - 1]) << "a block of its own";
    for (clsItem* const item : items) pool.Give(item);
    EXPECT_EQ(pool.Counts().blocks, 1u) << "an old block goes with its last item";
    pool.ShutDown();
    EXPECT_EQ(pool.Counts().blocks, 1u) << "an item still lives in it";
    pool.Give(next);
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

// The memory of a load is bounded by the length of its file.
TEST(ItemPoolTest, AnEmptyListOrItemTakesLessThan64BytesAndItsSlot) {
    constexpr int kEntries = 100'000;
    constexpr uint64_t kSlabBytes = 64 * 1024;
    clsItemList root(L"/");
    for (const bool isList : {true, false}) {
        const uint64_t before = ItemPool().Counts().slabs;
        for (int i = 0; i < kEntries; ++i)
            isList ? void(root.AppendList(L"")) : void(root.AppendItem(L"a", L""));
        EXPECT_LT((ItemPool().Counts().slabs - before) * kSlabBytes, (64 + sizeof(clsItem)) * kEntries)
            << isList;
    }
}

} // namespace
} // namespace vxut
