// What the system tells about the blocks of its heaps.
#pragma once

#include <windows.h>

namespace vxut {

// Whether any pointer leads to a live block of a heap. True of all where the system cannot tell. Flags: of
// HeapValidate.
bool IsHeapBlock(HANDLE heap, DWORD flags, const void* block);

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
