// A count of milliseconds that does not wrap.
#pragma once

#include <atomic>
#include <cstdint>

namespace vxut {

// Returns the milliseconds since the start of the system. May be called on any thread and under any lock: the
// system's function is resolved at load.
uint64_t TickCount64();

// Extends a 32-bit count that wraps, for systems without a 64-bit one. Precondition: it is called at least
// once in 49 days. May be used by any thread.
class clsTickExtender {
public:
    // Returns the extended count. It never decreases, though a thread may pass a reading that is older than
    // that of another.
    uint64_t Extend(uint32_t ticks) noexcept;

private:
    std::atomic<uint64_t> last_{0};
};

} // namespace vxut
