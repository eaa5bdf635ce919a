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
        return a.key.value == b.first && a.value.value == b.second;
    }));
}

std::vector<std::pair<int, int>> PairsOf(const CountedDict& dict) {
    std::vector<std::pair<int, int>> pairs;
    for (const auto& pair : dict) pairs.emplace_back(pair.key.value, pair.value.value);
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

TEST_F(SkipList, ANodeHasAThirdOfAPointerForTheHigherLevels) {
    constexpr size_t kEntries = 4000;
    WCValSkipListSet<int> set(3, 8, NodeAllocator::Allocate, NodeAllocator::Free);
    for (size_t i = 0; i < kEntries; ++i) set.insert(static_cast<int>(i));
    EXPECT_NEAR(static_cast<double>(NodeAllocator::Bytes()), kEntries * (8 + 8 * 4 / 3.0), kEntries * 0.8);
}

} // namespace
} // namespace vxut
