// The range locks that a file holds, and the patience with which it asks for them.
#pragma once

#include <cstdint>
#include <memory>

namespace vxut {

// One locked range; its address is the caller's token.
struct clsFileLock {
    int64_t offset = 0;
    int64_t length = 0;
    std::unique_ptr<clsFileLock> next;
    clsFileLock* previous = nullptr;
};

// Owns the locks of one file, oldest first.
class clsFileLockList {
public:
    clsFileLockList() = default;
    clsFileLockList(const clsFileLockList&) = delete;
    clsFileLockList& operator=(const clsFileLockList&) = delete;
    ~clsFileLockList();

    clsFileLock* Append(std::unique_ptr<clsFileLock> lock) noexcept;
    // Whether the token is of this list. It may point to a lock that is gone: it is compared, never followed.
    bool Contains(const clsFileLock* token) const noexcept;
    // Frees a lock of this list.
    void Remove(clsFileLock* lock) noexcept;
    // The oldest lock, or null.
    clsFileLock* First() const noexcept { return first_.get(); }

private:
    std::unique_ptr<clsFileLock> first_;
    clsFileLock* last_ = nullptr;
};

// Waits between attempts: gives the processor up each time, and sleeps for a millisecond whenever a new
// 100-millisecond slot of the tick count has begun.
class clsBackOff {
public:
    clsBackOff();
    ~clsBackOff();
    clsBackOff(const clsBackOff&) = delete;
    clsBackOff& operator=(const clsBackOff&) = delete;

    void Wait();

private:
    uint64_t slot_;
    bool raisedTimerResolution_ = false;
};

} // namespace vxut
