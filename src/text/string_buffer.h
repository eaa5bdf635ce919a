// The buffer that copies of a String share.
#pragma once

#include <windows.h>

#include <cstdint>

namespace vxut {

struct StringBuffer {
    uint64_t capacity; // usable units, the terminator included
    volatile LONG usage;

    wchar_t* Text() noexcept { return reinterpret_cast<wchar_t*>(this + 1); }
    bool IsShared() const noexcept { return usage >= 2; }
    void AddReference() noexcept { InterlockedIncrement(&usage); }

    // Room for length units and their terminator, in steps of 8.
    static uint64_t RoundedCapacity(int64_t length) noexcept {
        return (static_cast<uint64_t>(length) + 8) & ~uint64_t{7};
    }

    // A buffer of usage 1 whose first unit is a terminator. Throws when memory is short.
    static StringBuffer* Make(uint64_t capacity);
    // Drops one reference; the last one frees. A second release is reported.
    static void Release(StringBuffer* buffer) noexcept;
};
static_assert(sizeof(StringBuffer) == 16, "the text starts 16 bytes into the allocation");

} // namespace vxut
