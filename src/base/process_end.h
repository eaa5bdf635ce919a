// Whether the process is ending.
//
// When a process ends, the system terminates all threads but one before it notifies the libraries. Locks that
// a terminated thread held are never released, and what they guard may be half-changed.
#pragma once

#include <atomic>

namespace vxut {

inline constinit std::atomic<bool> isProcessEnding{false};

// True on the last thread of the process, while the libraries are notified of its end.
inline bool IsProcessEnding() noexcept { return isProcessEnding.load(std::memory_order_relaxed); }

} // namespace vxut
