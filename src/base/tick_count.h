// A count of milliseconds that does not wrap.
#pragma once

#include <atomic>
#include <cstdint>

namespace vxut {

// Milliseconds since the system's start. Resolved at load, so that it may be called under any lock.
uint64_t TickCount64();

// Makes a long count of a 32-bit one that wraps, provided that it is asked once in 49 days.
class clsTickExtender {
public:
    uint64_t Extend(uint32_t ticks) noexcept;

private:
    std::atomic<uint64_t> last_{0};
};

} // namespace vxut
