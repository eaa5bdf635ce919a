// A list of a profile: its entries in the order in which they were added.
#pragma once

#include "containers/list_links.h"
#include "profile/item.h"
#include "profile/item_text.h"
#include "profile/name_index.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>

namespace vxut {

// The position of a range-based for over the items of a list; null after the last.
class clsItemPosition {
public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = clsItem*;
    using difference_type = std::ptrdiff_t;
    using pointer = clsItem* const*;
    using reference = clsItem*;

    clsItemPosition() noexcept = default;
    clsItemPosition(clsItem* item, const clsItem* last) noexcept : item_(item), last_(last) {}

    clsItem* operator*() const noexcept { return item_; }
    clsItemPosition& operator++() noexcept;
    bool operator==(const clsItemPosition& other) const noexcept { return item_ == other.item_; }

private:
    clsItem* item_ = nullptr;
    const clsItem* last_ = nullptr;
};

// Owns its items and, through them, the whole subtree. A ring of items with its last one; appending takes
// constant time. Names need not be unique. Lookups walk through the list until that has cost as much as an
// index by name, which then serves them; without memory for one they go on walking. A list belongs to one
// thread at a time; lookups alone may run in several.
class clsItemList : public WCIsvSListBase<clsItem> {
public:
    // A root, which no item holds. For the brackets of a name see NewEntry().
    explicit clsItemList(std::wstring_view name);
    ~clsItemList() override;
    clsItemList(const clsItemList&) = delete;
    clsItemList& operator=(const clsItemList&) = delete;

    // Lists that items hold are allocated in the item pool.
    static void* operator new(size_t bytes);
    static void operator delete(void* memory, size_t bytes) noexcept;

    std::wstring_view Name() const noexcept { return owner_ ? owner_->Name() : name_.View(); }
    const wchar_t* NameText() const noexcept { return owner_ ? owner_->NameText() : name_.Text(); }
    // The list item whose sublist this is; null for a root.
    clsItem* Owner() const noexcept { return owner_; }
    clsItemList* Parent() const noexcept { return owner_ ? owner_->Parent() : nullptr; }

    clsItem* First() const noexcept { return Last() ? Last()->next : nullptr; }
    // The entry after one of this list, or null.
    clsItem* After(const clsItem& item) const noexcept { return &item == Last() ? nullptr : item.next; }
    clsItemPosition begin() const noexcept { return {First(), Last()}; }
    clsItemPosition end() const noexcept { return {}; }

    // A list item with an empty list, for Append(). A name that begins with "[" loses its first and its last
    // unit, whatever the last one is: the text reader and callers count on it. Throws std::bad_alloc.
    static clsAutoGiveItem NewEntry(std::wstring_view name);

    // These throw std::bad_alloc, and have then changed nothing.
    clsItem& AppendItem(std::wstring_view name, std::wstring_view value);
    clsItemList& AppendList(std::wstring_view name);
    // Up to clsItemPool::kMaxBatch items.
    void AppendItems(std::span<const scItemTexts> texts);
    // Replaces the value of the first plain item of the name, or appends one.
    void SetItem(std::wstring_view name, std::wstring_view value);

    void Append(clsAutoGiveItem item) noexcept;
    // Appends all entries of another list and leaves it empty.
    void TakeEntries(clsItemList& other) noexcept;

    // The first match in list order, or null.
    clsItem* FindItem(std::wstring_view name) const noexcept { return Find(EntryKind::kPlain, name); }
    clsItemList* FindList(std::wstring_view name) const noexcept {
        const clsItem* const item = Find(EntryKind::kList, name);
        return item ? item->Sublist() : nullptr;
    }

    // Removes and frees all entries of the kind and name.
    void RemoveNamed(EntryKind kind, std::wstring_view name) noexcept;
    // Removes and frees all entries for which match(const clsItem&) holds.
    template <class Match>
    void RemoveEntries(Match match) {
        DropIndex();
        Remove(match);
    }
    // Frees the whole subtree, however deep it is, without taking memory.
    void Empty() noexcept;
    // Must be called before the name of an entry changes.
    void DropIndex() noexcept;

private:
    clsItem* Find(EntryKind kind, std::wstring_view name) const noexcept;
    const clsNameIndex* Index() const noexcept;
    void NoteWalk(int entries) const noexcept;

    template <class Match>
    void Remove(Match match) {
        clsItem* previous = Last();
        for (int left = entries(); left > 0; --left) {
            clsItem* const item = previous->next;
            if (match(static_cast<const clsItem&>(*item)))
                clsAutoGiveItem(UnlinkAfter(previous)).reset();
            else
                previous = item;
        }
    }

    mutable std::atomic<uint32_t> walked_{0}; // entries that lookups have met without an index
    clsItem* owner_ = nullptr;
    clsItemText name_; // of a root
    mutable std::atomic<clsNameIndex*> index_{nullptr};
};
static_assert(sizeof(clsItemList) == 56);

inline clsItemPosition& clsItemPosition::operator++() noexcept {
    item_ = item_ == last_ ? nullptr : item_->next;
    return *this;
}

} // namespace vxut
