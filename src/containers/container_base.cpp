#include "containers/container_base.h"

#include <new>

namespace vxut {

void* WCAllocatorPair::Allocate(size_t bytes) const noexcept {
    return allocate ? allocate(bytes) : ::operator new(bytes, std::nothrow);
}

void WCAllocatorPair::Free(void* memory, size_t bytes) const noexcept {
    if (deallocate)
        deallocate(memory, bytes);
    else
        ::operator delete(memory);
}

} // namespace vxut
