// Limits the time that is lost to a partner that answers late.
#pragma once

#include <algorithm>
#include <cstdint>

namespace vxut {

// Waits add up. When their sum reaches the budget, MayWait() is false for the length of the rest. A tenth of
// the time between two waits is taken off the sum, so after a rest one more long wait is enough. All times
// are in milliseconds; now is a reading of TickCount64(). Not synchronised.
class clsWaitBudget {
public:
    constexpr clsWaitBudget(uint64_t budget, uint64_t rest) noexcept : budget_(budget), rest_(rest) {}

    bool MayWait(uint64_t now) const noexcept { return now >= restEnd_; }

    // Enters a wait that ended now.
    void Spend(uint64_t waited, uint64_t now) noexcept {
        const uint64_t passed = now - waited - std::min(spentAt_, now - waited);
        spent_ -= std::min(spent_, passed / kForgivenShare);
        spent_ = std::min(spent_ + waited, budget_);
        spentAt_ = now;
        if (spent_ == budget_) restEnd_ = now + rest_;
    }

    void Refill() noexcept { spent_ = restEnd_ = 0; }

private:
    static constexpr uint64_t kForgivenShare = 10;

    uint64_t budget_;
    uint64_t rest_;
    uint64_t spent_ = 0;
    uint64_t spentAt_ = 0;
    uint64_t restEnd_ = 0;
};

} // namespace vxut
