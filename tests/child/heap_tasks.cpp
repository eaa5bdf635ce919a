// Heaps on systems that lack a heap function, or have one that goes astray.
#include "frame/system_libraries.h"
#include "tests/child/tasks.h"
#include "util/heap.h"

#include <cstdio>
#include <string_view>

namespace vxut::test {
namespace {

BOOL WINAPI WalkOnTheSpot(HANDLE, PROCESS_HEAP_ENTRY* entry) {
    entry->lpData = GetProcessHeap();
    entry->cbData = 100;
    entry->wFlags = PROCESS_HEAP_ENTRY_BUSY;
    return TRUE;
}
BOOL WINAPI WalkAstray(HANDLE, PROCESS_HEAP_ENTRY*) {
    RaiseException(static_cast<DWORD>(STATUS_ACCESS_VIOLATION), 0, 0, nullptr);
    return TRUE;
}
SIZE_T WINAPI Compact(HANDLE, DWORD) { return 4096; }

// What the kernel has under names that begin so.
std::string_view changedName;
void* changedFunction = nullptr;

FARPROC WINAPI Resolve(HMODULE library, LPCSTR name) {
    return std::string_view(name).starts_with(changedName) ? reinterpret_cast<FARPROC>(changedFunction)
                                                           : GetProcAddress(library, name);
}

template <class Function>
int UseHeap(const char* name, Function* function) {
    changedName = name;
    changedFunction = reinterpret_cast<void*>(function);
    Kernel32().SetResolver(Resolve);
    const HUTILJOB job = UtilJobOpen(L"JOB", 0);
    const HUTILHEAP heap = UtilHeapCreate(job, L"HEAP", UTIL_HEAP_DEBUG);
    void* const object = UtilHeapObjectAlloc(heap, 10, 0);
    std::printf("size %ld objects %ld", long{UtilHeapSize(heap)}, long{UtilHeapSizeObjects(heap)});
    std::printf(" validate %ld shrink %ld", long{UtilHeapValidate(heap, object)}, long{UtilHeapShrink(heap)});
    std::printf(" free %ld", long{UtilHeapObjectFree(heap, object)});
    std::printf(" delete %ld", long{UtilHeapDelete(heap)});
    return UtilJobClose(job);
}

const AddChildTask absent("heap-functions-absent", [] { return UseHeap<void()>("Heap", nullptr); });
const AddChildTask onTheSpot("heap-walk-on-the-spot", [] { return UseHeap("HeapWalk", WalkOnTheSpot); });
const AddChildTask astray("heap-walk-astray", [] { return UseHeap("HeapWalk", WalkAstray); });
const AddChildTask compact("heap-compact", [] { return UseHeap("HeapCompact", Compact); });

} // namespace
} // namespace vxut::test
