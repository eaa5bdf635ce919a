#include "containers/container_base.h"

#include <new>

namespace vxut {

void* WCGeneralMemory::Allocate(size_t bytes) noexcept { return ::operator new(bytes, std::nothrow); }

void WCGeneralMemory::Free(void* memory, size_t) noexcept { ::operator delete(memory); }

void* WCAllocatorPair::Allocate(size_t bytes) const noexcept {
    return allocate ? allocate(bytes) : WCGeneralMemory::Allocate(bytes);
}

void WCAllocatorPair::Free(void* memory, size_t bytes) const noexcept {
    if (deallocate)
        deallocate(memory, bytes);
    else
        WCGeneralMemory::Free(memory, bytes);
}

} // namespace vxut
