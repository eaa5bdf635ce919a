#include "containers/list.h"

#include "tests/support/container_test.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>
#include <stdexcept>

namespace vxut {
namespace {

using test::Counted;
using test::NodeAllocator;
using test::ThrowingCopies;

template <class List>
std::deque<int> ValuesOf(const List& list) {
    std::deque<int> values;
    for (const Counted& element : list) values.push_back(element.value);
    return values;
}

template <class List>
class ListTest : public test::ContainerTest {};

using Lists = testing::Types<WCValSList<Counted>, WCValDList<Counted>>;
TYPED_TEST_SUITE(ListTest, Lists);

TYPED_TEST(ListTest, BehavesAsASequenceUnderRandomChanges) {
    std::mt19937 random(4711);
    TypeParam list(NodeAllocator::Allocate, NodeAllocator::Deallocate);
    std::deque<int> model;
    for (int step = 0; step < 3900; ++step) {
        const int size = static_cast<int>(model.size());
        const int index = static_cast<int>(random() % (model.size() + 2)) - 1;
        const bool isWithin = index >= 0 && index < size;
        // An index is clamped, except to remove.
        if (size) ASSERT_EQ(list.get(index).value, model.at(std::clamp(index, 0, size - 1)));
        const bool isRemoving = random() % 5 < static_cast<uint32_t>(2 + step / 100 % 2);
        if (isRemoving) {
            EXPECT_EQ(list.remove(index), isWithin);
            if (isWithin) model.erase(model.begin() + index);
        } else if (step % 2) {
            list.append(step), model.push_back(step);
        } else {
            list.insert(step), model.push_front(step);
        }
        ASSERT_EQ(list.entries(), static_cast<int>(model.size()));
        ASSERT_EQ(ValuesOf(list), model);
        ASSERT_EQ(NodeAllocator::blocks.size(), model.size());
    }
}

TYPED_TEST(ListTest, CopiesAreIndependentAndFailuresLeaveTheListAsItWas) {
    TypeParam list(NodeAllocator::Allocate, NodeAllocator::Deallocate);
    for (const int value : {1, 2, 3}) list.append(value);
    TypeParam copy = list;
    copy.get(0).value = 9;
    const TypeParam& alias = copy;
    copy = alias;
    {
        const Counted element(4);
        const ThrowingCopies first(0);
        EXPECT_THROW(list.append(element), std::runtime_error);
        EXPECT_THROW(list.insert(element), std::runtime_error);
        const ThrowingCopies third(2);
        EXPECT_THROW(copy = list, std::runtime_error);
    }
    NodeAllocator::isDry = true;
    EXPECT_FALSE(list.append(1));
    EXPECT_FALSE(list.insert(1));
    EXPECT_THROW(const TypeParam another = list, std::bad_alloc);
    EXPECT_EQ(ValuesOf(list), (std::deque{1, 2, 3}));
    list = std::move(copy);
    EXPECT_EQ(ValuesOf(list), (std::deque{9, 2, 3}));
    EXPECT_EQ(copy.entries(), 0); // NOLINT(bugprone-use-after-move): the moved-from list stays usable
}

} // namespace
} // namespace vxut
