// Memory for many small objects: blocks of few sizes, carved out of pages.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vxut {

// Allocates blocks of up to kMaxBytes in slabs, each of which holds blocks of one size and is returned to the
// system with its last block; larger blocks are taken from the general allocator. A block has no header. Not
// synchronised: the caller holds a lock.
class clsSmallBlocks {
public:
    static constexpr size_t kGrain = 8; // sizes are rounded up to a multiple of it
#ifdef VXUT_SEPARATE_BLOCKS
    static constexpr size_t kMaxBytes = 0; // no slabs: the fuzz driver's allocator guards each block
#else
    static constexpr size_t kMaxBytes = 256;
#endif

    clsSmallBlocks() noexcept = default;
    clsSmallBlocks(const clsSmallBlocks&) = delete;
    clsSmallBlocks& operator=(const clsSmallBlocks&) = delete;

    // Returns a block that is aligned for any object of kGrain, or null if there is no memory.
    void* Take(size_t bytes) noexcept;
    // Frees a block. bytes is what it was taken with.
    void Give(void* block, size_t bytes) noexcept;

    uint64_t Slabs() const noexcept { return slabs_; }
    // Frees the slabs that are kept without a block in use.
    void ShutDown() noexcept;

private:
    struct scSlab;

    static size_t ClassOf(size_t bytes) noexcept { return (bytes + kGrain - 1) / kGrain; }
    scSlab* AddSlab(size_t sizeClass) noexcept;
    void FreeSlab(scSlab* slab) noexcept;
    void Link(scSlab* slab) noexcept;
    void Unlink(scSlab* slab) noexcept;

    scSlab* open_[kMaxBytes / kGrain + 1] = {}; // by size class, the slabs that have a free block
    uint64_t slabs_ = 0;
};

} // namespace vxut
