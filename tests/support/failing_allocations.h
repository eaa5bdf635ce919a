// Lets the allocations of the calling thread fail.
#pragma once

#include "tests/support/import_table.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace vxut::test {

// While it lives, the allocations of the test program on this thread succeed as often as was asked for and
// fail from then on. One at a time.
class FailingAllocations {
public:
    explicit FailingAllocations(int successes) : patch_(GetModuleHandleW(nullptr)) {
        patch_.Replace("malloc", Malloc);
        patch_.Replace("VirtualAlloc", Allocate);
        Arm(0, kExceptionBytes);
        Throw();
        Arm(successes, 0);
    }
    ~FailingAllocations() { Disarm(); }
    FailingAllocations(const FailingAllocations&) = delete;
    FailingAllocations& operator=(const FailingAllocations&) = delete;

    // Lets everything succeed again. Returns whether an allocation failed.
    bool Disarm() {
        thread_ = 0;
        patch_.Restore();
        return hasFailed_;
    }

private:
    static constexpr size_t kExceptionBytes = 128; // no exception takes fewer

    static void Arm(int successes, size_t smallest) {
        left_ = successes;
        smallest_ = smallest;
        hasFailed_ = false;
        thread_ = GetCurrentThreadId();
    }

    // The first exception for which there is no memory makes the run-time library allocate the lock of its
    // reserve.
    static void Throw() {
        try {
            throw std::bad_alloc();
        } catch (const std::bad_alloc&) {
        }
    }

    static bool ShallFail(size_t bytes) {
        if (thread_ != GetCurrentThreadId() || bytes < smallest_) return false;
        if (left_ > 0)
            --left_;
        else
            hasFailed_ = true;
        return hasFailed_;
    }

    static void* Malloc(size_t bytes) { return ShallFail(bytes) ? nullptr : std::calloc(1, bytes); }
    static void* WINAPI Allocate(void* address, SIZE_T bytes, DWORD type, DWORD protection) {
        if (ShallFail(bytes)) return nullptr;
        return VirtualAllocEx(GetCurrentProcess(), address, bytes, type, protection);
    }

    static inline DWORD thread_ = 0; // whose allocations fail; a thread_local would itself allocate
    static inline int left_ = 0;
    static inline size_t smallest_ = 0;
    static inline bool hasFailed_ = false;

    ImportPatch patch_;
};

} // namespace vxut::test
