// The small allocator of the frame's own records, on the default heap of the process.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace vxut {

// Callers hold JobLock().
class clsProcessHeap {
public:
    // Null when memory is short.
    static void* Allocate(size_t bytes) noexcept;
    static void Free(void* memory) noexcept;
};

template <class T>
struct ProcessHeapDelete {
    void operator()(T* object) const noexcept {
        object->~T();
        clsProcessHeap::Free(object);
    }
};

// Owns an object in the process heap.
template <class T>
using clsProcessHeapPtr = std::unique_ptr<T, ProcessHeapDelete<T>>;

template <class T>
clsProcessHeapPtr<T> MakeInProcessHeap() noexcept {
    void* memory = clsProcessHeap::Allocate(sizeof(T));
    return clsProcessHeapPtr<T>(memory ? new (memory) T() : nullptr);
}

} // namespace vxut
