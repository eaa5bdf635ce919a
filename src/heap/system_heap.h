// The system's heaps and their blocks. Overruns of hosts may have changed the system's own records, so every
// call below survives a fault inside the system, and reports it as a failure.
#pragma once

#include "base/owners.h"

#include <windows.h>

#include <cstdint>

namespace vxut {

struct HeapTraits {
    using Type = HANDLE;
    static Type Null() noexcept { return nullptr; }
    static void Close(Type heap) noexcept;
};

using clsAutoDestroyHeap = clsAutoClose<HeapTraits>;

// The functions of the system of like names, with their flags. A caller that passes HEAP_NO_SERIALIZE keeps
// other threads from the heap.

// Whether any pointer leads to a live block. True for all where the system cannot tell.
bool IsHeapBlock(HANDLE heap, DWORD flags, const void* block);
bool FreeHeapBlock(HANDLE heap, DWORD flags, void* block);
// The bytes of a live block, or -1.
int64_t HeapBlockSize(HANDLE heap, DWORD flags, const void* block);
// False if there is nothing to return to the system either.
bool CompactHeap(HANDLE heap, DWORD flags);

// A walk over the blocks of a heap, which it locks for its life. It ends early where the heap's own records
// lead nowhere.
//     for (clsHeapWalk walk(heap); walk.Next();) walk.Data();
class clsHeapWalk {
public:
    // Without it a walk ends at once.
    static bool IsAvailable();

    explicit clsHeapWalk(HANDLE heap);
    ~clsHeapWalk();
    clsHeapWalk(const clsHeapWalk&) = delete;
    clsHeapWalk& operator=(const clsHeapWalk&) = delete;

    bool Next();
    void* Data() const noexcept { return entry_.lpData; }
    DWORD Size() const noexcept { return entry_.cbData; }
    bool IsBusy() const noexcept { return (entry_.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0; }

private:
    HANDLE heap_;
    bool isLocked_;
    PROCESS_HEAP_ENTRY entry_ = {};
};

} // namespace vxut
