// A list of a profile: its entries in the order in which they were added.
#pragma once

#include "containers/list_links.h"
#include "profile/item.h"
#include "profile/item_text.h"

#include <cstddef>
#include <iterator>
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
// constant time. Names need not be unique. A list belongs to one thread at a time.
class clsItemList : public WCIsvSListBase<clsItem> {
public:
    // A root, which no item holds. For the brackets of a name see NewEntry().
    explicit clsItemList(std::wstring_view name);
    ~clsItemList() override { Empty(); }
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
    // Replaces the value of the first plain item of the name, or appends one.
    void SetItem(std::wstring_view name, std::wstring_view value);

    void Append(clsAutoGiveItem item) noexcept;
    // Appends all entries of another list and leaves it empty.
    void TakeEntries(clsItemList& other) noexcept;

    // The first match in list order, or null.
    clsItem* FindItem(std::wstring_view name) const noexcept;
    clsItemList* FindList(std::wstring_view name) const noexcept;

    // Removes and frees all entries for which match(const clsItem&) holds.
    template <class Match>
    void RemoveEntries(Match match) {
        clsItem* previous = Last();
        for (int left = entries(); left > 0; --left) {
            clsItem* const item = previous->next;
            if (match(static_cast<const clsItem&>(*item)))
                clsAutoGiveItem(UnlinkAfter(previous)).reset();
            else
                previous = item;
        }
    }
    // Frees the whole subtree, however deep it is, without taking memory.
    void Empty() noexcept;

private:
    clsItem* owner_ = nullptr;
    clsItemText name_; // of a root
};
static_assert(sizeof(clsItemList) == 48);

inline clsItemPosition& clsItemPosition::operator++() noexcept {
    item_ = item_ == last_ ? nullptr : item_->next;
    return *this;
}

} // namespace vxut
