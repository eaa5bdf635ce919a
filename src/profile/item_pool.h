// The pool of profile items: blocks of slots, shared by all profiles of the process.
#pragma once

#include "base/critical_section.h"
#include "profile/item.h"

#include <cstdint>
#include <memory>

namespace vxut {

struct clsItemBlock {
    static constexpr uint32_t kSlots = 50;
    static constexpr uint64_t kAllFree = (uint64_t{1} << kSlots) - 1;

    clsItemBlock() noexcept;

    clsItem slots[kSlots];
    uint64_t freeMask = kAllFree; // bit n: slot n is free
    uint32_t nextHint = 0;        // the slot to try first
};

struct scItemPoolCounts {
    uint64_t blocks = 0;
    uint64_t hits = 0;  // the hinted slot was free
    uint64_t scans = 0; // the mask was searched
};

// Hands out slots under one lock. Slots come from the current block only; an older block lives on until its
// last item is given back.
class clsItemPool {
public:
    clsItemPool() = default;
    clsItemPool(const clsItemPool&) = delete;
    clsItemPool& operator=(const clsItemPool&) = delete;

    // Throws when memory is short.
    clsItem* Take();
    void Give(clsItem* item) noexcept;

    scItemPoolCounts Counts();
    // Frees the current block if nothing lives in it. Blocks with items stay: their owners may still come.
    void ShutDown() noexcept;

private:
    clsCriticalSection lock_{4000};
    clsItemBlock* current_ = nullptr;
    scItemPoolCounts counts_;
};

// The process's pool, which the unload of the library shuts down.
clsItemPool& ItemPool() noexcept;

struct clsItemGiver {
    void operator()(clsItem* item) const noexcept { ItemPool().Give(item); }
};

// Owns an item that no list holds yet.
using clsAutoGiveItem = std::unique_ptr<clsItem, clsItemGiver>;

} // namespace vxut
