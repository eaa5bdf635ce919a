// Lets the allocations of the calling thread fail.
#pragma once

#include "tests/support/failure_counter.h"
#include "tests/support/import_table.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace vxut::test {

// While it lives, an allocation of the test program on this thread fails, and with andAllLater those that
// follow. One object at a time.
class FailingAllocations {
public:
    // successes: the allocations before the one that fails.
    explicit FailingAllocations(unsigned successes, bool andAllLater = true)
        : patch_(GetModuleHandleW(nullptr)) {
        patch_.Replace("malloc", Malloc);
        patch_.Replace("VirtualAlloc", Allocate);
        PrimeExceptions();
        counter.Arm(successes + 1, andAllLater);
    }
    ~FailingAllocations() { Disarm(); }
    FailingAllocations(const FailingAllocations&) = delete;
    FailingAllocations& operator=(const FailingAllocations&) = delete;

    // Lets everything succeed again. Returns whether an allocation failed.
    bool Disarm() {
        counter.Disarm();
        patch_.Restore();
        return counter.HasStruck();
    }

private:
    // The first exception for which there is no memory makes the run-time library allocate the lock of its
    // reserve, so only its own allocation fails.
    static void PrimeExceptions() {
        smallest = kExceptionBytes;
        counter.Arm(1, true);
        try {
            throw std::bad_alloc();
        } catch (const std::bad_alloc&) {
            smallest = 0;
        }
    }

    static bool ShallFail(size_t bytes) { return bytes >= smallest && counter.Strikes(); }
    static void* Malloc(size_t bytes) { return ShallFail(bytes) ? nullptr : std::calloc(1, bytes); }
    static void* WINAPI Allocate(void* address, SIZE_T bytes, DWORD type, DWORD protection) {
        if (ShallFail(bytes)) return nullptr;
        return VirtualAllocEx(GetCurrentProcess(), address, bytes, type, protection);
    }

    static constexpr size_t kExceptionBytes = 128; // no exception takes fewer
    static inline FailureCounter counter;
    static inline size_t smallest = 0;

    ImportPatch patch_;
};

} // namespace vxut::test
