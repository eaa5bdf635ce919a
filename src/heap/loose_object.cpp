#include "heap/loose_object.h"

#include "base/shielded_read.h"
#include "heap/heap_object.h"
#include "heap/system_heap.h"
#include "util/frame.h"
#include "util/heap.h"

#include <cstring>

namespace vxut {
namespace {

constexpr ptrdiff_t kOverhead = sizeof(uint64_t);

void* BlockOf(const void* object) { return AddressAt(object, -kOverhead); }

} // namespace

void* AllocLooseObject(int32_t size, uint32_t flags) {
    const uint64_t bytes = ObjectBytes(size);
    const bool isZeroed = (flags & UTIL_OBJECT_ZERO) != 0;
    void* const block = HeapAlloc(GetProcessHeap(), isZeroed ? HEAP_ZERO_MEMORY : 0, bytes + kOverhead);
    if (block == nullptr) return nullptr;
    std::memcpy(block, &bytes, sizeof bytes);
    void* const object = AddressAt(block, kOverhead);
    if (!isZeroed && (flags & UTIL_OBJECT_FILL)) std::memset(object, kUninitialisedFill, bytes);
    return object;
}

// A block of the process heap that does not begin with its size is somebody else's.
int32_t FreeLooseObject(void* object) {
    void* const block = BlockOf(object);
    const HANDLE heap = GetProcessHeap();
    uint64_t bytes = 0;
    const bool isLoose = ReadShielded(bytes, block) && IsHeapBlock(heap, 0, block) &&
                         HeapBlockSize(heap, 0, block) == static_cast<int64_t>(bytes + kOverhead);
    return isLoose && FreeHeapBlock(heap, 0, block) ? UTIL_OK : UTIL_ERR_OBJECT;
}

int32_t SizeLooseObject(const void* object) {
    uint64_t bytes = 0;
    return ReadShielded(bytes, BlockOf(object)) ? static_cast<int32_t>(bytes) : UTIL_ERR_OBJECT;
}

} // namespace vxut
