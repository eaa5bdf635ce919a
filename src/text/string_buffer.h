// The buffer that copies of a String share.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>

namespace vxut {

// One allocation: this header and the units behind it. Owned by reference count; the count may change on any
// thread, everything else only while one thread holds the only reference.
struct StringBuffer {
    uint64_t capacity; // usable units, the terminator included
    volatile LONG usage;
    uint32_t reserve; // units allocated beyond the capacity, for GrowInPlace()

    wchar_t* Text() noexcept { return reinterpret_cast<wchar_t*>(this + 1); }
    bool IsShared() const noexcept { return usage >= 2; }
    StringBuffer* AddReference() noexcept {
        InterlockedIncrement(&usage);
        return this;
    }

    // Raises the capacity if the allocation is large enough. Precondition: the buffer is not shared.
    bool GrowInPlace(uint64_t wanted) noexcept {
        if (wanted <= capacity) return true;
        if (wanted - capacity > reserve) return false;
        reserve -= static_cast<uint32_t>(wanted - capacity);
        capacity = wanted;
        return true;
    }

    // The capacity for length units and a terminator: a multiple of 8.
    static uint64_t RoundedCapacity(int64_t length) noexcept {
        return (static_cast<uint64_t>(length) + 8) & ~uint64_t{7};
    }

    // Returns a buffer of usage 1 that holds the empty text. Throws std::bad_alloc.
    static StringBuffer* Make(uint64_t capacity, uint32_t reserve = 0);
    // Drops one reference; dropping the last one frees the buffer. A release too many is reported.
    static void Release(StringBuffer* buffer) noexcept;
};

struct StringBufferReleaser {
    void operator()(StringBuffer* buffer) const noexcept { StringBuffer::Release(buffer); }
};
// Owns one reference.
using StringBufferOwner = std::unique_ptr<StringBuffer, StringBufferReleaser>;

static_assert(sizeof(StringBuffer) == 16, "the text starts 16 bytes into the allocation");

} // namespace vxut
