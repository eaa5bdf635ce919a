#include "heap/system_heap.h"

#include "base/system_libraries.h"

namespace vxut {
namespace {

// An overrun may have changed the system's own records, on which its walk can fault. Not inlined: a caller
// has the C++ run-time's handler instead of this one.
[[gnu::noinline]] bool StepShielded(HANDLE heap, PROCESS_HEAP_ENTRY& entry) {
    __try {
        return Kernel32().HeapWalk(heap, &entry) != FALSE;
    } __except (EXCEPTION_EXECUTE_HANDLER) {
        return false;
    }
}

} // namespace

bool IsHeapBlock(HANDLE heap, DWORD flags, const void* block) {
    auto& validate = Kernel32().HeapValidate;
    return !validate.IsAvailable() || validate(heap, flags, block);
}

bool clsHeapWalk::IsAvailable() { return Kernel32().HeapWalk.IsAvailable(); }

clsHeapWalk::clsHeapWalk(HANDLE heap) : heap_(heap), isLocked_(HeapLock(heap) != FALSE) {}

clsHeapWalk::~clsHeapWalk() {
    if (isLocked_) HeapUnlock(heap_);
}

// A block whose length was overwritten with zeros is its own successor.
bool clsHeapWalk::Next() {
    const void* const last = entry_.lpData;
    return IsAvailable() && StepShielded(heap_, entry_) && entry_.lpData != last;
}

} // namespace vxut
