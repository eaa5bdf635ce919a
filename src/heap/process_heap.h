// The allocator of the records of jobs and heaps, on the default heap of the process.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace vxut {

// Callers hold JobLock().
class clsProcessHeap {
public:
    // Returns null if memory is short. Free the block with Free(), which accepts null.
    static void* Allocate(size_t bytes) noexcept;
    static void Free(void* memory) noexcept;
};

template <class T>
struct scProcessHeapDelete {
    void operator()(T* object) const noexcept {
        object->~T();
        clsProcessHeap::Free(object);
    }
};

// Owns an object in the process heap.
template <class T>
using clsProcessHeapPtr = std::unique_ptr<T, scProcessHeapDelete<T>>;

// Returns null if memory is short.
template <class T>
clsProcessHeapPtr<T> MakeInProcessHeap() noexcept {
    void* memory = clsProcessHeap::Allocate(sizeof(T));
    return clsProcessHeapPtr<T>(memory ? new (memory) T() : nullptr);
}

} // namespace vxut
