// A heap of a job: a private heap of the system that counts its objects. A debug heap also surrounds each
// object with a header and a fence.
//
// Threads: callers of all functions hold JobLock(). Ownership: the job owns its heaps, and a heap the blocks
// of its objects; the call stacks of debug objects lie in the general allocator, and those of objects that
// are left when their heap ends are not freed.
#pragma once

#include "heap/heap_exception.h"
#include "heap/stack_snapshot.h"
#include "heap/system_heap.h"
#include "util/heap.h"

#include <cstdint>
#include <memory>

namespace vxut {

struct clsModuleNode;
struct scDebugHeader;

// The arguments of an allocation.
struct scObjectRequest {
    int32_t size;
    uint32_t flags;
    uint32_t userTag;
};

// One heap. Its address is the handle that hosts hold. Objects that hosts pass may be pointers to anything:
// they are accessed through a shield unless they have proved to be blocks of this heap.
struct clsHeapNode {
    static constexpr size_t kNameUnits = 33; // the terminator included; longer names are cut
    static constexpr uint32_t kHandleMagic = 0x70616548;
    static constexpr uint32_t kSkippedCallers = 1; // frames left out of the stacks of heaps and objects

    clsModuleNode* owner = nullptr;
    wchar_t name[kNameUnits] = {};
    uint32_t flags = 0;
    uint32_t createOptions = 0;                      // passed to HeapCreate()
    std::unique_ptr<clsStackSnapshot> stackSnapshot; // debug heaps only: the stack of the creation
    clsAutoDestroyHeap heap;
    int32_t objectCount = 0; // objects alive, plus allocations that failed
    int32_t bytes = 0;       // sizes of the debug objects alive
    int32_t total = 0;       // allocations so far, failed ones included
    int32_t maximum = 0;     // the largest objectCount so far
    clsHeapNode* next = nullptr;
    clsHeapNode* previous = nullptr;
    uint32_t handleMagic = kHandleMagic; // marks a live record; cleared at its end

    clsHeapNode() = default;
    ~clsHeapNode();

    // Returns whether a pointer, which may lead anywhere, is a live record.
    static bool IsHeap(const clsHeapNode* node) { return node && (node == lastUsed_ || FindHeap(node)); }

    // Creates the system's heap. The name lies in memory of the library, or is null. Returns false if memory
    // is short.
    bool Create(clsModuleNode* job, const wchar_t* heapName, uint32_t heapFlags);

    // Returns null on failure, and then stores the exception that the system has raised if the heap was
    // created with UTIL_HEAP_RAISE.
    void* AllocObject(const scObjectRequest& request, clsHeapException& exception);
    // Returns UTIL_OK, or UTIL_ERR_OBJECT for a damaged object or a pointer to anything else.
    int32_t FreeObject(void* object);
    // Returns the size of an object in bytes, or UTIL_ERR_OBJECT.
    int32_t SizeObject(const void* object) const;

    // Returns UTIL_ERR_CORRUPT if the object, unless null, is no block of the heap. Tests all objects of a
    // debug heap as well, but only reports what it finds.
    int32_t Validate(const void* object) const;
    // Returns UTIL_ERR_HANDLE if the system has nothing to release.
    int32_t ShrinkHeap() const;
    // Returns the size of the last busy block of a walk, or the bytes counter if the system has no walk.
    int32_t LastBlockSize() const;
    bool IsDebug() const noexcept { return (flags & UTIL_HEAP_DEBUG) != 0; }

    // Reports the heap and its debug objects.
    void WriteListing() const;
    // Reports damage, use and leaks of a heap that is about to be destroyed.
    void WriteFarewell() const;

private:
    // Keeps the system from locking its heap. JobLock() serialises the calls already, and a fault inside a
    // damaged heap would leave the system's lock held.
    static constexpr DWORD kSystemFlags = HEAP_NO_SERIALIZE;
    static bool FindHeap(const clsHeapNode* node);

    void* AllocObjectD(const scObjectRequest& request, clsHeapException& exception);
    void* AllocObjectND(const scObjectRequest& request, clsHeapException& exception);
    void* AllocBlock(DWORD systemFlags, size_t size, clsHeapException& exception) const;
    void CountAllocation() noexcept;

    int32_t FreeObjectD(void* object);
    int32_t FreeObjectND(void* object);
    void FillFreed(scDebugHeader* block, int32_t size) const;
    bool FreeBlock(void* block) const;
    bool IsBlock(const void* block) const;
    // Returns the size of a block of this heap, or -1 for any other pointer.
    int64_t BlockSize(const void* block) const;

    // Why the object of a call is refused.
    struct Fault {
        const wchar_t* text; // may format the number
        uint32_t number = 0;
        const scDebugHeader* dumped = nullptr;
    };
    // Reports the fault and returns UTIL_ERR_OBJECT.
    int32_t Refuse(const wchar_t* method, const void* object, const Fault& fault) const;

    // Calls visit with each debug object until it returns false.
    template <class Visitor>
    void VisitDebugObjects(Visitor&& visit) const;
    // Reports the first damaged debug object.
    void TestObjects() const;

    // The record that IsHeap() has last found good: most calls of a host are on the heap of the call before.
    static inline const clsHeapNode* lastUsed_ = nullptr;
};

} // namespace vxut
