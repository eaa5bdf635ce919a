#include "frame/vector.h"

#include "tests/support/container_test.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <stdexcept>

namespace vxut {
namespace {

using test::Counted;
using Vector = test::ContainerTest;

// So large that a few of them are more than any machine has.
struct Huge {
    std::byte bytes[size_t{1} << 45];
};

TEST_F(Vector, GrowsToReachAnIndexAndReadsWithoutGrowing) {
    WCValVector<int> vector;
    const WCValVector<int>& view = vector;
    EXPECT_EQ(view[3], 0);
    EXPECT_EQ(view.length(), 0);
    vector[5] = 5;
    vector[-7] = 7;
    EXPECT_EQ(vector.length(), 6);
    EXPECT_EQ(vector.entries(), 6);
    const std::pair<int, int> cases[] = {{-1, 7}, {0, 7}, {1, 0}, {5, 5}, {6, 5}, {INT_MAX, 5}};
    for (const auto& [index, value] : cases) EXPECT_EQ(view[index], value) << index;
}

TEST_F(Vector, ResizeKeepsWhatFitsAndDestroysTheRest) {
    WCValVector<Counted> vector;
    EXPECT_TRUE(vector.resize(10));
    EXPECT_EQ(Counted::living, 0); // room is not yet entries
    for (int i = 0; i < 5; ++i) vector[i] = Counted(i + 1);
    EXPECT_EQ(vector.entries(), 5);
    EXPECT_FALSE(vector.resize(-1));
    EXPECT_EQ(vector.length(), 10);
    EXPECT_TRUE(vector.resize(3));
    EXPECT_EQ(Counted::living, 3);
    EXPECT_EQ(vector[2].value, 3);
    EXPECT_TRUE(vector.resize(0));
    EXPECT_EQ(Counted::living, 0);
}

TEST_F(Vector, CopiesAreIndependentAndAThrowingOneChangesNothing) {
    WCValVector<Counted> vector(3);
    vector[2].value = 3;
    WCValVector<Counted> target = vector;
    target[2].value = 9;
    const test::ThrowingCopies throwing(2);
    EXPECT_THROW(target = vector, std::runtime_error);
    EXPECT_EQ(target[2].value, 9);
    vector = std::move(target);
    EXPECT_EQ(vector[2].value, 9);
}

TEST_F(Vector, FailedGrowthKeepsTheArrayAndGivesTheLastElement) {
    WCValVector<Huge> huge;
    EXPECT_FALSE(huge.resize(1 << 10));
    EXPECT_FALSE(huge.resize(1 << 20)); // more bytes than a size_t counts
    WCValVector<int> vector(3);
    EXPECT_EQ(&vector[INT_MAX], &vector[2]);
    EXPECT_EQ(vector.length(), 3);
    WCValVector<int> empty;
    empty[INT_MAX] = 6;
    EXPECT_EQ(empty.length(), 1);
    EXPECT_EQ(empty[0], 6);
}

TEST_F(Vector, HoldsElementsThatOnlyMove) {
    WCValVector<std::unique_ptr<int>> vector;
    for (const int i : {0, 1}) vector[i] = std::make_unique<int>(i);
    EXPECT_EQ(*vector[0], 0);
}

} // namespace
} // namespace vxut
