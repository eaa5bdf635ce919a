// Lookups by name in lists that are long enough for an index.
#include "profile/item_list.h"
#include "profile/item_path.h"
#include "tests/support/failing_allocations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace vxut {
namespace {

const clsItem* FirstOf(const clsItemList& list, EntryKind kind, std::wstring_view name) {
    for (const clsItem* const item : list)
        if (item->Kind() == kind && item->Name() == name) return item;
    return nullptr;
}

// Looks all names up often enough for the index to be made, and compares with a walk.
void ExpectRightLookups(const clsItemList& list, int names) {
    for (int round = 0; round < 3; ++round) {
        for (int i = -1; i < names; ++i) {
            const std::wstring name = i < 0 ? L"" : L"name" + std::to_wstring(i);
            ASSERT_EQ(list.FindItem(name), FirstOf(list, EntryKind::kPlain, name)) << i;
            const clsItem* const entry = FirstOf(list, EntryKind::kList, name);
            ASSERT_EQ(list.FindList(name), entry ? entry->Sublist() : nullptr) << i;
        }
    }
}

TEST(NameIndexTest, FindsTheFirstOfEachKindAndNameAfterAnyChanges) {
    constexpr int kNames = 150;
    std::mt19937 random(11); // NOLINT: the same order in every run
    clsItemList list(L"/");
    for (int step = 0; step < 600; ++step) {
        const auto number = static_cast<int>(random() % kNames);
        const std::wstring name = number == 0 ? L"" : L"name" + std::to_wstring(number);
        switch (random() % 8) {
            case 0:
                list.RemoveNamed(EntryKind::kPlain, name);
                break;
            case 1:
                list.RemoveNamed(EntryKind::kList, name);
                break;
            case 2:
                list.AppendList(name);
                break;
            case 3: {
                const clsItem* const victim = FirstOf(list, EntryKind::kPlain, name);
                list.RemoveEntries([=](const clsItem& item) { return &item == victim; });
                break;
            }
            case 4:
                list.SetItem(name, L"set");
                break;
            default:
                list.AppendItem(name, L"value");
        }
        if (step % 20 == 0) ASSERT_NO_FATAL_FAILURE(ExpectRightLookups(list, kNames)) << step;
    }
    clsItemList other(L"/");
    other.AppendItem(L"name1", L"first");
    other.TakeEntries(list);
    ExpectRightLookups(other, kNames);
    ExpectRightLookups(list, kNames);
    other.Empty();
    ExpectRightLookups(other, kNames);
}

TEST(NameIndexTest, NamesThatDifferInOneUnitOrOnlyInCaseAreDifferent) {
    clsItemList list(L"/");
    for (int length = 0; length < 40; ++length) {
        list.AppendItem(std::wstring(static_cast<size_t>(length), L'x'), L"");
        list.AppendItem(std::wstring(static_cast<size_t>(length), L'x') + L'X', L"");
    }
    for (int round = 0; round < 10; ++round)
        for (const clsItem* const item : list) ASSERT_EQ(list.FindItem(item->Name()), item);
    EXPECT_EQ(list.FindItem(std::wstring(41, L'x')), nullptr);
}

TEST(NameIndexTest, WithoutMemoryLookupsAndAppendsGoOn) {
    constexpr int kNames = 100;
    clsItemList list(L"/");
    for (int i = 0; i < kNames; ++i) list.AppendItem(L"name" + std::to_wstring(i), L"");
    for (int successes = 0; successes < 4; ++successes) {
        const test::FailingAllocations failing(successes);
        for (int i = 0; i < 20; ++i)
            if (list.FindItem(L"name99") != FirstOf(list, EntryKind::kPlain, L"name99"))
                ADD_FAILURE() << successes;
    }
    ExpectRightLookups(list, kNames);
    // The index cannot grow while the items that it is to take are appended.
    std::vector<clsAutoGiveItem> items;
    clsItemList source(L"/");
    for (int i = kNames; i < 1000; ++i) source.AppendItem(L"name" + std::to_wstring(i), L"");
    bool hasFailed = false;
    {
        test::FailingAllocations failing(0);
        list.TakeEntries(source);
        hasFailed = failing.Disarm();
    }
    EXPECT_TRUE(hasFailed);
    ExpectRightLookups(list, 1000);
}

TEST(NameIndexTest, SeveralThreadsMayLookUpAtTheSameTime) {
    clsItemList list(L"/");
    for (int i = 0; i < 500; ++i) list.AppendItem(L"name" + std::to_wstring(i), L"");
    std::atomic<int> missed = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 5000; ++i)
                missed += list.FindItem(L"name" + std::to_wstring(i % 500)) == nullptr;
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(missed, 0);
}

// 2e5 walks through the list would take minutes.
TEST(NameIndexTest, SettingAndDeletingManyNamesTakesTimeInProportion) {
    constexpr int kNames = 200'000;
    clsItemList root(L"/");
    const scPlace place{root, root};
    for (int round = 0; round < 2; ++round)
        for (int i = 0; i < kNames; ++i) root.SetItem(L"name" + std::to_wstring(i), L"value");
    EXPECT_EQ(root.entries(), kNames);
    for (int i = 0; i < kNames; ++i) DeleteItemsAt(root, (L"none" + std::to_wstring(i)).c_str());
    EXPECT_EQ(FindItemAt(place, L"name199999")->Value(), L"value");
}

} // namespace
} // namespace vxut
