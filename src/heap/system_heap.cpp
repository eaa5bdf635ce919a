#include "heap/system_heap.h"

#include "base/shield.h"
#include "base/system_libraries.h"

namespace vxut {

void scHeapTraits::Close(Type heap) noexcept {
    Shielded([=] { HeapDestroy(heap); });
}

bool IsHeapBlock(HANDLE heap, DWORD flags, const void* block) {
    auto& validate = Kernel32().HeapValidate;
    if (!validate.IsAvailable()) return true;
    BOOL isBlock = FALSE;
    return Shielded([&] { isBlock = validate(heap, flags, block); }) && isBlock;
}

// On the path of every free: a shield of its own, without the detour of a closure.
[[gnu::noinline]] bool FreeHeapBlock(HANDLE heap, DWORD flags, void* block) {
    __try {
        return HeapFree(heap, flags, block) != FALSE;
    } __except (IsFault(GetExceptionCode()) ? EXCEPTION_EXECUTE_HANDLER : EXCEPTION_CONTINUE_SEARCH) {
        return false;
    }
}

int64_t HeapBlockSize(HANDLE heap, DWORD flags, const void* block) {
    SIZE_T size = 0;
    return Shielded([&] { size = HeapSize(heap, flags, block); }) ? static_cast<int64_t>(size) : -1;
}

bool CompactHeap(HANDLE heap, DWORD flags) {
    SIZE_T largest = 0;
    return Shielded([&] { largest = Kernel32().HeapCompact(heap, flags); }) && largest != 0;
}

bool clsHeapWalk::IsAvailable() { return Kernel32().HeapWalk.IsAvailable(); }

clsHeapWalk::clsHeapWalk(HANDLE heap) : heap_(heap), isLocked_(HeapLock(heap) != FALSE) {}

clsHeapWalk::~clsHeapWalk() {
    if (isLocked_) HeapUnlock(heap_);
}

// A block whose length was overwritten with zeros is its own successor.
bool clsHeapWalk::Next() {
    const void* const last = entry_.lpData;
    BOOL isThere = FALSE;
    return IsAvailable() && Shielded([&] { isThere = Kernel32().HeapWalk(heap_, &entry_); }) && isThere &&
           entry_.lpData != last;
}

} // namespace vxut
