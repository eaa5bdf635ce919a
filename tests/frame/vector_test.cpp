#include "frame/vector.h"

#include "tests/support/counted.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <stdexcept>
#include <string>

namespace vxut {
namespace {

using test::Counted;
using test::ThrowingCopies;

// So large that a few of them are more than any machine has.
struct Huge {
    std::byte bytes[size_t{1} << 45];
};

TEST(Vector, GrowsToReachAnIndex) {
    WCValVector<std::string> vector;
    vector[5] = "five";
    EXPECT_EQ(vector.length(), 6);
    EXPECT_EQ(vector.entries(), 6);
    EXPECT_EQ(vector[0], "");
    vector[-7] = "zero";
    EXPECT_EQ(vector[0], "zero");
    EXPECT_EQ(vector[5], "five");
    EXPECT_EQ(vector.length(), 6);
}

TEST(Vector, RoomIsNotYetEntries) {
    WCValVector<int> vector;
    EXPECT_TRUE(vector.resize(10));
    EXPECT_EQ(vector.length(), 10);
    EXPECT_EQ(vector.entries(), 0);
    vector[3] = 7;
    EXPECT_EQ(vector.length(), 10);
    EXPECT_EQ(vector.entries(), 4);
    EXPECT_EQ(vector[2], 0);
    EXPECT_FALSE(vector.resize(-1));
    EXPECT_EQ(vector.length(), 10);
}

TEST(Vector, ConstAccessClampsAndDoesNotGrow) {
    WCValVector<int> vector;
    const WCValVector<int>& view = vector;
    EXPECT_EQ(view[3], 0);
    vector[1] = 8;
    EXPECT_EQ(view[99], 8);
    EXPECT_EQ(view[-1], 0);
    EXPECT_EQ(view.length(), 2);
}

TEST(Vector, ResizeKeepsWhatFitsAndDestroysTheRest) {
    {
        WCValVector<Counted> vector;
        for (int i = 0; i < 5; ++i) vector[i] = Counted(i + 1);
        EXPECT_TRUE(vector.resize(3));
        EXPECT_EQ(vector.entries(), 3);
        EXPECT_EQ(Counted::living, 3);
        EXPECT_EQ(vector[2].value, 3);
        EXPECT_TRUE(vector.resize(0));
        EXPECT_EQ(Counted::living, 0);
        EXPECT_EQ(vector.length(), 0);
        vector[0].value = 4;
        WCValVector<Counted> copy = vector;
        copy[0].value = 5;
        EXPECT_EQ(vector[0].value, 4);
        vector = std::move(copy);
        EXPECT_EQ(vector[0].value, 5);
    }
    EXPECT_EQ(Counted::living, 0);
}

TEST(Vector, AThrowingCopyLeavesBothVectorsAsTheyWere) {
    {
        WCValVector<Counted> vector(3);
        vector[2].value = 3;
        WCValVector<Counted> target(1);
        target[0].value = 9;
        const ThrowingCopies throwing(2);
        EXPECT_THROW(target = vector, std::runtime_error);
        EXPECT_EQ(target.entries(), 1);
        EXPECT_EQ(target[0].value, 9);
        EXPECT_EQ(vector[2].value, 3);
    }
    EXPECT_EQ(Counted::living, 0);
}

TEST(Vector, FailedGrowthKeepsTheArrayAndGivesTheLastElement) {
    WCValVector<Huge> huge;
    EXPECT_FALSE(huge.resize(1 << 10));
    EXPECT_FALSE(huge.resize(1 << 20)); // more bytes than a size_t counts
    EXPECT_EQ(huge.length(), 0);

    WCValVector<int> vector(3);
    EXPECT_EQ(&vector[INT_MAX], &vector[2]);
    EXPECT_EQ(vector.length(), 3);
    EXPECT_EQ(vector.entries(), 3);

    WCValVector<int> empty;
    empty[INT_MAX] = 6;
    EXPECT_EQ(empty.length(), 1);
    EXPECT_EQ(empty[0], 6);
}

TEST(Vector, HoldsElementsThatOnlyMove) {
    WCValVector<std::unique_ptr<int>> vector;
    vector[0] = std::make_unique<int>(1);
    vector[1] = std::make_unique<int>(2);
    EXPECT_EQ(*vector[0], 1);
}

} // namespace
} // namespace vxut
