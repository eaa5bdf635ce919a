// What the tests of containers share: an element and an allocator that keep account, and fail on request.
#pragma once

#include "containers/container_base.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <map>
#include <new>
#include <stdexcept>

namespace vxut::test {

// Copies, default constructions and allocations are steps. For the scope of this object, the step after the
// given number of steps fails, and so does every later one unless only one is to fail.
class FailingSteps {
public:
    enum Extent { kOne, kAllLater };

    explicit FailingSteps(int stepsBefore, Extent extent = kAllLater) {
        left = stepsBefore;
        failsOn = extent == kAllLater;
    }
    ~FailingSteps() { left = kNever; }
    FailingSteps(const FailingSteps&) = delete;
    FailingSteps& operator=(const FailingSteps&) = delete;

    static bool HaveFailed() { return left < 0; }

    // Takes one step; true if it fails.
    static bool Step() {
        if (left == kNever || (left < 0 && !failsOn)) return false;
        if (left < 0) return true;
        return --left < 0;
    }

private:
    static constexpr int kNever = -2;
    static inline int left = kNever;
    static inline bool failsOn = false;
};

// An element that knows how many of its kind live, and how often one was moved.
class Counted {
public:
    static inline int living = 0;
    static inline int64_t moves = 0;

    Counted() : Counted(0) { Step(); }
    Counted(int itsValue) : value(itsValue) { ++living; } // NOLINT(google-explicit-constructor)
    Counted(const Counted& other) : Counted(other.value) { Step(); }
    Counted(Counted&& other) noexcept : Counted(other.value) { ++moves; }
    Counted& operator=(const Counted&) = default;
    Counted& operator=(Counted&&) noexcept = default;
    ~Counted() { --living; }

    bool operator==(const Counted& other) const { return value == other.value; }
    bool operator<(const Counted& other) const { return value < other.value; }

    int value;

private:
    // The delegated constructor is complete: a throw runs the destructor.
    static void Step() {
        if (FailingSteps::Step()) throw std::runtime_error("step");
    }
};

// An element that cannot be moved without the risk of a throw.
class CopiedOnly : public Counted {
public:
    CopiedOnly() = default;
    CopiedOnly(int itsValue) : Counted(itsValue) {} // NOLINT(google-explicit-constructor)
    CopiedOnly(const CopiedOnly&) = default;
    CopiedOnly& operator=(const CopiedOnly&) = default;
    ~CopiedOnly() = default;
};

// Memory for containers, as an allocator pair and as the memory of vectors.
struct NodeAllocator {
    static inline std::map<void*, size_t> blocks;

    static void* Allocate(size_t bytes) {
        if (FailingSteps::Step()) return nullptr;
        void* const memory = ::operator new(bytes);
        blocks[memory] = bytes;
        return memory;
    }
    static void Free(void* memory, size_t bytes) {
        if (!memory) return;
        const auto block = blocks.find(memory);
        ASSERT_TRUE(block != blocks.end() && block->second == bytes) << "freed what was not allocated so";
        blocks.erase(block);
        ::operator delete(memory);
    }
    static size_t Bytes() {
        size_t bytes = 0;
        for (const auto& block : blocks) bytes += block.second;
        return bytes;
    }
};

// Every test of a container ends without elements and without memory.
class ContainerTest : public testing::Test {
protected:
    void SetUp() override {
        // Those that all containers share are made once and stay.
        WCSharedDefault<Counted>();
        WCSharedDefault<CopiedOnly>();
        Counted::living = 0;
        Counted::moves = 0;
    }
    void TearDown() override {
        EXPECT_EQ(Counted::living, 0);
        EXPECT_TRUE(NodeAllocator::blocks.empty());
    }
};

// Changes copies of a container, with a later step failing in each, until no step fails. A change is true if
// it was made. A change that was not made, or that throws, has to leave everything that Look sees.
template <class Container, class Change, class Look>
void ExpectAllOrNothing(const Container& original, Change change, Look look) {
    const auto before = look(original);
    bool haveFailed = true;
    for (int steps = 0; haveFailed; ++steps) {
        ASSERT_LT(steps, 1000) << "the change has no end";
        for (const auto extent : {FailingSteps::kOne, FailingSteps::kAllLater}) {
            Container container = original;
            bool isDone = false;
            {
                const FailingSteps failing(steps, extent);
                try {
                    isDone = change(container);
                } catch (const std::exception&) {
                    EXPECT_TRUE(failing.HaveFailed());
                }
                haveFailed = failing.HaveFailed();
            }
            EXPECT_TRUE(isDone || haveFailed) << "failed without a reason";
            EXPECT_NE(look(container) == before, isDone) << steps << " steps";
        }
    }
}

} // namespace vxut::test
