#include "heap/process_heap.h"

#include <windows.h>

namespace vxut {
namespace {

HANDLE heap = nullptr;
size_t used = 0; // blocks alive; while there are none the next allocation asks for the heap again

} // namespace

void* clsProcessHeap::Allocate(size_t bytes) noexcept {
    if (used == 0) heap = GetProcessHeap();
    void* memory = HeapAlloc(heap, 0, bytes);
    if (memory) ++used;
    return memory;
}

void clsProcessHeap::Free(void* memory) noexcept {
    if (memory == nullptr) return;
    HeapFree(heap, 0, memory);
    --used;
}

} // namespace vxut
