#include "containers/vector.h"

#include "tests/support/container_test.h"

#include <gtest/gtest.h>

#include <climits>

namespace vxut {
namespace {

using test::Counted;
using Vector = test::ContainerTest;

TEST_F(Vector, GrowsToReachAnIndexAndReadsWithoutGrowing) {
    WCValVector<int> vector;
    const WCValVector<int>& view = vector;
    EXPECT_EQ(view[3], 0);
    vector[5] = 5;
    vector[-7] = 7;
    EXPECT_EQ(vector.length(), 6);
    const std::pair<int, int> cases[] = {{-1, 7}, {0, 7}, {1, 0}, {5, 5}, {6, 5}, {INT_MAX, 5}};
    for (const auto& [index, value] : cases) EXPECT_EQ(view[index], value) << index;
    EXPECT_EQ(&vector[INT_MAX], &vector[5]); // cannot grow so far
}

TEST_F(Vector, ResizeKeepsWhatFitsAndDestroysTheRest) {
    WCValVector<Counted> vector;
    EXPECT_TRUE(vector.resize(10));
    EXPECT_EQ(Counted::living, 0); // room is not yet entries
    for (int i = 0; i < 5; ++i) vector[i] = Counted(i + 1);
    EXPECT_FALSE(vector.resize(-1));
    EXPECT_EQ(vector.length(), 10);
    EXPECT_TRUE(vector.resize(3));
    EXPECT_EQ(Counted::living, 3);
    EXPECT_EQ(vector[2].value, 3);
}

} // namespace
} // namespace vxut
