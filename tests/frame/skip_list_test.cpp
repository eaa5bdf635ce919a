#include "frame/skip_list.h"

#include "tests/support/container_test.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace vxut {
namespace {

using test::Counted;
using test::NodeAllocator;
using test::ThrowingCopies;
using SkipList = test::ContainerTest;
using CountedSet = WCValSkipListSet<Counted>;
using CountedDict = WCValSkipListDict<Counted, Counted>;

// The level choice told once more: two bits a step from words of 15 bits that the generator makes.
struct LevelModel {
    uint32_t state;
    uint32_t word = 0;
    uint32_t shift = 14;

    uint32_t Choose(uint32_t mask, uint32_t maximumLevels) {
        for (uint32_t level = 0;; ++level, shift += 2) {
            if (shift == 14) {
                state = state * 214013 + 2531011;
                word = state >> 16 & 0x7FFF;
                shift = 0;
            }
            if ((word >> shift & mask) == 0) continue;
            shift += 2;
            return std::min(level, maximumLevels - 1);
        }
    }
};

TEST_F(SkipList, LevelsFollowTheGeneratorAndGrowByOneAtMost) {
    for (const auto& [mask, maximum] : {std::pair{1u, 20u}, {1u, 2u}, {3u, 1u}, {3u, 8u}}) {
        NodeAllocator::sizes.clear();
        std::srand(12345);
        LevelModel model{12345};
        WCValSkipListSet<int64_t> set(mask, maximum, NodeAllocator::Allocate, NodeAllocator::Deallocate);
        std::map<size_t, int> expected;
        uint32_t top = 0;
        for (int i = 0; i < 3000; ++i) {
            set.insert(i * 7919 % 3001);
            const uint32_t level = std::min(model.Choose(mask, maximum), top + 1);
            top = std::max(top, level);
            ++expected[sizeof(int64_t) + (level + 1) * sizeof(void*)];
        }
        EXPECT_EQ(NodeAllocator::sizes, expected) << "mask " << mask << ", levels " << maximum;
        EXPECT_EQ(set.topLevel(), top);
        auto copy = set;
        copy.clear(); // frees each node with the size of its height
        for (int i = 0; i < 3001; ++i) set.remove(i);
        EXPECT_EQ(set.topLevel(), 0u);
    }
}

TEST_F(SkipList, LevelsAreClampedAtConstruction) {
    const struct {
        uint32_t mask, maximum, expectedMask, expectedMaximum;
    } cases[] = {{1, 1, 1, 1}, {3, 8, 3, 8}, {2, 25, 3, 20}, {0, 0, 3, 1}, {7, 20, 3, 20}, {~0u, ~0u, 3, 20}};
    for (const auto& row : cases) {
        const WCValSkipListSet<int> set(row.mask, row.maximum);
        EXPECT_EQ(set.levelMask(), row.expectedMask) << row.mask;
        EXPECT_EQ(set.maximumLevels(), row.expectedMaximum) << row.maximum;
    }
}

TEST_F(SkipList, ADictionaryBehavesAsAMapUnderRandomChanges) {
    std::mt19937 random(1789);
    CountedDict dict(3, 8, NodeAllocator::Allocate, NodeAllocator::Deallocate);
    std::map<int, int> model;
    for (int step = 0; step < 20000; ++step) {
        const int key = static_cast<int>(random() % 500);
        switch (random() % 4) {
            case 0:
                EXPECT_EQ(dict.insert(key, step), model.emplace(key, step).second);
                break;
            case 1:
                EXPECT_EQ(dict.remove(key), model.erase(key) == 1);
                break;
            case 2:
                dict[key].value += step, model[key] += step;
                break;
            default:
                const Counted* const value = std::as_const(dict).find(key);
                ASSERT_EQ(value != nullptr, model.contains(key));
                if (value) EXPECT_EQ(value->value, model[key]);
        }
        ASSERT_EQ(dict.entries(), static_cast<int>(model.size()));
    }
    const CountedDict copy = dict;
    const CountedDict taken = std::move(dict);
    EXPECT_TRUE(dict.insert(1, 1)); // NOLINT(bugprone-use-after-move): the moved-from list stays usable
    for (const CountedDict* walked : {&copy, &taken}) {
        EXPECT_TRUE(
            std::equal(walked->begin(), walked->end(), model.begin(), model.end(),
                       [](auto& a, auto& b) { return a.key.value == b.first && a.value.value == b.second; }));
    }
}

// Orders by key only, so that equal elements can be told apart.
struct Labelled {
    int key, label;
    bool operator==(const Labelled& other) const { return key == other.key; }
    bool operator<(const Labelled& other) const { return key < other.key; }
};

TEST_F(SkipList, AMultisetPutsTheNewestOfEqualElementsFirst) {
    std::mt19937 random(99);
    WCValSkipList<Labelled> list;
    std::vector<Labelled> model;
    for (int step = 0; step < 5000; ++step) {
        const Labelled element = {static_cast<int>(random() % 20), step};
        const auto place = std::lower_bound(model.begin(), model.end(), element);
        const bool isThere = place != model.end() && *place == element;
        ASSERT_EQ(list.contains(element), isThere);
        if (random() % 3) {
            EXPECT_TRUE(list.insert(element));
            model.insert(place, element);
        } else {
            EXPECT_EQ(list.remove(element), isThere);
            if (isThere) model.erase(place);
        }
    }
    const WCValSkipList<Labelled> copy = list;
    EXPECT_TRUE(std::equal(copy.begin(), copy.end(), model.begin(), model.end(),
                           [](auto& a, auto& b) { return a.key == b.key && a.label == b.label; }));
}

TEST_F(SkipList, RefusedAndFailedInsertionsChangeNothing) {
    CountedSet set(3, 8, NodeAllocator::Allocate, NodeAllocator::Deallocate);
    for (int i = 0; i < 50; ++i) set.insert(i);
    Counted kept(7);
    EXPECT_FALSE(set.insert(std::move(kept)));
    EXPECT_EQ(kept.value, 7); // NOLINT(bugprone-use-after-move): a refused element is not moved
    const Counted fresh(50);
    {
        const ThrowingCopies throwing(0);
        EXPECT_THROW(set.insert(fresh), std::runtime_error);
    }
    {
        const ThrowingCopies throwing(30);
        EXPECT_THROW(const CountedSet copy = set, std::runtime_error);
    }
    NodeAllocator::isDry = true;
    for (int i = 100; i < 200; ++i) EXPECT_FALSE(set.insert(i));
    NodeAllocator::isDry = false;
    EXPECT_TRUE(set.insert(fresh));
    int expected = 0;
    for (const Counted& element : set) EXPECT_EQ(element.value, expected++);
    EXPECT_EQ(expected, 51);
}

TEST_F(SkipList, AFailedPairLeavesTheDictionaryAsItWas) {
    CountedDict dict(1, 20, NodeAllocator::Allocate, NodeAllocator::Deallocate);
    for (int i = 0; i < 20; ++i) dict.insert(i, i);
    const Counted key(100);
    // The key is copied into the pair, and from there into the node.
    for (const int copies : {0, 1}) {
        const ThrowingCopies throwing(copies);
        EXPECT_THROW(dict[key], std::runtime_error);
    }
    NodeAllocator::isDry = true;
    EXPECT_THROW(dict[key], std::bad_alloc);
    EXPECT_EQ(dict.find(key), nullptr);
    EXPECT_EQ(NodeAllocator::blocks.size(), 20u);
}

TEST_F(SkipList, AnIteratorStandsBeforeTheFirstAndStaysBehindTheLast) {
    WCValSkipListDict<int, char> dict;
    WCValSkipListDictIter<int, char> iterator(dict);
    EXPECT_FALSE(++iterator);
    for (const int key : {3, 1, 2}) dict.insert(key, static_cast<char>('a' + key));
    iterator.reset();
    while (++iterator) iterator.value() = static_cast<char>(iterator.value() - 'a' + 'A');
    EXPECT_FALSE(++iterator);
    std::string text;
    WCValConstSkipListDictIter<int, char> constIterator(dict);
    while (++constIterator) text += std::to_string(constIterator.key()) + constIterator.value();
    EXPECT_EQ(text, "1B2C3D");
}

TEST_F(SkipList, APointerSetComparesWhatItPointsAt) {
    int one = 1, two = 2, anotherOne = 1;
    WCPtrSkipListSet<int> set;
    EXPECT_FALSE(set.insert(nullptr));
    EXPECT_TRUE(set.insert(&two));
    EXPECT_TRUE(set.insert(&one));
    EXPECT_FALSE(set.insert(&anotherOne));
    EXPECT_EQ(set.find(1), &one);
    EXPECT_EQ(*set.begin(), &one);
    EXPECT_TRUE(set.remove(2));
    EXPECT_FALSE(set.contains(2));
}

} // namespace
} // namespace vxut
