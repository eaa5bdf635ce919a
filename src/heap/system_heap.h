// The system's heaps and their blocks. Overruns of hosts may have changed the system's own records, so every
// call below survives a fault inside the system, and reports it as a failure.
#pragma once

#include "base/owners.h"

#include <windows.h>

#include <cstdint>

namespace vxut {

struct scHeapTraits {
    using Type = HANDLE;
    static Type Null() noexcept { return nullptr; }
    static void Close(Type heap) noexcept;
};

using clsAutoDestroyHeap = clsAutoClose<scHeapTraits>;

// The functions below take the flags of the system's functions. A caller that passes HEAP_NO_SERIALIZE has to
// keep other threads from the heap.

// Returns whether a pointer, which may lead anywhere, is a live block. Always true on a system without
// HeapValidate().
bool IsHeapBlock(HANDLE heap, DWORD flags, const void* block);
// Frees a live block. Returns false on failure.
bool FreeHeapBlock(HANDLE heap, DWORD flags, void* block);
// Returns the size of a live block in bytes, or -1 on failure.
int64_t HeapBlockSize(HANDLE heap, DWORD flags, const void* block);
// Returns false on failure, and if there is nothing to release.
bool CompactHeap(HANDLE heap, DWORD flags);

// A walk over the blocks of a heap, which stays locked for the life of the walk. Ends early in a damaged
// heap.
//     for (clsHeapWalk walk(heap); walk.Next();) walk.Data();
class clsHeapWalk {
public:
    // Returns whether the system has walks. A walk has no block if not.
    static bool IsAvailable();

    explicit clsHeapWalk(HANDLE heap);
    ~clsHeapWalk();
    clsHeapWalk(const clsHeapWalk&) = delete;
    clsHeapWalk& operator=(const clsHeapWalk&) = delete;

    // Steps to the next block. Returns false at the end, after which there is no block to ask about.
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
