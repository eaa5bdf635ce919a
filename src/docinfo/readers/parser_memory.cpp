#include "docinfo/readers/parser_memory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace vxut {
namespace {

// From this size on a block has a range of addresses of its own. Buffers begin with more.
constexpr size_t kLargeBytes = 4096;

// Before each block. Keeps the alignment of the allocators.
struct alignas(16) Head {
    size_t bytes;
    bool isLarge;
};

Head* HeadOf(void* block) { return static_cast<Head*>(block) - 1; }

// Makes a range of addresses usable up to bytes behind its head.
bool Commit(void* range, size_t bytes) {
    return VirtualAlloc(range, sizeof(Head) + bytes, MEM_COMMIT, PAGE_READWRITE) != nullptr;
}

Head* MakeLarge(size_t bytes) {
    if (bytes > clsParserMemory::kMostBlockBytes) return nullptr;
    void* const range =
        VirtualAlloc(nullptr, sizeof(Head) + clsParserMemory::kMostBlockBytes, MEM_RESERVE, PAGE_NOACCESS);
    if (!range) return nullptr;
    if (Commit(range, bytes)) return static_cast<Head*>(range);
    VirtualFree(range, 0, MEM_RELEASE);
    return nullptr;
}

} // namespace

HRESULT clsParserMemory::QueryInterface(REFIID id, void** object) {
    if (!object) return E_POINTER;
    if (!IsEqualIID(id, IID_IMalloc)) return clsIUnknownImpl::QueryInterface(id, object);
    *object = static_cast<IMalloc*>(this);
    AddRef();
    return S_OK;
}

void* clsParserMemory::Alloc(SIZE_T bytes) {
    const bool isLarge = bytes >= kLargeBytes;
    Head* const head = isLarge ? MakeLarge(bytes) : static_cast<Head*>(std::malloc(sizeof(Head) + bytes));
    if (!head) return nullptr;
    *head = {bytes, isLarge};
    return head + 1;
}

void* clsParserMemory::Realloc(void* block, SIZE_T bytes) {
    if (!block) return Alloc(bytes);
    Head* const head = HeadOf(block);
    if (head->isLarge) {
        if (bytes > kMostBlockBytes || !Commit(head, bytes)) return nullptr;
        head->bytes = bytes;
        return block;
    }
    void* const larger = Alloc(bytes);
    if (!larger) return nullptr;
    std::memcpy(larger, block, std::min(head->bytes, bytes));
    Free(block);
    return larger;
}

void clsParserMemory::Free(void* block) {
    if (!block) return;
    Head* const head = HeadOf(block);
    if (head->isLarge)
        VirtualFree(head, 0, MEM_RELEASE);
    else
        std::free(head);
}

SIZE_T clsParserMemory::GetSize(void* block) { return block ? HeadOf(block)->bytes : 0; }

} // namespace vxut
