#include "containers/skip_list.h"

#include "tests/support/container_test.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <utility>
#include <vector>

namespace vxut {
namespace {

using test::Counted;
using test::ExpectAllOrNothing;
using test::NodeAllocator;
using SkipList = test::ContainerTest;
using CountedDict = WCValSkipListDict<Counted, Counted>;

TEST_F(SkipList, ADictionaryBehavesAsAMapUnderRandomChanges) {
    std::mt19937 random(1789);
    CountedDict dict(3, 8, NodeAllocator::Allocate, NodeAllocator::Free);
    std::map<int, int> model;
    for (int step = 0; step < 20000; ++step) {
        const int key = static_cast<int>(random() % 500);
        const Counted* const value = std::as_const(dict).find(key);
        ASSERT_EQ(value ? value->value : -1, model.contains(key) ? model[key] : -1);
        switch (random() % 3) {
            case 0:
                EXPECT_EQ(dict.insert(key, step), model.emplace(key, step).second);
                break;
            case 1:
                EXPECT_EQ(dict.remove(key), model.erase(key) == 1);
                break;
            default:
                dict[key].value = model[key] = step;
        }
        ASSERT_EQ(dict.entries(), static_cast<int>(model.size()));
    }
    CountedDict copy = dict;
    const CountedDict taken = std::move(copy);
    EXPECT_EQ(copy.entries(), 0); // NOLINT(bugprone-use-after-move): the moved-from list stays usable
    EXPECT_TRUE(std::equal(taken.begin(), taken.end(), model.begin(), model.end(), [](auto& a, auto& b) {
        return a.key().value == b.first && a.value.value == b.second;
    }));
}

std::vector<std::pair<int, int>> PairsOf(const CountedDict& dict) {
    std::vector<std::pair<int, int>> pairs;
    for (const auto& pair : dict) pairs.emplace_back(pair.key().value, pair.value.value);
    return pairs;
}

TEST_F(SkipList, ChangesAreMadeWhollyOrNotAtAll) {
    CountedDict original(1, 20, NodeAllocator::Allocate, NodeAllocator::Free);
    for (int i = 0; i < 20; ++i) original.insert(i, i);
    bool (*const changes[])(CountedDict&) = {
        [](CountedDict& dict) { return dict.insert(100, 1); },
        [](CountedDict& dict) { return dict[100].value == 0; },
        [](CountedDict& dict) { return dict.remove(7); },
        [](CountedDict& dict) {
            CountedDict other(dict);
            if (!other.insert(100, 1)) return false;
            return dict = other, true;
        },
    };
    for (const auto change : changes) ExpectAllOrNothing(original, change, PairsOf);
}

// A key that counts how often it is compared.
struct Watched {
    int value;
    mutable int comparisons = 0;

    // Counts for the left one, which is the list's.
    static int Order(const Watched& left, const Watched& right) {
        ++left.comparisons;
        return (left.value > right.value) - (left.value < right.value);
    }
    bool operator==(const Watched& other) const { return Order(*this, other) == 0; }
    bool operator<(const Watched& other) const { return Order(*this, other) < 0; }
};

TEST_F(SkipList, ASearchComparesANodeOnce) {
    constexpr int kEntries = 200;
    WCValSkipListDict<Watched, int> dict(1, 8);
    for (int i = 0; i < kEntries; ++i) dict.insert({2 * i}, i);
    for (int key = -1; key <= 2 * kEntries; ++key) {
        for (const auto& pair : dict) pair.key().comparisons = 0;
        const bool isHit = key % 2 == 0 && key >= 0 && key < 2 * kEntries;
        if (isHit && key % 3 == 0)
            EXPECT_FALSE(dict.insert({key}, 0)) << key;
        else
            EXPECT_EQ(dict.contains({key}), isHit) << key;
        for (const auto& pair : dict)
            ASSERT_LE(pair.key().comparisons, 1) << key << " at " << pair.key().value;
    }
}

TEST_F(SkipList, AmongEqualElementsTheLastInsertedIsFirst) {
    struct Numbered {
        int value;
        int number;
        bool operator==(const Numbered& other) const { return value == other.value; }
        bool operator<(const Numbered& other) const { return value < other.value; }
    };
    WCValSkipList<Numbered> list;
    for (int i = 0; i < 300; ++i) list.insert({i % 3, i});
    for (int value = 0; value < 3; ++value) {
        const Numbered* const found = list.find({value, 0});
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->number, 297 + value);
        EXPECT_TRUE(list.remove({value, 0}));
        EXPECT_EQ(list.find({value, 0})->number, 294 + value);
    }
}

TEST_F(SkipList, ASetOfPointersComparesWhatTheyPointTo) {
    int numbers[] = {3, 1, 2}, twin = 1;
    WCPtrSkipListSet<int> set;
    for (int& number : numbers) EXPECT_TRUE(set.insert(&number));
    EXPECT_FALSE(set.insert(&twin));
    EXPECT_FALSE(set.insert(nullptr));
    EXPECT_EQ(set.find(twin), &numbers[1]);
    EXPECT_TRUE(set.remove(twin));
    EXPECT_EQ(set.find(twin), nullptr);
    EXPECT_EQ(set.entries(), 2);
}

TEST_F(SkipList, ANodeHasAThirdOfAPointerForTheHigherLevels) {
    constexpr size_t kEntries = 4000;
    WCValSkipListSet<int> set(3, 8, NodeAllocator::Allocate, NodeAllocator::Free);
    for (size_t i = 0; i < kEntries; ++i) set.insert(static_cast<int>(i));
    EXPECT_NEAR(static_cast<double>(NodeAllocator::Bytes()), kEntries * (8 + 8 * 4 / 3.0), kEntries * 0.8);
}

} // namespace
} // namespace vxut
