#include "text/match_budget.h"

#include "base/tick_count.h"

#include <windows.h>

namespace vxut {
namespace {

constexpr uint64_t kTicksPerMillisecond = 10'000;

uint64_t Ticks(const FILETIME& time) noexcept {
    return uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

// Falls back to the clock, which bounds the work too.
uint64_t ProcessorMilliseconds() noexcept {
    FILETIME created, ended, kernel, user;
    if (!GetThreadTimes(GetCurrentThread(), &created, &ended, &kernel, &user)) return TickCount64();
    return (Ticks(kernel) + Ticks(user)) / kTicksPerMillisecond;
}

} // namespace

void clsMatchBudget::LookAtProcessorTime() noexcept {
    const uint64_t now = ProcessorMilliseconds();
    if (!hasBegun_) began_ = now;
    hasBegun_ = true;
    const uint64_t used = now - began_;
    isUsedUp_ = used >= most_;
    if (!isUsedUp_) nextLook_ = clock_ + (most_ - used);
}

} // namespace vxut
