#include "containers/list.h"

#include "containers/stack.h"
#include "tests/support/container_test.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>
#include <type_traits>
#include <utility>

namespace vxut {
namespace {

using test::Counted;
using test::ExpectAllOrNothing;
using test::FailingSteps;
using test::NodeAllocator;

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
    TypeParam list(NodeAllocator::Allocate, NodeAllocator::Free);
    std::deque<int> model;
    for (int step = 0; step < 3900; ++step) {
        const int size = static_cast<int>(model.size());
        const int index = static_cast<int>(random() % (model.size() + 2)) - 1;
        const bool isWithin = index >= 0 && index < size;
        // An index is clamped, except to remove.
        const int value = size ? model.at(std::clamp(index, 0, size - 1)) : 0;
        ASSERT_EQ(list.get(index).value, value);
        ASSERT_EQ(list.find(index), size ? &list.get(index) : nullptr);
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
    EXPECT_EQ(NodeAllocator::Bytes(), model.size() * sizeof(typename TypeParam::Link));
}

TYPED_TEST(ListTest, ChangesAreMadeWhollyOrNotAtAll) {
    TypeParam original(NodeAllocator::Allocate, NodeAllocator::Free);
    for (const int value : {1, 2, 3}) original.append(value);
    const Counted element(4);
    bool (*const changes[])(TypeParam&, const Counted&) = {
        [](TypeParam& list, const Counted& element) { return list.append(element); },
        [](TypeParam& list, const Counted& element) { return list.insert(element); },
        [](TypeParam& list, const Counted& element) { return list.append(Counted(element)); },
        [](TypeParam& list, const Counted& element) { return list.insert(Counted(element)); },
        [](TypeParam& list, const Counted&) { return list = TypeParam(list), list.remove(2); },
        [](TypeParam& list, const Counted& element) {
            TypeParam other(list);
            if (!other.append(element)) return false;
            return list = other, true;
        },
    };
    for (const auto change : changes)
        ExpectAllOrNothing(
            original, [&](TypeParam& list) { return change(list, element); }, ValuesOf<TypeParam>);
}

TYPED_TEST(ListTest, CopiesAreIndependentAndMovedFromListsAreUsable) {
    TypeParam list;
    for (const int value : {1, 2, 3}) list.append(value);
    TypeParam copy = list;
    *copy.find(0) = 9;
    const TypeParam& alias = copy;
    copy = alias;
    EXPECT_EQ(ValuesOf(list), (std::deque{1, 2, 3}));
    list = std::move(copy);
    EXPECT_EQ(ValuesOf(list), (std::deque{9, 2, 3}));
    EXPECT_EQ(ValuesOf(copy), std::deque<int>()); // NOLINT(bugprone-use-after-move)
    EXPECT_TRUE(copy.append(1));
}

// What an empty list returns is everybody's: it must not be open to assignment.
TYPED_TEST(ListTest, ElementsThatAreNotThereCannotBeChanged) {
    static_assert(!std::is_assignable_v<decltype(std::declval<TypeParam&>().get(0)), Counted>);
    static_assert(!std::is_assignable_v<decltype(WCSharedDefault<Counted>()), Counted>);
    WCValSList<int> list;
    WCValSListIter<int> iterator(list);
    EXPECT_EQ(iterator.element(), nullptr);
    EXPECT_EQ(&iterator.current(), &list.get(0));
    list.append(1);
    EXPECT_TRUE(++iterator);
    *iterator.element() = 2;
    EXPECT_EQ(iterator.current(), 2);
    EXPECT_FALSE(++iterator);
    EXPECT_FALSE(++iterator) << "false from the end on";
    EXPECT_EQ(iterator.current(), 0);
}

using StackTest = test::ContainerTest;

TEST_F(StackTest, PushAndPopAreMadeWhollyOrNotAtAll) {
    using Stack = WCStack<test::CopiedOnly>;
    Stack original(NodeAllocator::Allocate, NodeAllocator::Free);
    for (const int value : {1, 2, 3}) original.push(value);
    ExpectAllOrNothing(original, [](Stack& stack) { return stack.push(4); }, ValuesOf<Stack>);
    ExpectAllOrNothing(original, [](Stack& stack) { return stack.pop().value == 3; }, ValuesOf<Stack>);
    for (const int value : {3, 2, 1}) {
        EXPECT_EQ(original.top()->value, value);
        EXPECT_EQ(original.pop().value, value);
    }
    EXPECT_EQ(original.top(), nullptr);
    EXPECT_EQ(original.pop().value, 0);
}

} // namespace
} // namespace vxut
