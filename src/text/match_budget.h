// How long one operation may search.
#pragma once

#include <cstdint>

namespace vxut {

// The processor time that all searches of one operation may take together. A pattern that is quick on honest
// text can take quadratic time on text made for it; when the time is used up, nothing matches any more.
//
// Only the thread's own processor time counts: a process that is suspended or starved loses no matches.
// Asking for it is slow on some systems, so it is asked for only when the searches have taken so long by the
// clock that it may be used up. What the thread does between searches of the operation counts as well from
// then on. For one thread.
class clsMatchBudget {
public:
    static constexpr uint64_t kMostMilliseconds = 5000;

    explicit clsMatchBudget(uint64_t milliseconds = kMostMilliseconds) noexcept : most_(milliseconds) {}

    bool IsUsedUp() const noexcept { return isUsedUp_; }
    // Adds a search that took so many milliseconds by the clock.
    void Add(uint64_t milliseconds) noexcept {
        clock_ += milliseconds;
        if (clock_ >= nextLook_) LookAtProcessorTime();
    }

private:
    static constexpr uint64_t kFirstLook = 20;

    void LookAtProcessorTime() noexcept;

    uint64_t most_;
    uint64_t clock_ = 0;             // of all searches
    uint64_t nextLook_ = kFirstLook; // by that clock
    uint64_t began_ = 0;             // the thread's processor time at the first look
    bool hasBegun_ = false;
    bool isUsedUp_ = false;
};

} // namespace vxut
