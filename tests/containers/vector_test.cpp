#include "containers/vector.h"

#include "tests/support/container_test.h"

#include <gtest/gtest.h>

#include <climits>
#include <utility>
#include <vector>

namespace vxut {
namespace {

using test::Counted;
using test::ExpectAllOrNothing;
using test::FailingSteps;
using test::NodeAllocator;

template <class Element>
class VectorTest : public test::ContainerTest {
protected:
    using Vector = WCValVector<Element, NodeAllocator>;

    static std::pair<int, std::vector<int>> LengthAndValues(const Vector& vector) {
        std::vector<int> values;
        for (int i = 0; i < vector.entries(); ++i) values.push_back(vector[i].value);
        return {vector.length(), values};
    }
};

using Elements = testing::Types<Counted, test::CopiedOnly>;
TYPED_TEST_SUITE(VectorTest, Elements);

TYPED_TEST(VectorTest, GrowsToReachAnIndexAndReadsWithoutGrowing) {
    typename TestFixture::Vector vector;
    const auto& view = vector;
    EXPECT_EQ(view[3].value, 0);
    vector[5] = 5;
    vector[-7] = 7;
    EXPECT_EQ(vector.length(), 6);
    const std::pair<int, int> cases[] = {{-1, 7}, {0, 7}, {1, 0}, {5, 5}, {6, 5}, {INT_MAX, 5}};
    for (const auto& [index, value] : cases) EXPECT_EQ(view[index].value, value) << index;
    EXPECT_EQ(&vector[INT_MAX], &vector[5]) << "cannot grow so far";
    EXPECT_EQ(vector.length(), 6);
}

TYPED_TEST(VectorTest, ResizeKeepsWhatFitsAndDestroysTheRest) {
    typename TestFixture::Vector vector;
    EXPECT_TRUE(vector.resize(10));
    EXPECT_EQ(Counted::living, 0) << "the length is not yet entries";
    for (int i = 0; i < 5; ++i) vector[i] = i + 1;
    EXPECT_FALSE(vector.resize(-1));
    EXPECT_EQ(vector.length(), 10);
    for (const int length : {3, 8, 0}) {
        EXPECT_TRUE(vector.resize(length));
        EXPECT_EQ(vector.length(), length);
        EXPECT_EQ(Counted::living, length ? 3 : 0);
        EXPECT_EQ(NodeAllocator::Bytes(), length * sizeof(TypeParam)) << "exactly as much";
    }
}

TYPED_TEST(VectorTest, GrowthOneByOneIsLinearAndTakesAtMostHalfAsMuchMemoryAgain) {
    constexpr int kElements = 40000;
    typename TestFixture::Vector vector;
    int64_t allocations = 0;
    const void* place = nullptr;
    for (int i = 0; i < kElements; ++i) {
        vector[i] = i;
        ASSERT_EQ(vector.length(), i + 1);
        allocations += std::exchange(place, &vector[0]) != &vector[0];
    }
    EXPECT_LE(allocations, 40);
    EXPECT_LE(Counted::moves, 4 * kElements); // those of the assignments included
    EXPECT_LE(NodeAllocator::Bytes(), kElements * sizeof(TypeParam) * 3 / 2);
    for (int i = 0; i < kElements; ++i) ASSERT_EQ(vector[i].value, i);
}

TYPED_TEST(VectorTest, ChangesAreMadeWhollyOrNotAtAll) {
    using Vector = typename TestFixture::Vector;
    const Vector empty;
    Vector six;
    for (int i = 0; i < 6; ++i) six[i] = i + 1;
    bool (*const changes[])(Vector&) = {
        [](Vector& vector) {
            const int length = vector.length();
            vector[6]; // element 0 of the empty vector, if there is no memory for so many
            return vector.length() > length;
        },
        [](Vector& vector) { return vector.resize(9); },
        [](Vector& vector) { return vector.resize(2); },
        [](Vector& vector) { return vector = Vector(5), true; },
        [](Vector& vector) {
            Vector other(vector);
            if (!other.resize(4)) return false;
            return vector = std::as_const(other), true;
        },
    };
    for (const Vector& original : {empty, six})
        for (const auto change : changes) ExpectAllOrNothing(original, change, TestFixture::LengthAndValues);
}

TYPED_TEST(VectorTest, WithoutMemoryAnIndexIsTheLastElement) {
    typename TestFixture::Vector vector;
    vector[1] = 7;
    {
        const FailingSteps failing(0);
        EXPECT_EQ(vector[9].value, 7);
    }
    vector.resize(0);
    const FailingSteps failing(1, FailingSteps::kOne); // for index 9, not for index 0
    EXPECT_THROW(typename TestFixture::Vector()[9], std::exception);
}

} // namespace
} // namespace vxut
