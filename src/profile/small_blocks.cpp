#include "profile/small_blocks.h"

#include <new>
#include <utility>

namespace vxut {
namespace {

// A chunk is aligned to its size, so that a block leads to its slab.
constexpr size_t kSlabBytes = clsChunkPool::kChunkBytes;

struct FreeBlock {
    FreeBlock* next;
};

} // namespace

struct clsSmallBlocks::scSlab {
    scSlab* next;
    scSlab* previous;
    clsChunkPool::scRegion* region;
    FreeBlock* freed; // blocks that were in use before
    uint32_t sizeClass;
    uint32_t blockBytes;
    uint32_t used;  // blocks in use
    uint32_t fresh; // offset of the part that was never in use; its pages cost nothing yet

    static scSlab* Of(void* block) noexcept {
        return reinterpret_cast<scSlab*>(reinterpret_cast<uintptr_t>(block) & ~(kSlabBytes - 1));
    }

    bool HasRoom() const noexcept { return freed || fresh + blockBytes <= kSlabBytes; }

    void* Take() noexcept {
        ++used;
        if (freed) return std::exchange(freed, freed->next);
        std::byte* const block = reinterpret_cast<std::byte*>(this) + fresh;
        fresh += blockBytes;
        return block;
    }

    void Give(void* block) noexcept {
        --used;
        freed = new (block) FreeBlock{freed};
    }
};

void* clsSmallBlocks::Take(size_t bytes) noexcept {
    if (!IsInSlabs(bytes)) return ::operator new(bytes, std::nothrow);
    const size_t sizeClass = ClassOf(bytes);
    scSlab* const slab = open_[sizeClass] ? open_[sizeClass] : AddSlab(sizeClass);
    if (!slab) return nullptr;
    void* const block = slab->Take();
    if (!slab->HasRoom()) Unlink(slab);
    return block;
}

void clsSmallBlocks::Give(void* block, size_t bytes) noexcept {
    if (!IsInSlabs(bytes)) return ::operator delete(block);
    scSlab* const slab = scSlab::Of(block);
    if (!slab->HasRoom()) Link(slab);
    slab->Give(block);
    if (slab->used == 0) FreeSlab(slab);
}

clsSmallBlocks::scSlab* clsSmallBlocks::AddSlab(size_t sizeClass) noexcept {
    const clsChunkPool::scChunk chunk = chunks_.Take();
    if (!chunk.memory) return nullptr;
    const size_t blockBytes = sizeClass == kLargeClass ? large_ : sizeClass * kGrain;
    scSlab* const slab = new (chunk.memory) scSlab{nullptr,
                                                   nullptr,
                                                   chunk.region,
                                                   nullptr,
                                                   static_cast<uint32_t>(sizeClass),
                                                   static_cast<uint32_t>(blockBytes),
                                                   0,
                                                   sizeof(scSlab)};
    Link(slab);
    ++slabs_;
    return slab;
}

void clsSmallBlocks::FreeSlab(scSlab* slab) noexcept {
    Unlink(slab);
    chunks_.Give({slab, slab->region});
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
