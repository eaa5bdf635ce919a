// The loop of everything that is tried again for a while.
#pragma once

#include "base/tick_count.h"

#include <cstdint>

namespace vxut {

// Calls attempt() until it returns true (it succeeded, or trying again is of no use) or the time is over,
// with pause() between two attempts. At least leastAttempts are made, however long each takes. Returns
// whether attempt() returned true.
template <class Attempt, class Pause>
bool TryPatiently(uint64_t limitMilliseconds, Attempt attempt, Pause pause, int leastAttempts = 1) {
    const uint64_t start = TickCount64();
    for (int made = 1; !attempt(); ++made) {
        if (made >= leastAttempts && TickCount64() - start >= limitMilliseconds) return false;
        pause();
    }
    return true;
}

} // namespace vxut
