#include "frame/skip_list.h"

#include "tests/support/counted.h"
#include "tests/support/node_allocator.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace vxut {
namespace {

using test::Counted;
using test::NodeAllocator;
using test::ThrowingCopies;

using CountedSet = WCValSkipListSet<Counted>;
using CountedDict = WCValSkipListDict<Counted, Counted>;

// The level choice told once more: two bits a step from words of 15 bits that the generator makes.
class LevelModel {
public:
    explicit LevelModel(uint32_t seed) : state_(seed) { Refill(); }

    uint32_t Choose(uint32_t mask, uint32_t maximumLevels) {
        uint32_t level = 0;
        for (;; ++level) {
            const uint32_t bits = word_ & mask;
            word_ >>= 2;
            if (--left_ == 0) Refill();
            if (bits != 0) break;
        }
        return std::min(level, maximumLevels - 1);
    }

private:
    void Refill() {
        state_ = state_ * 214013 + 2531011;
        word_ = state_ >> 16 & 0x7FFF;
        left_ = 7;
    }

    uint32_t state_;
    uint32_t word_ = 0;
    int left_ = 0;
};

size_t NodeBytes(uint32_t level) { return sizeof(int64_t) + (level + 1) * sizeof(void*); }

TEST(SkipListLevels, FollowTheGeneratorAndGrowByOneAtMost) {
    for (const uint32_t mask : {1u, 3u}) {
        for (const uint32_t maximum : {1u, 2u, 8u, 20u}) {
            NodeAllocator::Reset();
            std::srand(12345);
            LevelModel model(12345);
            WCValSkipListSet<int64_t> set(mask, maximum, NodeAllocator::Allocate, NodeAllocator::Deallocate);
            std::map<size_t, int> expected;
            uint32_t top = 0;
            for (int i = 0; i < 3000; ++i) {
                set.insert(i * 7919 % 3001);
                const uint32_t level = std::min(model.Choose(mask, maximum), top + 1);
                top = std::max(top, level);
                ++expected[NodeBytes(level)];
            }
            EXPECT_EQ(NodeAllocator::sizes, expected) << "mask " << mask << ", levels " << maximum;
            EXPECT_EQ(set.topLevel(), top);
            set.clear();
            EXPECT_TRUE(NodeAllocator::blocks.empty()); // each node was freed, with the size of its height
            EXPECT_EQ(NodeAllocator::badFrees, 0);
            EXPECT_EQ(set.topLevel(), 0u);
        }
    }
}

TEST(SkipListLevels, AreClampedAtConstruction) {
    const struct {
        uint32_t mask, maximum, expectedMask, expectedMaximum;
    } cases[] = {{1, 1, 1, 1}, {3, 8, 3, 8}, {2, 25, 3, 20}, {0, 0, 3, 1}, {7, 20, 3, 20}, {~0u, ~0u, 3, 20}};
    for (const auto& row : cases) {
        const WCValSkipListSet<int> set(row.mask, row.maximum);
        EXPECT_EQ(set.levelMask(), row.expectedMask) << row.mask;
        EXPECT_EQ(set.maximumLevels(), row.expectedMaximum) << row.maximum;
    }
    EXPECT_EQ(WCValSkipListSet<int>().levelMask(), 3u);
    EXPECT_EQ((WCValSkipListDict<int, int>().maximumLevels()), 8u);
}

TEST(SkipListLevels, TheTopFallsWithItsLastNode) {
    WCValSkipListSet<int> set;
    while (set.topLevel() < 3) set.insert(set.entries());
    for (int last = set.entries() - 1; last >= 0; --last) {
        const uint32_t before = set.topLevel();
        EXPECT_TRUE(set.remove(last));
        EXPECT_LE(set.topLevel(), before);
    }
    EXPECT_EQ(set.topLevel(), 0u);
    EXPECT_TRUE(set.isEmpty());
}

TEST(SkipListDict, BehavesAsAMapUnderRandomChanges) {
    {
        std::mt19937 random(1789);
        NodeAllocator::Reset();
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
                    dict[key] = step, model[key] = step;
                    break;
                default:
                    const Counted* const value = std::as_const(dict).find(key);
                    ASSERT_EQ(value != nullptr, model.contains(key));
                    if (value) EXPECT_EQ(value->value, model[key]);
            }
            ASSERT_EQ(dict.entries(), static_cast<int>(model.size()));
        }
        const CountedDict copy = dict;
        dict.clear();
        auto expected = model.begin();
        for (const auto& [key, value] : copy) {
            ASSERT_NE(expected, model.end());
            EXPECT_EQ(key.value, expected->first);
            EXPECT_EQ(value.value, expected->second);
            ++expected;
        }
        EXPECT_EQ(expected, model.end());
    }
    EXPECT_EQ(Counted::living, 0);
    EXPECT_TRUE(NodeAllocator::blocks.empty());
    EXPECT_EQ(NodeAllocator::badFrees, 0);
}

TEST(SkipListDict, TheFirstValueOfAKeyStays) {
    WCValSkipListDict<std::string, int> dict;
    EXPECT_TRUE(dict.insert("a", 1));
    EXPECT_FALSE(dict.insert("a", 2));
    EXPECT_EQ(dict["a"], 1);
    EXPECT_EQ(dict["new"], 0);
    EXPECT_EQ(dict.entries(), 2);
    EXPECT_EQ(dict.find("b"), nullptr);
    EXPECT_FALSE(dict.remove("b"));
}

// Orders by key only, so that equal elements can be told apart.
struct Labelled {
    int key;
    char label;
    bool operator==(const Labelled& other) const { return key == other.key; }
    bool operator<(const Labelled& other) const { return key < other.key; }
};

std::string Labels(const WCValSkipList<Labelled>& list) {
    std::string labels;
    for (const Labelled& element : list) labels += element.label;
    return labels;
}

TEST(SkipListMultiset, TheNewestOfEqualElementsComesFirst) {
    WCValSkipList<Labelled> list;
    char label = 'a';
    for (const int key : {2, 1, 2, 3, 2, 1}) EXPECT_TRUE(list.insert({key, label++}));
    EXPECT_EQ(Labels(list), "fbecad");
    WCValSkipList<Labelled> copy = list;
    EXPECT_EQ(Labels(copy), "fbecad");
    EXPECT_EQ(copy.find({2, ' '})->label, 'e');
    EXPECT_TRUE(copy.remove({2, ' '}));
    EXPECT_EQ(Labels(copy), "fbcad");
    copy = std::move(list);
    EXPECT_EQ(Labels(copy), "fbecad");
}

TEST(SkipListMultiset, RemovesAmongManyEqualElements) {
    std::mt19937 random(99);
    WCValSkipList<int> list;
    std::multimap<int, int> model;
    for (int step = 0; step < 5000; ++step) {
        const int key = static_cast<int>(random() % 20);
        if (random() % 3) {
            list.insert(key), model.emplace(key, 0);
        } else {
            const auto place = model.find(key);
            EXPECT_EQ(list.remove(key), place != model.end());
            if (place != model.end()) model.erase(place);
        }
        ASSERT_EQ(list.entries(), static_cast<int>(model.size()));
    }
    auto expected = model.begin();
    for (const int key : list) EXPECT_EQ(key, (expected++)->first);
    EXPECT_EQ(expected, model.end());
}

TEST(SkipListSet, RefusedAndFailedInsertionsChangeNothing) {
    NodeAllocator::Reset();
    {
        CountedSet set(3, 8, NodeAllocator::Allocate, NodeAllocator::Deallocate);
        for (int i = 0; i < 50; ++i) set.insert(i);
        EXPECT_FALSE(set.insert(7));
        Counted kept(7);
        EXPECT_FALSE(set.insert(std::move(kept)));
        EXPECT_EQ(kept.value, 7); // NOLINT(bugprone-use-after-move): a refused element is not moved

        const Counted fresh(99);
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

        EXPECT_EQ(set.entries(), 50);
        EXPECT_TRUE(set.insert(fresh));
        int expected = 0;
        for (const Counted& element : set) EXPECT_EQ(element.value, expected++ < 50 ? expected - 1 : 99);
        EXPECT_EQ(expected, 51);
    }
    EXPECT_EQ(Counted::living, 0);
    EXPECT_TRUE(NodeAllocator::blocks.empty());
    EXPECT_EQ(NodeAllocator::badFrees, 0);
}

TEST(SkipListDict, AThrowingCopyInTheNodeLeavesTheListAsItWas) {
    NodeAllocator::Reset();
    {
        CountedDict dict(1, 20, NodeAllocator::Allocate, NodeAllocator::Deallocate);
        for (int i = 0; i < 20; ++i) dict.insert(i, i);
        const Counted key(100);
        // The key is copied into the pair, and from there into the node.
        for (const int copies : {0, 1}) {
            const ThrowingCopies throwing(copies);
            EXPECT_THROW(dict[key], std::runtime_error);
        }
        EXPECT_EQ(dict.entries(), 20);
        EXPECT_EQ(dict.find(key), nullptr);
        EXPECT_EQ(NodeAllocator::blocks.size(), 20u);
        NodeAllocator::isDry = true;
        EXPECT_THROW(dict[key], std::bad_alloc);
    }
    EXPECT_EQ(Counted::living, 0);
    EXPECT_TRUE(NodeAllocator::blocks.empty());
}

TEST(SkipListDict, HoldsValuesThatOnlyMove) {
    WCValSkipListDict<int, std::unique_ptr<int>> dict;
    EXPECT_TRUE(dict.insert(1, std::make_unique<int>(5)));
    EXPECT_EQ(**dict.find(1), 5);
    WCValSkipListDict<int, std::unique_ptr<int>> taken = std::move(dict);
    EXPECT_EQ(**taken.find(1), 5);
    EXPECT_TRUE(dict.isEmpty()); // NOLINT(bugprone-use-after-move): the moved-from list stays usable
    EXPECT_TRUE(dict.insert(1, nullptr));
}

TEST(SkipListIterator, StandsBeforeTheFirstAndStaysBehindTheLast) {
    WCValSkipListDict<int, char> dict;
    WCValSkipListDictIter<int, char> iterator(dict);
    EXPECT_FALSE(++iterator);
    for (const int key : {3, 1, 2}) dict.insert(key, static_cast<char>('a' + key));
    iterator.reset();
    std::string text;
    while (++iterator) {
        text += static_cast<char>('0' + iterator.key());
        iterator.value() = static_cast<char>(iterator.value() - 'a' + 'A');
    }
    EXPECT_FALSE(++iterator);
    WCValConstSkipListDictIter<int, char> constIterator(dict);
    while (++constIterator) text += constIterator.value();
    EXPECT_EQ(text, "123BCD");

    const WCValSkipListSet<int> empty;
    WCValSkipListSetIter<int> setIterator(empty);
    EXPECT_FALSE(++setIterator);
}

TEST(PointerSet, ComparesWhatItPointsAt) {
    int one = 1;
    int two = 2;
    int anotherOne = 1;
    WCPtrSkipListSet<int> set;
    EXPECT_FALSE(set.insert(nullptr));
    EXPECT_TRUE(set.insert(&two));
    EXPECT_TRUE(set.insert(&one));
    EXPECT_FALSE(set.insert(&anotherOne));
    EXPECT_EQ(set.find(1), &one);
    EXPECT_FALSE(set.contains(3));
    std::vector<int*> order;
    for (int* const element : set) order.push_back(element);
    EXPECT_EQ(order, (std::vector{&one, &two}));
    EXPECT_TRUE(set.remove(2));
    EXPECT_EQ(set.entries(), 1);
}

} // namespace
} // namespace vxut
