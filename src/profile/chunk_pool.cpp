#include "profile/chunk_pool.h"

#include "base/owners.h"

#include <windows.h>

#include <bit>
#include <new>

namespace vxut {
namespace {

constexpr uint32_t kAllChunks = (1u << clsChunkPool::kRegionChunks) - 1;
constexpr int kMostlyFree = clsChunkPool::kRegionChunks / 2;

} // namespace

// A chunk is a bit of the masks: chunk 0 is the lowest.
struct clsChunkPool::scRegion {
    scRegion* next;
    scRegion* previous;
    std::byte* base;
    uint32_t warm = 0; // free, with memory
    uint32_t cold = 0; // free, without

    bool HasFree() const noexcept { return (warm | cold) != 0; }
    std::byte* At(uint32_t chunk) const noexcept { return base + chunk * kChunkBytes; }
};

clsChunkPool::scChunk clsChunkPool::Take() noexcept {
    scRegion* const region = open_ ? open_ : AddRegion();
    if (!region) return {};
    // Regions are made with all their members.
    // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult)
    const bool isWarm = region->warm != 0;
    uint32_t& free = isWarm ? region->warm : region->cold;
    const auto chunk = static_cast<uint32_t>(std::countr_zero(free));
    void* memory = region->At(chunk);
    if (!isWarm) memory = VirtualAlloc(memory, kChunkBytes, MEM_COMMIT, PAGE_READWRITE);
    if (!memory) return {};
    free &= free - 1;
    if (isWarm) --warm_;
    if (!region->HasFree()) Unlink(region);
    return {memory, region};
}

void clsChunkPool::Give(const scChunk& chunk) noexcept {
    scRegion& region = *chunk.region;
    if (!region.HasFree()) Link(&region);
    const auto offset = static_cast<size_t>(static_cast<std::byte*>(chunk.memory) - region.base);
    region.warm |= 1u << (offset / kChunkBytes);
    if (++warm_ <= kKeptChunks) return;
    if ((region.warm | region.cold) == kAllChunks)
        ReleaseRegion(&region);
    else if (std::popcount(region.warm) >= kMostlyFree)
        Decommit(region);
}

void clsChunkPool::ShutDown() noexcept {
    for (scRegion* region = open_; region;) {
        scRegion* const next = region->next;
        if ((region->warm | region->cold) == kAllChunks) ReleaseRegion(region);
        region = next;
    }
}

clsChunkPool::scRegion* clsChunkPool::AddRegion() noexcept {
    void* const base = VirtualAlloc(nullptr, kRegionChunks * kChunkBytes, MEM_RESERVE, PAGE_READWRITE);
    if (!base) return nullptr;
    auto* const region =
        new (std::nothrow) scRegion{nullptr, nullptr, static_cast<std::byte*>(base), 0, kAllChunks};
    if (region)
        Link(region);
    else
        VirtualFree(base, 0, MEM_RELEASE);
    return region;
}

void clsChunkPool::ReleaseRegion(scRegion* region) noexcept {
    warm_ -= static_cast<uint32_t>(std::popcount(region->warm));
    Unlink(region);
    VirtualFree(region->base, 0, MEM_RELEASE);
    clsGenericAutoDelete<scRegion>(region).reset();
}

// The region lives on for the sake of few chunks; the others need not hold memory meanwhile.
void clsChunkPool::Decommit(scRegion& region) noexcept {
    for (uint32_t left = region.warm; left != 0;) {
        const auto first = static_cast<uint32_t>(std::countr_zero(left));
        const auto count = static_cast<uint32_t>(std::countr_one(left >> first));
        const uint32_t run = ((1u << count) - 1) << first;
        left &= ~run;
        if (!VirtualFree(region.At(first), count * kChunkBytes, MEM_DECOMMIT)) continue;
        region.warm &= ~run;
        region.cold |= run;
        warm_ -= count;
    }
}

void clsChunkPool::Link(scRegion* region) noexcept {
    region->previous = nullptr;
    region->next = open_;
    if (open_) open_->previous = region;
    open_ = region;
}

void clsChunkPool::Unlink(scRegion* region) noexcept {
    if (region->next) region->next->previous = region->previous;
    (region->previous ? region->previous->next : open_) = region->next;
}

} // namespace vxut
