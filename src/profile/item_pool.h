// The pool of profile items: blocks of slots, shared by all profiles of the process.
#pragma once

#include "base/critical_section.h"
#include "profile/item.h"
#include "profile/small_blocks.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

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
    uint64_t slabs = 0; // of texts and lists
};

// Allocates items, and memory for their texts and lists. Slots are taken from the current block only; an
// older block lives until its last item is freed. Any thread may call; one lock is held for a few
// instructions in each call.
class clsItemPool {
public:
    clsItemPool() = default;
    clsItemPool(const clsItemPool&) = delete;
    clsItemPool& operator=(const clsItemPool&) = delete;

    // An item of no list, with copies of the texts. Throws std::bad_alloc, and has then taken nothing.
    clsAutoGiveItem Take(std::wstring_view name, std::wstring_view value);
    // Frees an item with its texts and all below it.
    void Give(clsItem* item) noexcept;

    // Memory for a text of this length, not yet set. Throws std::bad_alloc.
    clsItemText::scBlock* TakeText(size_t length);
    void GiveText(clsItemText::scBlock* text) noexcept;

    // Memory for a list. Throws std::bad_alloc.
    void* TakeBlock(size_t bytes);
    void GiveBlock(void* block, size_t bytes) noexcept;

    scItemPoolCounts Counts();
    // Frees the blocks and slabs that hold nothing. Blocks with items stay: their owners may still free them.
    void ShutDown() noexcept;

private:
    clsItem* TakeSlot() noexcept;
    void GiveSlot(clsItem* item) noexcept;
    clsItemText::scBlock* MakeText(size_t length) noexcept;
    void FreeText(clsItemText::scBlock* text) noexcept;

    clsCriticalSection lock_{4000};
    clsItemBlock* current_ = nullptr;
    clsSmallBlocks small_;
    scItemPoolCounts counts_;
};

// The process's pool, which the unload of the library shuts down.
clsItemPool& ItemPool() noexcept;

} // namespace vxut
