#include "tests/support/failing_allocation.h"

#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace vxut::test {
namespace {

std::atomic<DWORD> failingThread{0};
size_t allocationsLeft = 0; // touched by the failing thread only

bool MustFail() noexcept {
    if (failingThread != GetCurrentThreadId()) return false;
    if (allocationsLeft-- > 0) return false;
    failingThread = 0;
    return true;
}

} // namespace

FailingAllocation::FailingAllocation(size_t allocationsBefore) noexcept {
    allocationsLeft = allocationsBefore;
    failingThread = GetCurrentThreadId();
}

FailingAllocation::~FailingAllocation() { failingThread = 0; }

bool FailingAllocation::HasFailed() const noexcept { return failingThread == 0; }

} // namespace vxut::test

void* operator new(size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return vxut::test::MustFail() ? nullptr : std::malloc(size ? size : 1);
}

void* operator new(size_t size) {
    void* const memory = operator new(size, std::nothrow);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t /*size*/) noexcept { std::free(memory); }
