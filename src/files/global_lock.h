// The lock of a movable global memory block.
#pragma once

#include <windows.h>

namespace vxut {

// Locks a block for its own lifetime and, if freeAtEnd is set, frees it then. For one thread at a time.
class clsGlobalLock {
public:
    // A null block, such as a failed allocation, makes a lock without memory.
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
    // Releases the block, unlocked, to the caller, who owns it from now on.
    [[nodiscard]] HGLOBAL Detach();

private:
    void Report(const wchar_t* format) const noexcept;

    HGLOBAL memory_;
    void* pointer_ = nullptr;
    const bool freeAtEnd_;
    const bool reportFailures_;
};

} // namespace vxut
