// Builds a tree in the order in which a file is read.
#pragma once

#include "profile/item_list.h"
#include "profile/item_pool.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace vxut {

// A list joins its parent when it is closed, with its contents. Lists that are still open at the end of the
// builder's life are dropped with all in them: close them all before. Opening a list and adding an item throw
// std::bad_alloc; closing takes no memory.
class clsListBuilder {
public:
    static constexpr size_t kMaxBatch = clsItemPool::kMaxBatch;

    // The target must live longer than the builder.
    explicit clsListBuilder(clsItemList& target) noexcept : target_(target), current_(&target) {}
    ~clsListBuilder();
    clsListBuilder(const clsListBuilder&) = delete;
    clsListBuilder& operator=(const clsListBuilder&) = delete;

    void OpenList(std::wstring_view name);
    // Returns false if no list is open.
    bool CloseList() noexcept;
    void CloseAll() noexcept;
    clsItem& AddItem(std::wstring_view name, std::wstring_view value) {
        return current_->AppendItem(name, value);
    }
    // Adds up to kMaxBatch items, or none if it throws; faster than one after the other.
    void AddItems(std::span<const scItemTexts> texts) { current_->AppendItems(texts); }

private:
    // The entry of the open list, which leaves the builder: its parent is the current list now.
    clsAutoGiveItem DetachCurrent() noexcept;

    clsItemList& target_;
    clsItemList* current_; // the parents of an open list are the other open ones
};

} // namespace vxut
