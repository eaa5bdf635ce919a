// Reads from addresses that may lead anywhere.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vxut {

// Copies bytes, or gives false if they cannot all be read; what the target holds is open then. Costs next to
// nothing where there is no fault, and works in front of a debugger.
bool ReadShielded(void* target, const void* source, size_t bytes);

template <class T>
bool ReadShielded(T& target, const void* source) {
    return ReadShielded(&target, source, sizeof target);
}
template <>
bool ReadShielded(uint32_t& target, const void* source);

} // namespace vxut
