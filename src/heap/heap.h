// A heap of a job: a private heap of the system that counts its objects and, as a debug heap, surrounds each
// with a header and a fence. Callers hold JobLock().
#pragma once

#include "heap/heap_exception.h"
#include "heap/stack_snapshot.h"
#include "heap/system_heap.h"

#include <cstdint>
#include <memory>

namespace vxut {

struct clsModuleNode;
struct scDebugHeader;

// What a host asks of an allocation.
struct scObjectRequest {
    int32_t size;
    uint32_t flags;
    uint32_t userTag;
};

// One heap. Hosts hold its address as their handle.
struct clsHeapNode {
    static constexpr size_t kNameUnits = 33; // the terminator included; longer names are cut
    static constexpr uint32_t kHandleMagic = 0x70616548;
    static constexpr uint32_t kSkippedCallers = 1; // of the stacks of heaps and objects

    clsModuleNode* owner = nullptr;
    wchar_t name[kNameUnits] = {};
    uint32_t flags = 0;
    uint32_t createOptions = 0;                      // of HeapCreate
    std::unique_ptr<clsStackSnapshot> stackSnapshot; // of debug heaps: who created it
    clsAutoDestroyHeap heap;
    int32_t objectCount = 0; // alive, and failed allocations
    int32_t bytes = 0;       // of debug objects alive
    int32_t total = 0;       // allocations ever
    int32_t maximum = 0;     // the largest objectCount so far
    clsHeapNode* next = nullptr;
    clsHeapNode* previous = nullptr;
    uint32_t handleMagic = kHandleMagic; // tells a live record from other memory

    clsHeapNode() = default;
    ~clsHeapNode();

    // Whether any pointer leads to a live record.
    static bool IsHeap(const clsHeapNode* node) { return node && (node == lastUsed_ || FindHeap(node)); }

    // Makes the system's heap. False when memory is short.
    bool Create(clsModuleNode* job, const wchar_t* heapName, uint32_t heapFlags);

    // Null on failure, with an exception if the heap is one that raises them.
    void* AllocObject(const scObjectRequest& request, clsHeapException& exception);
    int32_t FreeObject(void* object);
    // The bytes of an object, or a result code.
    int32_t SizeObject(const void* object) const;

    int32_t Validate(const void* object) const;
    int32_t ShrinkHeap() const;
    // The size of the busy block that a walk sees last; the bytes counter where there is no walk.
    int32_t LastBlockSize() const;
    bool IsDebug() const noexcept;

    // Reports the heap and its debug objects.
    void WriteListing() const;
    // Reports what there is to say of a heap that is about to go.
    void WriteFarewell() const;

private:
    // The system need not lock its heap: JobLock() is held. It must not either, since a fault in a wrecked
    // heap would leave its lock held.
    static constexpr DWORD kSystemLock = HEAP_NO_SERIALIZE;
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
    // Of a block of this heap, else -1.
    int64_t BlockSize(const void* block) const;

    // What is wrong with the object of a call.
    struct Fault {
        const wchar_t* text; // with a place for the number, if there is one
        uint32_t number = 0;
        const scDebugHeader* dumped = nullptr;
    };
    // Reports the fault: UTIL_ERR_OBJECT.
    int32_t Refuse(const wchar_t* method, const void* object, const Fault& fault) const;

    // Calls visit with each debug object, until it gives false.
    template <class Visitor>
    void VisitDebugObjects(Visitor&& visit) const;
    // Reports the first debug object that is damaged.
    void TestObjects() const;

    // Found good before, and not to be looked at again.
    static inline const clsHeapNode* lastUsed_ = nullptr;
};

} // namespace vxut
