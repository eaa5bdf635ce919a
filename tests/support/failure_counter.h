// Decides which calls of a test fail: one of them, or all from one on.
#pragma once

#include <windows.h>

#include <atomic>

namespace vxut::test {

// Counts the calls of the thread that armed it. Other threads may ask, and nothing fails for them.
class FailureCounter {
public:
    static constexpr unsigned kNever = 0;

    // number: of the call that fails, from 1; kNever only counts.
    void Arm(unsigned number, bool andAllLater) {
        calls_ = 0;
        number_ = number;
        andAllLater_ = andAllLater;
        thread_ = GetCurrentThreadId();
    }
    void Disarm() { thread_ = 0; }

    // Whether the calling thread is the one that has armed the counter.
    bool IsArmedHere() const { return thread_ == GetCurrentThreadId(); }

    // Counts a call. Returns whether it has to fail.
    bool Strikes() {
        if (!IsArmedHere()) return false;
        ++calls_;
        return HasStruck() && (andAllLater_ || calls_ == number_);
    }

    // Both of the time since Arm().
    unsigned Calls() const { return calls_; }
    bool HasStruck() const { return number_ != kNever && calls_ >= number_; }

private:
    std::atomic<DWORD> thread_{0}; // a thread_local would itself allocate
    unsigned calls_ = 0;
    unsigned number_ = kNever;
    bool andAllLater_ = false;
};

} // namespace vxut::test
