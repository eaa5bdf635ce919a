// Heaps on systems that lack a heap function, or have one that goes astray.
#include "frame/system_libraries.h"
#include "tests/child/tasks.h"
#include "util/heap.h"

#include <cstdio>
#include <cstring>

namespace vxut::test {
namespace {

BOOL WINAPI WalkOnTheSpot(HANDLE, PROCESS_HEAP_ENTRY* entry) {
    entry->lpData = GetProcessHeap();
    entry->cbData = 100;
    entry->wFlags = PROCESS_HEAP_ENTRY_BUSY;
    return TRUE;
}
BOOL WINAPI WalkAstray(HANDLE, PROCESS_HEAP_ENTRY*) {
    RaiseException(STATUS_ACCESS_VIOLATION, 0, 0, nullptr);
    return FALSE;
}
SIZE_T WINAPI CompactWell(HANDLE, DWORD) { return 4096; }
SIZE_T WINAPI CompactBadly(HANDLE, DWORD) { return 0; }

template <class Function>
FARPROC Address(Function* function) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}

// What the kernel has under a name; other names are left to it.
const char* changedName = "Heap";
FARPROC changedFunction = nullptr;
FARPROC WINAPI Resolve(HMODULE library, LPCSTR name) {
    return std::strncmp(name, changedName, std::strlen(changedName)) == 0 ? changedFunction
                                                                          : GetProcAddress(library, name);
}

int RunHeap(const char* name, FARPROC function) {
    changedName = name;
    changedFunction = function;
    Kernel32().SetResolver(Resolve);
    const HUTILJOB job = UtilJobOpen(L"JOB", 0);
    const HUTILHEAP heap = UtilHeapCreate(job, L"HEAP", UTIL_HEAP_DEBUG);
    void* const object = UtilHeapObjectAlloc(heap, 10, 0);
    std::printf("size %d ", static_cast<int>(UtilHeapSize(heap)));
    std::printf("objects %d ", static_cast<int>(UtilHeapSizeObjects(heap)));
    std::printf("validate %d ", static_cast<int>(UtilHeapValidate(heap, object)));
    std::printf("shrink %d ", static_cast<int>(UtilHeapShrink(heap)));
    std::printf("free %d ", static_cast<int>(UtilHeapObjectFree(heap, object)));
    std::printf("delete %d", static_cast<int>(UtilHeapDelete(heap)));
    return UtilJobClose(job);
}

const AddChildTask absent("heap-functions-absent", [] { return RunHeap("Heap", nullptr); });
const AddChildTask onTheSpot("heap-walk-on-the-spot",
                             [] { return RunHeap("HeapWalk", Address(WalkOnTheSpot)); });
const AddChildTask astray("heap-walk-astray", [] { return RunHeap("HeapWalk", Address(WalkAstray)); });
const AddChildTask good("heap-compact", [] { return RunHeap("HeapCompact", Address(CompactWell)); });
const AddChildTask bad("heap-compact-fails", [] { return RunHeap("HeapCompact", Address(CompactBadly)); });

} // namespace
} // namespace vxut::test
