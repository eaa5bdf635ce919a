// Memory for many small objects: blocks of few sizes, carved out of pages.
#pragma once

#include "profile/chunk_pool.h"

#include <cstddef>
#include <cstdint>

namespace vxut {

// Allocates blocks of up to kMaxBytes, and of one larger size, in slabs, each of which holds blocks of one
// size and returns to the chunk pool with its last block; others are taken from the general allocator. A
// block has no header. Not synchronised: the caller holds a lock.
class clsSmallBlocks {
public:
    static constexpr size_t kGrain = 8; // sizes are rounded up to a multiple of it
#ifdef VXUT_SEPARATE_BLOCKS
    static constexpr size_t kMaxBytes = 0; // no slabs: the fuzz driver's allocator guards each block
#else
    static constexpr size_t kMaxBytes = 256;
#endif

    // largeBytes is the larger size, a multiple of kGrain, or 0 for none.
    explicit clsSmallBlocks(size_t largeBytes = 0) noexcept : large_(kMaxBytes > 0 ? largeBytes : 0) {}
    clsSmallBlocks(const clsSmallBlocks&) = delete;
    clsSmallBlocks& operator=(const clsSmallBlocks&) = delete;

    // Returns a block that is aligned for any object of kGrain, or null if there is no memory.
    void* Take(size_t bytes) noexcept;
    // Frees a block. bytes is what it was taken with.
    void Give(void* block, size_t bytes) noexcept;

    uint64_t Slabs() const noexcept { return slabs_; }
    // Returns the memory that no block uses to the system.
    void ShutDown() noexcept { chunks_.ShutDown(); }

private:
    struct scSlab;

    static constexpr size_t kLargeClass = kMaxBytes / kGrain + 1;

    bool IsInSlabs(size_t bytes) const noexcept { return bytes <= kMaxBytes || bytes == large_; }
    static size_t ClassOf(size_t bytes) noexcept {
        return bytes <= kMaxBytes ? (bytes + kGrain - 1) / kGrain : kLargeClass;
    }
    scSlab* AddSlab(size_t sizeClass) noexcept;
    void FreeSlab(scSlab* slab) noexcept;
    void Link(scSlab* slab) noexcept;
    void Unlink(scSlab* slab) noexcept;

    const size_t large_;
    clsChunkPool chunks_;
    scSlab* open_[kLargeClass + 1] = {}; // by size class, the slabs with space
    uint64_t slabs_ = 0;
};

} // namespace vxut
