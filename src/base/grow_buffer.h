// A buffer for system calls that say how much they need when it is too small.
#pragma once

#include "base/owners.h"

#include <windows.h>

#include <cstddef>

namespace vxut {

// Holds kLocalUnits units in itself and allocates when a result is longer. One more unit beyond the capacity
// is always 0: a text that the system left without a terminator has one.
//
//     clsGrowBuffer<wchar_t, MAX_PATH> buffer;
//     const DWORD length = buffer.Fill([](wchar_t* target, DWORD capacity) {
//         return ExpandEnvironmentStringsW(L"%PATH%", target, capacity);
//     });
template <class Unit, size_t kLocalUnits>
class clsGrowBuffer {
public:
    clsGrowBuffer() noexcept = default;
    clsGrowBuffer(const clsGrowBuffer&) = delete;
    clsGrowBuffer& operator=(const clsGrowBuffer&) = delete;

    // Calls fill(target, capacity) until the result fits, and returns what it returned last: 0 if the call
    // has failed, the units that it needs if they exceed the capacity, else any number up to the capacity.
    // The call is repeated as often as the result grows between two calls. Throws std::bad_alloc.
    template <class FillFunction>
    DWORD Fill(FillFunction fill) {
        for (DWORD capacity = kLocalUnits;;) {
            const DWORD needed = fill(Get(), capacity);
            if (needed <= capacity) return needed;
            allocated_.reset(new Unit[size_t{needed} + 1]());
            capacity = needed;
        }
    }

    Unit* Get() noexcept { return allocated_ ? allocated_.get() : local_; }
    const Unit* Get() const noexcept { return allocated_ ? allocated_.get() : local_; }

private:
    alignas(std::max_align_t) Unit local_[kLocalUnits + 1] = {};
    clsAutoDeleteBytes<Unit> allocated_;
};

} // namespace vxut
