#include "frame/list.h"

#include "frame/stack.h"
#include "tests/support/container_test.h"

#include <gtest/gtest.h>

#include <climits>
#include <deque>
#include <random>
#include <stdexcept>
#include <vector>

namespace vxut {
namespace {

using test::Counted;
using test::NodeAllocator;
using test::ThrowingCopies;
using Values = std::vector<int>;

template <class List>
Values ValuesOf(const List& list) {
    Values values;
    for (const Counted& element : list) values.push_back(element.value);
    return values;
}

template <class List>
class ListTest : public test::ContainerTest {
protected:
    ListTest() {
        for (const int value : {1, 2, 3}) EXPECT_TRUE(list.append(value));
    }
    void TearDown() override {
        list.clear();
        ContainerTest::TearDown();
    }

    List list; // 1, 2, 3
};

using Lists = testing::Types<WCValSList<Counted>, WCValDList<Counted>>;
TYPED_TEST_SUITE(ListTest, Lists);

TYPED_TEST(ListTest, ClampsAnIndexExceptToRemove) {
    const std::pair<int, int> cases[] = {{INT_MIN, 1}, {-1, 1}, {0, 1}, {1, 2}, {2, 3}, {3, 3}, {INT_MAX, 3}};
    for (const auto& [index, value] : cases) {
        EXPECT_EQ(this->list.get(index).value, value) << index;
        if (index < 0 || index > 2) EXPECT_FALSE(this->list.remove(index)) << index;
        EXPECT_EQ(WCValDList<int>().get(index), 0);
        EXPECT_EQ(WCPtrSList<int>().get(index), nullptr);
    }
}

TYPED_TEST(ListTest, BehavesAsASequenceUnderRandomChanges) {
    std::mt19937 random(4711);
    TypeParam list;
    std::deque<int> model;
    for (int step = 0; step < 4000; ++step) {
        const int index = static_cast<int>(random() % (model.size() + 2)) - 1;
        const bool isWithin = index >= 0 && index < static_cast<int>(model.size());
        const bool isShrinking = step / 100 % 2 != 0;
        switch (random() % 4 + isShrinking) {
            case 0:
                list.append(step), model.push_back(step);
                break;
            case 1:
                list.insert(step), model.push_front(step);
                break;
            case 2:
            case 3:
                EXPECT_EQ(list.remove(index), isWithin);
                if (isWithin) model.erase(model.begin() + index);
                break;
            default: {
                const auto isOld = [=](const Counted& element) { return element.value % 9 == step % 9; };
                EXPECT_EQ(list.removeIf(isOld), static_cast<int>(std::erase_if(model, isOld)));
            }
        }
        ASSERT_EQ(list.entries(), static_cast<int>(model.size()));
        ASSERT_EQ(ValuesOf(list), Values(model.begin(), model.end()));
        const int place = static_cast<int>(model.size()) / 3 * 2;
        if (!model.empty()) ASSERT_EQ(list.get(place).value, model[static_cast<size_t>(place)]);
    }
}

TYPED_TEST(ListTest, CopiesAreIndependentAndMovesLeaveNothing) {
    auto copy = this->list;
    copy.get(0).value = 9;
    EXPECT_EQ(ValuesOf(this->list), (Values{1, 2, 3}));
    const TypeParam& alias = copy;
    copy = alias;
    this->list = std::move(copy);
    EXPECT_EQ(ValuesOf(this->list), (Values{9, 2, 3}));
    copy.append(1); // NOLINT(bugprone-use-after-move): the moved-from list stays usable
    EXPECT_EQ(ValuesOf(copy), (Values{1}));
}

TYPED_TEST(ListTest, AThrowingCopyLeavesTheListAsItWas) {
    TypeParam target;
    Counted element(4);
    {
        const ThrowingCopies throwing(2);
        EXPECT_THROW(target = this->list, std::runtime_error);
    }
    const ThrowingCopies throwing(0);
    EXPECT_THROW(this->list.append(element), std::runtime_error);
    EXPECT_THROW(this->list.insert(element), std::runtime_error);
    EXPECT_EQ(ValuesOf(this->list), (Values{1, 2, 3}));
    EXPECT_TRUE(target.append(std::move(element))); // no copy
    EXPECT_EQ(ValuesOf(target), (Values{4}));
}

TYPED_TEST(ListTest, TakesNodesFromItsAllocatorPairOnly) {
    TypeParam list(NodeAllocator::Allocate, NodeAllocator::Deallocate);
    for (int i = 0; i < 10; ++i) list.append(i);
    const TypeParam copy = list;
    EXPECT_EQ(NodeAllocator::blocks.size(), 20u);
    list.remove(4);
    NodeAllocator::isDry = true;
    EXPECT_FALSE(list.append(1));
    EXPECT_FALSE(list.insert(1));
    EXPECT_THROW(const TypeParam another = list, std::bad_alloc);
    EXPECT_EQ(ValuesOf(list), (Values{0, 1, 2, 3, 5, 6, 7, 8, 9}));
}

TEST(ListIterator, StandsBeforeTheFirstAndStaysBehindTheLast) {
    WCValDList<int> list;
    WCValDListIter<int> iterator(list);
    EXPECT_FALSE(++iterator);
    for (const int value : {1, 2, 3}) list.append(value);
    EXPECT_FALSE(++iterator);
    EXPECT_EQ(iterator.current(), 0);
    iterator.reset();
    while (++iterator) iterator.current() += 10;
    EXPECT_FALSE(++iterator);
    Values walked;
    for (WCValConstDListIter<int> again(list); ++again;) walked.push_back(again.current());
    EXPECT_EQ(walked, (Values{11, 12, 13}));
}

TEST(PointerList, HoldsPointersItDoesNotOwn) {
    int one = 1;
    WCPtrSList<int> list;
    list.append(&one);
    WCPtrConstSListIter<int> iterator(list);
    ASSERT_TRUE(++iterator);
    EXPECT_EQ(iterator.current(), &one);
}

TEST(Stack, GivesTheNewestFirst) {
    WCStack<int, WCValSList<int>> stack;
    EXPECT_EQ(stack.pop(), 0);
    for (const int value : {1, 2, 3}) stack.push(value);
    EXPECT_EQ(stack.top(), 3);
    EXPECT_EQ(stack.pop(), 3);
    stack.push(4);
    for (const int value : {4, 2, 1, 0}) EXPECT_EQ(stack.pop(), value);
}

} // namespace
} // namespace vxut
