// Reading the memory of the process while it may be damaged.
#pragma once

#include <windows.h>

#include <cstdint>

namespace vxut {

// Copies bytes. Returns false if they cannot all be read. Raises no exception, trips no guard page, takes no
// lock of the library and allocates nothing.
inline bool ReadOwnMemory(void* target, uint64_t address, size_t bytes) noexcept {
    SIZE_T read = 0;
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    const void* const source = reinterpret_cast<const void*>(address);
    return ReadProcessMemory(GetCurrentProcess(), source, target, bytes, &read) && read == bytes;
}

// Copies a text up to its terminator or to units - 1 units, and terminates the copy. Returns false if the
// text cannot be read so far.
template <class Unit>
bool ReadOwnText(Unit* target, size_t units, uint64_t address) noexcept {
    for (size_t i = 0; i + 1 < units; ++i) {
        target[i] = 0;
        if (!ReadOwnMemory(target + i, address + i * sizeof(Unit), sizeof(Unit))) return false;
        if (target[i] == 0) return true;
    }
    target[units - 1] = 0;
    return true;
}

} // namespace vxut
