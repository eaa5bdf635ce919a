#include "containers/skip_list.h"

#include "tests/support/container_test.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <utility>

namespace vxut {
namespace {

using test::Counted;
using test::NodeAllocator;
using test::ThrowingCopies;
using SkipList = test::ContainerTest;
using CountedDict = WCValSkipListDict<Counted, Counted>;

TEST_F(SkipList, ADictionaryBehavesAsAMapUnderRandomChanges) {
    std::mt19937 random(1789);
    CountedDict dict(3, 8, NodeAllocator::Allocate, NodeAllocator::Deallocate);
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
        return a.key.value == b.first && a.value.value == b.second;
    }));
}

TEST_F(SkipList, FailedInsertionsChangeNothing) {
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
    EXPECT_FALSE(dict.insert(100, 1));
    EXPECT_EQ(dict.find(key), nullptr);
    EXPECT_EQ(NodeAllocator::blocks.size(), 20u);
}

} // namespace
} // namespace vxut
