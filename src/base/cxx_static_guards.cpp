// One initialisation of each function-local static, in place of the C++ run-time's functions for it, which
// allocate a lock at first use and lose it when the DLL is unloaded.
#include "base/process_end.h"

#include <windows.h>

#include <atomic>
#include <cstdint>

namespace {

// The compiler's guard variable of 8 bytes. The compiler itself reads the first one.
struct Guard {
    uint8_t isMade;
    uint8_t isBeingMade;
};

// One lock for all statics: it is held for a few instructions, not while an object is made.
constinit SRWLOCK lock = SRWLOCK_INIT;
constinit CONDITION_VARIABLE changed = CONDITION_VARIABLE_INIT;

void Settle(Guard& guard, bool isMade) noexcept {
    if (vxut::IsProcessEnding()) {
        guard.isMade = isMade;
        return;
    }
    AcquireSRWLockExclusive(&lock);
    guard.isBeingMade = 0;
    std::atomic_ref(guard.isMade).store(isMade, std::memory_order_release);
    ReleaseSRWLockExclusive(&lock);
    WakeAllConditionVariable(&changed);
}

} // namespace

namespace __cxxabiv1 {

extern "C" {

// Returns 1 to the thread that is to make the object.
int __cxa_guard_acquire(uint64_t* variable) {
    auto& guard = *reinterpret_cast<Guard*>(variable);
    // No other thread is left then: one that held the lock or made the object has been terminated.
    if (vxut::IsProcessEnding()) return !guard.isMade;
    AcquireSRWLockExclusive(&lock);
    while (guard.isBeingMade) SleepConditionVariableSRW(&changed, &lock, INFINITE, 0);
    const bool isForCaller = !guard.isMade;
    guard.isBeingMade = isForCaller;
    ReleaseSRWLockExclusive(&lock);
    return isForCaller;
}

void __cxa_guard_release(uint64_t* variable) noexcept { Settle(*reinterpret_cast<Guard*>(variable), true); }

// The constructor has thrown.
void __cxa_guard_abort(uint64_t* variable) noexcept { Settle(*reinterpret_cast<Guard*>(variable), false); }

} // extern "C"

} // namespace __cxxabiv1
