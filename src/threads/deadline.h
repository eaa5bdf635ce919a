// A time in the future, for waits that go on in parts.
#pragma once

#include "base/tick_count.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>

namespace vxut {

class clsDeadline {
public:
    // In milliseconds from now; a negative number is never.
    explicit clsDeadline(int32_t timeout)
        : end_(timeout < 0 ? kNever : TickCount64() + static_cast<uint32_t>(timeout)) {}

    bool HasPassed() const { return end_ != kNever && TickCount64() >= end_; }

    // What is left, as the system's waits take it.
    DWORD Remaining() const {
        if (end_ == kNever) return INFINITE;
        return static_cast<DWORD>(end_ - std::min(TickCount64(), end_));
    }

private:
    static constexpr uint64_t kNever = UINT64_MAX;

    const uint64_t end_;
};

} // namespace vxut
