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
    static List Of(std::initializer_list<int> values) {
        List list;
        for (const int value : values) EXPECT_TRUE(list.append(value));
        return list;
    }
};

using Lists = testing::Types<WCValSList<Counted>, WCValDList<Counted>>;
TYPED_TEST_SUITE(ListTest, Lists);

TYPED_TEST(ListTest, ClampsAnIndexExceptToRemove) {
    auto list = this->Of({10, 20, 30});
    const struct {
        int index, value;
    } cases[] = {{INT_MIN, 10}, {-5, 10}, {0, 10}, {1, 20}, {2, 30}, {3, 30}, {99, 30}, {INT_MAX, 30}};
    for (const auto& row : cases) {
        EXPECT_EQ(list.get(row.index).value, row.value) << row.index;
        if (row.index < 0 || row.index > 2) EXPECT_FALSE(list.remove(row.index)) << row.index;
    }
    EXPECT_EQ(list.entries(), 3);
    for (const int index : {-3, 0, 7}) {
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
        if (!model.empty()) {
            const int place = static_cast<int>(random() % model.size());
            ASSERT_EQ(list.get(place).value, model[static_cast<size_t>(place)]);
        }
    }
}

TYPED_TEST(ListTest, CopiesAreIndependentAndMovesLeaveNothing) {
    auto list = this->Of({1, 2, 3});
    auto copy = list;
    copy.get(0).value = 9;
    copy.append(4);
    EXPECT_EQ(ValuesOf(list), (Values{1, 2, 3}));
    const TypeParam& alias = copy;
    copy = alias;
    EXPECT_EQ(ValuesOf(copy), (Values{9, 2, 3, 4}));
    list = std::move(copy);
    EXPECT_EQ(ValuesOf(list), (Values{9, 2, 3, 4}));
    copy.append(1); // NOLINT(bugprone-use-after-move): the moved-from list stays usable
    EXPECT_EQ(ValuesOf(copy), (Values{1}));
}

TYPED_TEST(ListTest, AThrowingCopyLeavesTheListAsItWas) {
    auto list = this->Of({1, 2, 3});
    auto target = this->Of({7});
    Counted element(4);
    {
        const ThrowingCopies throwing(2);
        EXPECT_THROW(target = list, std::runtime_error);
    }
    const ThrowingCopies throwing(0);
    EXPECT_THROW(list.append(element), std::runtime_error);
    EXPECT_THROW(list.insert(element), std::runtime_error);
    EXPECT_EQ(ValuesOf(list), (Values{1, 2, 3}));
    EXPECT_TRUE(target.append(std::move(element))); // no copy
    EXPECT_EQ(ValuesOf(target), (Values{7, 4}));
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

template <class Iterator>
Values Walk(Iterator&& iterator) {
    Values values;
    while (++iterator) values.push_back(iterator.current());
    return values;
}

TEST(ListIterator, StandsBeforeTheFirstAndStaysBehindTheLast) {
    WCValSList<int> list;
    WCValSListIter<int> iterator(list);
    EXPECT_FALSE(++iterator);
    for (const int value : {1, 2, 3}) list.append(value);
    EXPECT_FALSE(++iterator);
    iterator.reset();
    EXPECT_EQ(iterator.current(), 0);
    EXPECT_EQ(Walk(iterator), (Values{1, 2, 3}));
    EXPECT_FALSE(++iterator);
    EXPECT_EQ(iterator.current(), 0);

    WCValDList<int> doubleList;
    for (const int value : {1, 2}) doubleList.insert(value);
    WCValDListIter<int> change(doubleList);
    EXPECT_TRUE(++change);
    change.current() = 10;
    EXPECT_EQ(Walk(WCValConstDListIter<int>(doubleList)), (Values{10, 1}));
}

TEST(PointerList, HoldsPointersItDoesNotOwn) {
    int one = 1;
    int two = 2;
    WCPtrSList<int> list;
    list.append(&one);
    list.append(&two);
    EXPECT_EQ(list.get(99), &two);
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
