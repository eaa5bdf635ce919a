// Compressed blocks of the text encoding: in front of a zlib stream, the size of what it holds.
#pragma once

#include "base/owners.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace vxut {

// Owns bytes. What is allocated is not initialised.
struct scByteBlock {
    scByteBlock() noexcept = default;
    explicit scByteBlock(size_t bytes)
        : data(std::make_unique_for_overwrite<uint8_t[]>(bytes)), size(bytes) {}

    std::span<uint8_t> Bytes() const noexcept { return {data.get(), size}; }

    clsAutoDeleteBytes<uint8_t> data;
    size_t size = 0; // may be less than was allocated
};

// Compresses bytes, of which there are at most 2^32 - 1. Throws std::bad_alloc, also if zlib has no memory.
scByteBlock PackBlock(std::span<const uint8_t> bytes);

// Whether the bytes begin as those of PackBlock() do.
bool IsPackedBlock(std::span<const uint8_t> bytes);

// Returns what was compressed. Empty if the stream is damaged or truncated, or holds another number of bytes
// than its header says; bytes behind the stream are ignored. Never allocates more than the stream can hold.
// Throws std::bad_alloc. Precondition of the first: IsPackedBlock().
scByteBlock UnpackBlock(std::span<const uint8_t> block);
// The same for blocks of older versions, which have no magic.
scByteBlock UnpackOldBlock(std::span<const uint8_t> block);

} // namespace vxut
