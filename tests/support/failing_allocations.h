// Lets the allocations of the calling thread fail.
#pragma once

#include "tests/support/import_table.h"

#include <cstddef>
#include <cstdlib>

namespace vxut::test {

// While it lives, the allocations of the test program on this thread succeed as often as was asked for and
// fail from then on. One at a time.
class FailingAllocations {
public:
    explicit FailingAllocations(int successes) : patch_(GetModuleHandleW(nullptr)) {
        patch_.Replace("malloc", Malloc);
        patch_.Replace("VirtualAlloc", Allocate);
        Arm(successes);
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
    static void Arm(int successes) {
        left_ = successes;
        hasFailed_ = false;
        thread_ = GetCurrentThreadId();
    }

    static bool ShallFail() {
        if (thread_ != GetCurrentThreadId()) return false;
        if (left_ > 0)
            --left_;
        else
            hasFailed_ = true;
        return hasFailed_;
    }

    static void* Malloc(size_t bytes) { return ShallFail() ? nullptr : std::calloc(1, bytes); }
    static void* WINAPI Allocate(void* address, SIZE_T bytes, DWORD type, DWORD protection) {
        if (ShallFail()) return nullptr;
        return VirtualAllocEx(GetCurrentProcess(), address, bytes, type, protection);
    }

    static inline DWORD thread_ = 0; // whose allocations fail; a thread_local would itself allocate
    static inline int left_ = 0;
    static inline bool hasFailed_ = false;

    ImportPatch patch_;
};

} // namespace vxut::test
