// What the tests of containers share: an element and an allocator that keep account, and fail on request.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <new>
#include <stdexcept>

namespace vxut::test {

// An element that counts the living ones. For one thread.
class Counted {
public:
    static inline int living = 0;
    static inline int copiesUntilThrow = -1; // negative: never

    Counted(int itsValue = 0) : value(itsValue) { ++living; } // NOLINT(google-explicit-constructor)
    Counted(const Counted& other) : value(other.value) {
        if (copiesUntilThrow == 0) throw std::runtime_error("copy");
        if (copiesUntilThrow > 0) --copiesUntilThrow;
        ++living;
    }
    Counted(Counted&& other) noexcept : value(other.value) { ++living; }
    Counted& operator=(const Counted&) = default;
    Counted& operator=(Counted&&) noexcept = default;
    ~Counted() { --living; }

    bool operator==(const Counted& other) const { return value == other.value; }
    bool operator<(const Counted& other) const { return value < other.value; }

    int value;
};

// Makes the copy after a number of copies throw, as long as the object lives.
class ThrowingCopies {
public:
    explicit ThrowingCopies(int copiesBefore) { Counted::copiesUntilThrow = copiesBefore; }
    ~ThrowingCopies() { Counted::copiesUntilThrow = -1; }
};

// A container's allocator pair.
struct NodeAllocator {
    static inline std::map<void*, size_t> blocks;
    static inline bool isDry = false;

    static void* Allocate(size_t bytes) {
        if (isDry) return nullptr;
        void* const memory = ::operator new(bytes);
        blocks[memory] = bytes;
        return memory;
    }
    static void Deallocate(void* memory, size_t bytes) {
        const auto block = blocks.find(memory);
        ASSERT_TRUE(block != blocks.end() && block->second == bytes) << "freed what was not allocated so";
        blocks.erase(block);
        ::operator delete(memory);
    }
};

// Every test of a container ends without elements and without nodes.
class ContainerTest : public testing::Test {
protected:
    void TearDown() override {
        NodeAllocator::isDry = false;
        EXPECT_EQ(Counted::living, 0);
        EXPECT_TRUE(NodeAllocator::blocks.empty());
    }
};

} // namespace vxut::test
