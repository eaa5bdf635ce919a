#include "profile/item_pool.h"

#include "base/unload_steps.h"

#include <bit>

namespace vxut {
namespace {

// Gives a block back to the general allocator.
void DestroyBlock(clsItemBlock* block) noexcept { const clsGenericAutoDelete<clsItemBlock> owner(block); }

} // namespace

clsItemBlock::clsItemBlock() noexcept {
    for (clsItem& slot : slots) slot.SetBlock(this);
}

clsItem* clsItemPool::Take() {
    const clsCriticalSectionScope scope(lock_);
    if (!current_ || current_->freeMask == 0) {
        current_ = std::make_unique<clsItemBlock>().release();
        ++counts_.blocks;
    }
    clsItemBlock& block = *current_;
    uint32_t slot = block.nextHint;
    if (slot < clsItemBlock::kSlots && (block.freeMask >> slot & 1) != 0) {
        ++counts_.hits;
    } else {
        slot = static_cast<uint32_t>(std::countr_zero(block.freeMask));
        ++counts_.scans;
    }
    block.freeMask &= ~(uint64_t{1} << slot);
    block.nextHint = slot + 1;
    return &block.slots[slot];
}

void clsItemPool::Give(clsItem* item) noexcept {
    item->Clear(); // may free a whole tree, so not under the lock
    clsItemBlock* const block = item->Block();
    const auto slot = static_cast<uint32_t>(item - block->slots);

    const clsCriticalSectionScope scope(lock_);
    block->nextHint = slot;
    block->freeMask |= uint64_t{1} << slot;
    if (block->freeMask != clsItemBlock::kAllFree || block == current_) return;
    DestroyBlock(block);
    --counts_.blocks;
}

scItemPoolCounts clsItemPool::Counts() {
    const clsCriticalSectionScope scope(lock_);
    return counts_;
}

void clsItemPool::ShutDown() noexcept {
    const clsCriticalSectionScope scope(lock_);
    if (!current_ || current_->freeMask != clsItemBlock::kAllFree) return;
    DestroyBlock(current_);
    current_ = nullptr;
    --counts_.blocks;
}

clsItemPool& ItemPool() noexcept {
    static clsItemPool pool;
    static const bool isRegistered = [] {
        SetUnloadStep(UnloadStep::kProfileItemPool, [] { pool.ShutDown(); });
        return true;
    }();
    static_cast<void>(isRegistered);
    return pool;
}

} // namespace vxut
