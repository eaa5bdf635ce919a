// The end of a wait that is made of several shorter ones.
#pragma once

#include "base/tick_count.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>

namespace vxut {

// A point in time, fixed at construction. A value; threads may share it.
class clsDeadline {
public:
    // timeout is in milliseconds from now; a negative one means that the deadline never passes.
    explicit clsDeadline(int32_t timeout)
        : end_(timeout < 0 ? kNever : TickCount64() + static_cast<uint32_t>(timeout)) {}

    bool HasPassed() const { return end_ != kNever && TickCount64() >= end_; }

    // Returns the milliseconds that remain, or INFINITE, as the system's wait functions expect.
    DWORD Remaining() const {
        if (end_ == kNever) return INFINITE;
        return static_cast<DWORD>(end_ - std::min(TickCount64(), end_));
    }

private:
    static constexpr uint64_t kNever = UINT64_MAX;

    const uint64_t end_;
};

} // namespace vxut
