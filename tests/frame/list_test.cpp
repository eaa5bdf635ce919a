#include "frame/list.h"

#include "frame/stack.h"
#include "tests/support/counted.h"
#include "tests/support/node_allocator.h"

#include <gtest/gtest.h>

#include <climits>
#include <deque>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace vxut {
namespace {

using test::Counted;
using test::NodeAllocator;
using test::ThrowingCopies;

template <class List>
std::vector<int> Values(const List& list) {
    std::vector<int> values;
    for (const Counted& element : list) values.push_back(element.value);
    return values;
}

template <class List>
class ListTest : public testing::Test {
protected:
    static List Of(std::initializer_list<int> values) {
        List list;
        for (const int value : values) EXPECT_TRUE(list.append(value));
        return list;
    }
    void TearDown() override { EXPECT_EQ(Counted::living, 0); }
};

using Lists = testing::Types<WCValSList<Counted>, WCValDList<Counted>>;
TYPED_TEST_SUITE(ListTest, Lists);

TYPED_TEST(ListTest, ClampsEveryIndex) {
    const auto list = this->Of({10, 20, 30});
    const struct {
        int index, value;
    } cases[] = {{INT_MIN, 10}, {-5, 10}, {0, 10}, {1, 20}, {2, 30}, {3, 30}, {99, 30}, {INT_MAX, 30}};
    for (const auto& row : cases) EXPECT_EQ(list.get(row.index).value, row.value) << row.index;
}

TYPED_TEST(ListTest, RemovesOnlyWhatIsThere) {
    auto list = this->Of({1, 2, 3, 4});
    for (const int index : {-1, 4, INT_MAX, INT_MIN}) EXPECT_FALSE(list.remove(index)) << index;
    EXPECT_TRUE(list.remove(3));
    list.append(5);
    EXPECT_TRUE(list.remove(0));
    EXPECT_TRUE(list.remove(1));
    EXPECT_EQ(Values(list), (std::vector{2, 5}));
    EXPECT_TRUE(list.remove(1));
    EXPECT_TRUE(list.remove(0));
    EXPECT_FALSE(list.remove(0));
    list.insert(7);
    EXPECT_EQ(Values(list), (std::vector{7}));
}

TYPED_TEST(ListTest, RemoveIfTakesOutWhatMatchesInOnePass) {
    const struct {
        std::vector<int> values;
        std::vector<int> odd;
    } kCases[] = {{{}, {}},    {{2}, {}}, {{1}, {1}}, {{2, 1, 4, 6, 3, 8}, {1, 3}}, {{1, 2, 3}, {1, 3}},
                  {{2, 4}, {}}};
    for (const auto& row : kCases) {
        TypeParam list;
        for (const int value : row.values) list.append(value);
        const auto isEven = [](const Counted& element) { return element.value % 2 == 0; };
        EXPECT_EQ(list.removeIf(isEven), static_cast<int>(row.values.size() - row.odd.size()));
        EXPECT_EQ(Values(list), row.odd);
        list.append(9);
        EXPECT_EQ(list.get(99).value, 9);
    }
}

TYPED_TEST(ListTest, BehavesAsASequenceUnderRandomChanges) {
    std::mt19937 random(4711);
    TypeParam list;
    std::deque<int> model;
    for (int step = 0; step < 4000; ++step) {
        const int index = static_cast<int>(random() % (model.size() + 2)) - 1;
        const bool isWithin = index >= 0 && index < static_cast<int>(model.size());
        switch (random() % 5) {
            case 0:
            case 1:
                list.append(step), model.push_back(step);
                break;
            case 2:
                list.insert(step), model.push_front(step);
                break;
            default:
                EXPECT_EQ(list.remove(index), isWithin);
                if (isWithin) model.erase(model.begin() + index);
        }
        ASSERT_EQ(list.entries(), static_cast<int>(model.size()));
        if (isWithin && index < list.entries()) {
            ASSERT_EQ(list.get(index).value, model[static_cast<size_t>(index)]);
        }
    }
    EXPECT_EQ(Values(list), std::vector<int>(model.begin(), model.end()));
}

TYPED_TEST(ListTest, CopiesAreIndependentAndMovesLeaveNothing) {
    auto list = this->Of({1, 2, 3});
    auto copy = list;
    copy.get(0).value = 9;
    copy.append(4);
    EXPECT_EQ(Values(list), (std::vector{1, 2, 3}));
    EXPECT_EQ(Values(copy), (std::vector{9, 2, 3, 4}));

    TypeParam& alias = copy;
    copy = alias;
    EXPECT_EQ(Values(copy), (std::vector{9, 2, 3, 4}));

    list = std::move(copy);
    EXPECT_EQ(Values(list), (std::vector{9, 2, 3, 4}));
    EXPECT_TRUE(copy.isEmpty()); // NOLINT(bugprone-use-after-move): the moved-from list stays usable
    copy.append(1);
    EXPECT_EQ(Values(copy), (std::vector{1}));
}

TYPED_TEST(ListTest, AThrowingCopyLeavesTheListAsItWas) {
    auto list = this->Of({1, 2, 3});
    const Counted element(4);
    {
        const ThrowingCopies throwing(0);
        EXPECT_THROW(list.append(element), std::runtime_error);
        EXPECT_THROW(list.insert(element), std::runtime_error);
    }
    TypeParam target = this->Of({7});
    {
        const ThrowingCopies throwing(2);
        EXPECT_THROW(target = list, std::runtime_error);
    }
    EXPECT_EQ(Values(list), (std::vector{1, 2, 3}));
    EXPECT_EQ(Values(target), (std::vector{7}));
}

TYPED_TEST(ListTest, AppendMovesWhatIsGivenUp) {
    TypeParam list;
    Counted element(5);
    const ThrowingCopies throwing(0);
    EXPECT_TRUE(list.append(std::move(element)));
    EXPECT_TRUE(list.insert(Counted(4)));
    EXPECT_EQ(Values(list), (std::vector{4, 5}));
}

TYPED_TEST(ListTest, TakesNodesFromItsAllocatorPairOnly) {
    NodeAllocator::Reset();
    {
        TypeParam list(NodeAllocator::Allocate, NodeAllocator::Deallocate);
        for (int i = 0; i < 10; ++i) list.append(i);
        const TypeParam copy = list;
        EXPECT_EQ(NodeAllocator::blocks.size(), 20u);
        list.remove(4);
        NodeAllocator::isDry = true;
        EXPECT_FALSE(list.append(1));
        EXPECT_FALSE(list.insert(1));
        EXPECT_THROW(const TypeParam another = list, std::bad_alloc);
        EXPECT_EQ(list.entries(), 9);
    }
    EXPECT_TRUE(NodeAllocator::blocks.empty());
    EXPECT_EQ(NodeAllocator::badFrees, 0);
}

template <class Iterator>
std::vector<int> Walk(Iterator&& iterator) {
    std::vector<int> values;
    while (++iterator) values.push_back(iterator.current());
    return values;
}

TEST(ListIterator, StandsBeforeTheFirstAndStaysBehindTheLast) {
    WCValSList<int> list;
    WCValSListIter<int> iterator(list);
    EXPECT_FALSE(++iterator);
    EXPECT_FALSE(++iterator);

    for (const int value : {1, 2, 3}) list.append(value);
    iterator.reset();
    EXPECT_EQ(iterator.current(), 0);
    EXPECT_EQ(Walk(iterator), (std::vector{1, 2, 3}));
    EXPECT_FALSE(++iterator);
    EXPECT_EQ(iterator.current(), 0);

    iterator.reset();
    EXPECT_TRUE(++iterator);
    iterator.current() = 10;
    EXPECT_EQ(Walk(WCValConstSListIter<int>(list)), (std::vector{10, 2, 3}));
}

TEST(ListIterator, WalksDoubleListsInBothForms) {
    WCValDList<int> list;
    for (const int value : {1, 2}) list.insert(value);
    EXPECT_EQ(Walk(WCValDListIter<int>(list)), (std::vector{2, 1}));
    EXPECT_EQ(Walk(WCValConstDListIter<int>(list)), (std::vector{2, 1}));
}

TEST(PointerList, HoldsPointersItDoesNotOwn) {
    Counted one(1);
    Counted two(2);
    {
        WCPtrSList<Counted> list;
        EXPECT_EQ(list.get(0), nullptr);
        list.append(&one);
        list.append(&two);
        EXPECT_EQ(list.get(99), &two);
        WCPtrSListIter<Counted> iterator(list);
        ASSERT_TRUE(++iterator);
        EXPECT_EQ(iterator.current(), &one);
    }
    EXPECT_EQ(Counted::living, 2);
}

TEST(EmptyList, HandsOutADefault) {
    EXPECT_EQ(WCValSList<std::string>().get(0), "");
    EXPECT_EQ(WCValDList<int>().get(-3), 0);
    EXPECT_EQ(WCValSList<int*>().get(7), nullptr);
}

TEST(Stack, GivesTheNewestFirst) {
    {
        WCStack<Counted, WCValSList<Counted>> stack;
        EXPECT_EQ(stack.pop().value, 0);
        for (const int value : {1, 2, 3}) stack.push(value);
        EXPECT_EQ(stack.top().value, 3);
        EXPECT_EQ(Values(stack), (std::vector{3, 2, 1}));
        EXPECT_EQ(stack.pop().value, 3);
        EXPECT_EQ(stack.pop().value, 2);
        stack.push(4);
        EXPECT_EQ(stack.pop().value, 4);
        EXPECT_EQ(stack.pop().value, 1);
        EXPECT_TRUE(stack.isEmpty());
    }
    EXPECT_EQ(Counted::living, 0);
}

} // namespace
} // namespace vxut
