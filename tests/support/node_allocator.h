// An allocator pair for containers that keeps account of its blocks and runs dry on request.
#pragma once

#include <cstddef>
#include <map>
#include <new>

namespace vxut::test {

struct NodeAllocator {
    static inline std::map<void*, size_t> blocks;
    static inline std::map<size_t, int> sizes; // how many blocks of each size were ever handed out
    static inline bool isDry = false;
    static inline int badFrees = 0; // of an unknown block, or with another size than was asked for

    static void Reset() {
        sizes.clear();
        isDry = false;
        badFrees = 0;
    }

    static void* Allocate(size_t bytes) {
        if (isDry) return nullptr;
        void* const memory = ::operator new(bytes);
        blocks[memory] = bytes;
        ++sizes[bytes];
        return memory;
    }

    static void Deallocate(void* memory, size_t bytes) {
        const auto block = blocks.find(memory);
        if (block == blocks.end() || block->second != bytes) {
            ++badFrees;
            return;
        }
        blocks.erase(block);
        ::operator delete(memory);
    }
};

} // namespace vxut::test
