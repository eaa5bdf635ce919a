// The turn at the sinks of the debug channel: one thread at a time has it.
#pragma once

#include "base/critical_section.h"
#include "base/owners.h"

#include <atomic>
#include <cstdint>
#include <type_traits>

namespace vxut {

// A recursive lock whose waiters give up when its owner takes too long, for the owner may be waiting for a
// viewer. Release is guaranteed even if a structured exception leaves the work; destructors do not run then.
// For use by all threads.
class clsSendTurn {
public:
    clsSendTurn();

    // Takes the turn, runs work() and releases the turn. False, without having run it, if another thread
    // has had the turn for patience milliseconds (INFINITE: there is no limit).
    template <class Work>
    bool Run(DWORD patience, Work&& work) {
        if (!Enter(patience)) return false;
        RunAndLeave([](void* called) { (*static_cast<std::remove_reference_t<Work>*>(called))(); }, &work);
        return true;
    }

    // Whether the calling thread has the turn.
    bool IsMine() const noexcept { return owner_.load(std::memory_order_relaxed) == GetCurrentThreadId(); }
    // Whether the calling thread, which has the turn, has taken it more than once.
    bool IsNested() const noexcept { return depth_ > 1; }

    // Marks, for the thread that has the turn, that a line is on its way to the sinks. The mark goes with the
    // turn at the latest.
    void SetSending(bool isSending) noexcept { isSending_ = isSending; }
    bool IsSending() const noexcept { return isSending_; }

private:
    bool Enter(DWORD patience);
    void WaitForRelease(DWORD milliseconds) const;
    void Leave();
    void RunAndLeave(void (*work)(void*), void* argument);

    clsCriticalSection lock_; // guards all below for an instant
    clsAutoCloseHandle released_;
    std::atomic<DWORD> owner_{0}; // a thread's id
    int depth_ = 0;
    int waiters_ = 0;
    uint64_t takenAt_ = 0;
    bool isSending_ = false; // the owner's alone
};

} // namespace vxut
