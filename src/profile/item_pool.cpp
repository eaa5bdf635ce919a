#include "profile/item_pool.h"

#include "base/unload_steps.h"
#include "profile/item_list.h"

#include <bit>
#include <memory>
#include <new>
#include <utility>

namespace vxut {
clsItemBlock::clsItemBlock() noexcept {
    for (clsItem& slot : slots) slot.block_ = this;
}

clsAutoGiveItem clsItemPool::Take(std::wstring_view name, std::wstring_view value) {
    const scItemTexts texts{name, value};
    clsItem* item = nullptr;
    TakeMany({&texts, 1}, &item);
    return clsAutoGiveItem(item);
}

void clsItemPool::TakeMany(std::span<const scItemTexts> texts, clsItem** items) {
    const size_t count = texts.size();
    {
        const clsCriticalSectionScope scope(lock_);
        for (size_t i = 0; i < count; ++i) {
            items[i] = TakeRaw(texts[i]);
            if (items[i]) continue;
            while (i > 0) GiveRaw(items[--i]);
            throw std::bad_alloc();
        }
    }
    for (size_t i = 0; i < count; ++i) {
        items[i]->name_.Put(texts[i].name);
        items[i]->value_.Put(texts[i].value);
    }
}

void clsItemPool::GiveMany(std::span<clsItem* const> items) noexcept {
    for (clsItem* const item : items) {
        item->sublist_.reset(); // may hold a whole tree, which is not freed under the lock
        __builtin_prefetch(item->name_.block_);
        __builtin_prefetch(item->value_.block_);
    }
    const clsCriticalSectionScope scope(lock_);
    for (clsItem* const item : items) GiveRaw(item);
}

clsItem* clsItemPool::TakeRaw(const scItemTexts& texts) noexcept {
    clsItem* const item = TakeSlot();
    if (!item) return nullptr;
    if (!texts.name.empty()) item->name_.block_ = MakeText(texts.name.size());
    if (!texts.value.empty()) item->value_.block_ = MakeText(texts.value.size());
    const bool isWhole =
        (texts.name.empty() || item->name_.block_) && (texts.value.empty() || item->value_.block_);
    if (isWhole) return item;
    GiveRaw(item);
    return nullptr;
}

void clsItemPool::GiveRaw(clsItem* item) noexcept {
    item->parent_ = nullptr;
    if (clsItemText::scBlock* const name = std::exchange(item->name_.block_, nullptr)) FreeText(name);
    if (clsItemText::scBlock* const value = std::exchange(item->value_.block_, nullptr)) FreeText(value);
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
    if (current_ && current_->freeMask == clsItemBlock::kAllFree)
        DestroyBlock(std::exchange(current_, nullptr));
    small_.ShutDown();
}

// Null if there is no memory.
clsItem* clsItemPool::TakeSlot() noexcept {
    if (!current_ || current_->freeMask == 0) {
        void* const memory = small_.Take(sizeof(clsItemBlock));
        if (!memory) return nullptr;
        current_ = new (memory) clsItemBlock;
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
}

void clsItemPool::DestroyBlock(clsItemBlock* block) noexcept {
    std::destroy_at(block);
    small_.Give(block, sizeof(clsItemBlock));
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
