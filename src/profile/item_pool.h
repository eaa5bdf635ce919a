// The pool of profile items: blocks of slots, shared by all profiles of the process.
#pragma once

#include "base/critical_section.h"
#include "profile/item.h"
#include "profile/small_blocks.h"

#include <cstddef>
#include <cstdint>
#include <span>
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
    static constexpr size_t kMaxBatch = 64; // items for which the lock is held at most

    clsItemPool() = default;
    clsItemPool(const clsItemPool&) = delete;
    clsItemPool& operator=(const clsItemPool&) = delete;

    // An item of no list, with copies of the texts. Throws std::bad_alloc, and has then taken nothing.
    clsAutoGiveItem Take(std::wstring_view name, std::wstring_view value);
    // Frees an item with its texts and all below it.
    void Give(clsItem* item) noexcept { GiveMany({&item, 1}); }
    // The same for up to kMaxBatch items, for which the lock is entered once. items has the size of texts.
    void TakeMany(std::span<const scItemTexts> texts, clsItem** items);
    void GiveMany(std::span<clsItem* const> items) noexcept;

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
    // An item with memory for its texts. Null if there is no memory.
    clsItem* TakeRaw(const scItemTexts& texts) noexcept;
    void GiveRaw(clsItem* item) noexcept;
    clsItem* TakeSlot() noexcept;
    void GiveSlot(clsItem* item) noexcept;
    void DestroyBlock(clsItemBlock* block) noexcept;
    clsItemText::scBlock* MakeText(size_t length) noexcept;
    void FreeText(clsItemText::scBlock* text) noexcept;

    clsCriticalSection lock_{4000};
    clsItemBlock* current_ = nullptr;
    clsSmallBlocks small_{sizeof(clsItemBlock)};
    scItemPoolCounts counts_;
};

// The process's pool, which the unload of the library shuts down.
clsItemPool& ItemPool() noexcept;

} // namespace vxut
