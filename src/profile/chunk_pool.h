// Chunks of memory for slabs, carved out of larger regions of address space.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vxut {

// Asks the system for few and large pieces, because asking is far slower than handing out. Keeps a part of
// what is free for the next use, and returns the rest to the system. Not synchronised.
class clsChunkPool {
public:
    static constexpr size_t kChunkBytes = size_t{64} * 1024; // every chunk is aligned to its size
    static constexpr uint32_t kRegionChunks = 24;
    static constexpr uint32_t kKeptChunks = 64;

    clsChunkPool() noexcept = default;
    ~clsChunkPool() { ShutDown(); }
    clsChunkPool(const clsChunkPool&) = delete;
    clsChunkPool& operator=(const clsChunkPool&) = delete;

    struct scRegion;
    struct scChunk {
        void* memory; // not cleared; null if there is no memory
        scRegion* region;
    };

    scChunk Take() noexcept;
    void Give(const scChunk& chunk) noexcept;
    // Returns everything that is free to the system.
    void ShutDown() noexcept;

private:
    scRegion* AddRegion() noexcept;
    void ReleaseRegion(scRegion* region) noexcept;
    void Decommit(scRegion& region) noexcept;
    void Link(scRegion* region) noexcept;
    void Unlink(scRegion* region) noexcept;

    scRegion* open_ = nullptr; // the regions with a free chunk
    uint32_t warm_ = 0;        // free chunks that have memory
};

} // namespace vxut
