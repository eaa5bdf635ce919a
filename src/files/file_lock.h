// The range locks that a file holds, and the pauses between attempts to get one.
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

// Owns the lock records of one file, oldest first. Releasing the locks themselves is up to the file.
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

// Pauses between attempts: yields the processor each time, and sleeps for a millisecond whenever a new
// 100-millisecond slot of the tick count has begun. For one thread.
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
