#include "profile/item_pool.h"

#include "base/unload_steps.h"
#include "profile/item_list.h"

#include <bit>
#include <new>
#include <utility>

namespace vxut {
namespace {

// Frees a block to the general allocator.
void DestroyBlock(clsItemBlock* block) noexcept { const clsGenericAutoDelete<clsItemBlock> owner(block); }

} // namespace

clsItemBlock::clsItemBlock() noexcept {
    for (clsItem& slot : slots) slot.block_ = this;
}

clsAutoGiveItem clsItemPool::Take(std::wstring_view name, std::wstring_view value) {
    clsItem* item = nullptr;
    {
        const clsCriticalSectionScope scope(lock_);
        item = TakeSlot();
        if (!item) throw std::bad_alloc();
        if (!name.empty()) item->name_.block_ = MakeText(name.size());
        if (!value.empty()) item->value_.block_ = MakeText(value.size());
    }
    clsAutoGiveItem owner(item);
    const bool isWhole = (name.empty() || item->name_.block_) && (value.empty() || item->value_.block_);
    if (!isWhole) throw std::bad_alloc();
    item->name_.Put(name);
    item->value_.Put(value);
    return owner;
}

void clsItemPool::Give(clsItem* item) noexcept {
    item->sublist_.reset(); // may free a whole tree, so not under the lock
    item->parent_ = nullptr;
    clsItemText::scBlock* const name = std::exchange(item->name_.block_, nullptr);
    clsItemText::scBlock* const value = std::exchange(item->value_.block_, nullptr);

    const clsCriticalSectionScope scope(lock_);
    if (name) FreeText(name);
    if (value) FreeText(value);
    GiveSlot(item);
}

clsItemText::scBlock* clsItemPool::TakeText(size_t length) {
    const clsCriticalSectionScope scope(lock_);
    clsItemText::scBlock* const text = MakeText(length);
    if (!text) throw std::bad_alloc();
    return text;
}

void clsItemPool::GiveText(clsItemText::scBlock* text) noexcept {
    const clsCriticalSectionScope scope(lock_);
    FreeText(text);
}

void* clsItemPool::TakeBlock(size_t bytes) {
    const clsCriticalSectionScope scope(lock_);
    void* const block = small_.Take(bytes);
    if (!block) throw std::bad_alloc();
    return block;
}

void clsItemPool::GiveBlock(void* block, size_t bytes) noexcept {
    const clsCriticalSectionScope scope(lock_);
    small_.Give(block, bytes);
}

scItemPoolCounts clsItemPool::Counts() {
    const clsCriticalSectionScope scope(lock_);
    counts_.slabs = small_.Slabs();
    return counts_;
}

void clsItemPool::ShutDown() noexcept {
    const clsCriticalSectionScope scope(lock_);
    small_.ShutDown();
    if (!current_ || current_->freeMask != clsItemBlock::kAllFree) return;
    DestroyBlock(current_);
    current_ = nullptr;
    --counts_.blocks;
}

// Null if there is no memory.
clsItem* clsItemPool::TakeSlot() noexcept {
    if (!current_ || current_->freeMask == 0) {
        auto* const made = new (std::nothrow) clsItemBlock;
        if (!made) return nullptr;
        current_ = made;
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

void clsItemPool::GiveSlot(clsItem* item) noexcept {
    clsItemBlock* const block = item->block_;
    const auto slot = static_cast<uint32_t>(item - block->slots);
    block->nextHint = slot;
    block->freeMask |= uint64_t{1} << slot;
    if (block->freeMask != clsItemBlock::kAllFree || block == current_) return;
    DestroyBlock(block);
    --counts_.blocks;
}

// Null if there is no memory.
clsItemText::scBlock* clsItemPool::MakeText(size_t length) noexcept {
    const size_t bytes = clsItemText::BytesFor(length);
    void* const memory = small_.Take(bytes);
    if (!memory) return nullptr;
    const size_t grains = (bytes + clsSmallBlocks::kGrain - 1) / clsSmallBlocks::kGrain;
    return new (memory) clsItemText::scBlock{length, bytes > clsSmallBlocks::kMaxBytes ? 0 : grains};
}

void clsItemPool::FreeText(clsItemText::scBlock* text) noexcept {
    small_.Give(text,
                text->grains == 0 ? clsSmallBlocks::kMaxBytes + 1 : text->grains * clsSmallBlocks::kGrain);
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
