#include "profile/small_blocks.h"

#include <windows.h>

#include <new>
#include <utility>

namespace vxut {
namespace {

// The granularity of VirtualAlloc, so that every slab is aligned to its size and a block leads to its slab.
constexpr size_t kSlabBytes = size_t{64} * 1024;

struct FreeBlock {
    FreeBlock* next;
};

} // namespace

struct clsSmallBlocks::scSlab {
    scSlab* next;
    scSlab* previous;
    FreeBlock* freed; // blocks that were in use before
    uint32_t sizeClass;
    uint32_t used;  // blocks in use
    uint32_t fresh; // offset of the part that was never in use; its pages cost nothing yet

    static scSlab* Of(void* block) noexcept {
        return reinterpret_cast<scSlab*>(reinterpret_cast<uintptr_t>(block) & ~(kSlabBytes - 1));
    }

    bool HasRoom() const noexcept { return freed || fresh + sizeClass * kGrain <= kSlabBytes; }

    void* Take() noexcept {
        ++used;
        if (freed) return std::exchange(freed, freed->next);
        std::byte* const block = reinterpret_cast<std::byte*>(this) + fresh;
        fresh += static_cast<uint32_t>(sizeClass * kGrain);
        return block;
    }

    void Give(void* block) noexcept {
        --used;
        freed = new (block) FreeBlock{freed};
    }
};

void* clsSmallBlocks::Take(size_t bytes) noexcept {
    if (bytes > kMaxBytes) return ::operator new(bytes, std::nothrow);
    const size_t sizeClass = ClassOf(bytes);
    scSlab* const slab = open_[sizeClass] ? open_[sizeClass] : AddSlab(sizeClass);
    if (!slab) return nullptr;
    void* const block = slab->Take();
    if (!slab->HasRoom()) Unlink(slab);
    return block;
}

void clsSmallBlocks::Give(void* block, size_t bytes) noexcept {
    if (bytes > kMaxBytes) return ::operator delete(block);
    scSlab* const slab = scSlab::Of(block);
    if (!slab->HasRoom()) Link(slab);
    slab->Give(block);
    // One slab of a size stays, or taking and freeing a single block would ask the system each time.
    const bool isOnly = !slab->next && !slab->previous;
    if (slab->used == 0 && !isOnly) FreeSlab(slab);
}

void clsSmallBlocks::ShutDown() noexcept {
    for (scSlab* slab : open_) {
        while (slab) {
            scSlab* const next = slab->next;
            if (slab->used == 0) FreeSlab(slab);
            slab = next;
        }
    }
}

clsSmallBlocks::scSlab* clsSmallBlocks::AddSlab(size_t sizeClass) noexcept {
    void* const pages = VirtualAlloc(nullptr, kSlabBytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    if (!pages) return nullptr;
    scSlab* const slab =
        new (pages) scSlab{nullptr, nullptr, nullptr, static_cast<uint32_t>(sizeClass), 0, sizeof(scSlab)};
    Link(slab);
    ++slabs_;
    return slab;
}

void clsSmallBlocks::FreeSlab(scSlab* slab) noexcept {
    Unlink(slab);
    VirtualFree(slab, 0, MEM_RELEASE);
    --slabs_;
}

void clsSmallBlocks::Link(scSlab* slab) noexcept {
    scSlab*& first = open_[slab->sizeClass];
    slab->previous = nullptr;
    slab->next = first;
    if (first) first->previous = slab;
    first = slab;
}

void clsSmallBlocks::Unlink(scSlab* slab) noexcept {
    if (slab->next) slab->next->previous = slab->previous;
    (slab->previous ? slab->previous->next : open_[slab->sizeClass]) = slab->next;
    slab->next = slab->previous = nullptr;
}

} // namespace vxut
