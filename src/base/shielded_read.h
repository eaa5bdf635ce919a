// Reads from, and writes to, addresses that may lead anywhere.
//
// A copy that does not fault costs next to nothing extra. A fault is handled inside, also while a debugger is
// attached, which may stop at it first. All functions may be called on any thread and under any lock.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vxut {

// Copies bytes. Returns false if they cannot all be read; the target's contents are unspecified then.
bool ReadShielded(void* target, const void* source, size_t bytes);

template <class T>
bool ReadShielded(T& target, const void* source) {
    return ReadShielded(&target, source, sizeof target);
}
template <>
bool ReadShielded(uint32_t& target, const void* source);

// Copies a text up to its terminator, cut to units - 1 units, and terminates the copy. units is at least 1.
// Returns false, with an empty copy, if the text cannot be read so far.
bool ReadTextShielded(wchar_t* target, size_t units, const wchar_t* source);

// Copies bytes to where they may not be writable. Returns false if they were not all written.
bool WriteShielded(void* target, const void* source, size_t bytes);
bool WriteShielded(void* target, uint32_t word);

} // namespace vxut
