// The lock of a movable global memory block.
#pragma once

#include <windows.h>

namespace vxut {

// Locks a block for its own lifetime, and frees it in the end if told to.
class clsGlobalLock {
public:
    // A block that could not be had (null) gives a lock without memory.
    explicit clsGlobalLock(HGLOBAL memory, bool freeAtEnd = false, bool reportFailures = true);
    clsGlobalLock(const clsGlobalLock&) = delete;
    clsGlobalLock& operator=(const clsGlobalLock&) = delete;
    ~clsGlobalLock();

    void* Lock();
    void Unlock();
    void Free();

    HGLOBAL Handle() const noexcept { return memory_; }
    // The memory, or null.
    template <class T = void>
    T* Pointer() const noexcept {
        return static_cast<T*>(pointer_);
    }
    // Gives the block up unlocked, to somebody who will own it.
    [[nodiscard]] HGLOBAL Detach();

private:
    void Report(const wchar_t* format) const;

    HGLOBAL memory_;
    void* pointer_ = nullptr;
    const bool freeAtEnd_;
    const bool reportFailures_;
};

} // namespace vxut
