#include "base/tick_count.h"

#include "base/system_libraries.h"

namespace vxut {

uint64_t TickCount64() {
    auto& ticks = Kernel32().GetTickCount64;
    if (ticks.IsAvailable()) return ticks();
    static constinit clsTickExtender extender;
    return extender.Extend(GetTickCount());
}

uint64_t clsTickExtender::Extend(uint32_t ticks) noexcept {
    constexpr uint32_t kOvertaken = 0u - 60000u; // a larger step is one back, by at most a minute
    uint64_t last = last_.load(std::memory_order_relaxed);
    uint64_t now;
    do {
        const uint32_t step = ticks - static_cast<uint32_t>(last);
        // Another thread has passed a later reading before.
        if (last != 0 && step >= kOvertaken) return last;
        now = last + step;
    } while (!last_.compare_exchange_weak(last, now, std::memory_order_relaxed));
    return now;
}

} // namespace vxut
