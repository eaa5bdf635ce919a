#include "files/file_lock.h"

#include "base/system_libraries.h"
#include "base/tick_count.h"

#include <windows.h>

#include <utility>

namespace vxut {
namespace {

constexpr uint64_t kSlotMilliseconds = 100;

} // namespace

clsFileLockList::~clsFileLockList() {
    while (first_) Remove(first_.get());
}

clsFileLock* clsFileLockList::Append(std::unique_ptr<clsFileLock> lock) noexcept {
    lock->previous = last_;
    std::unique_ptr<clsFileLock>& place = last_ ? last_->next : first_;
    place = std::move(lock);
    return last_ = place.get();
}

bool clsFileLockList::Contains(const clsFileLock* token) const noexcept {
    const clsFileLock* lock = first_.get();
    while (lock && lock != token) lock = lock->next.get();
    return lock != nullptr;
}

void clsFileLockList::Remove(clsFileLock* lock) noexcept {
    std::unique_ptr<clsFileLock>& place = lock->previous ? lock->previous->next : first_;
    if (lock->next) {
        lock->next->previous = lock->previous;
    } else {
        last_ = lock->previous;
    }
    place = std::move(lock->next);
}

clsBackOff::clsBackOff() : start_(TickCount64()), slot_(start_ / kSlotMilliseconds) {}

clsBackOff::~clsBackOff() {
    if (raisedTimerResolution_ && WinMM().timeEndPeriod.IsAvailable()) WinMM().timeEndPeriod(1);
}

void clsBackOff::Wait() {
    const uint64_t slot = TickCount64() / kSlotMilliseconds;
    if (slot == std::exchange(slot_, slot)) {
        Sleep(0);
        return;
    }
    if (!std::exchange(raisedTimerResolution_, true) && WinMM().timeBeginPeriod.IsAvailable())
        WinMM().timeBeginPeriod(1);
    Sleep(1);
}

uint64_t clsBackOff::Elapsed() const { return TickCount64() - start_; }

} // namespace vxut
