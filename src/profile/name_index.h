// Finds the first plain item and the first list of each name among the entries of a list.
#pragma once

#include "base/owners.h"
#include "profile/item.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

namespace vxut {

// A hash table of entries, which must outlive it and keep their names. It does not know the order of the
// list: entries are added in it, so that of several with equal names the first stays. Lookups may run in
// several threads at a time, changes may not.
class clsNameIndex {
public:
    // An empty index that takes this many entries without growing. Null if there is no memory.
    static clsGenericAutoDelete<clsNameIndex> Make(size_t entries) noexcept;
    ~clsNameIndex() = default;
    clsNameIndex(const clsNameIndex&) = delete;
    clsNameIndex& operator=(const clsNameIndex&) = delete;

    clsItem* Find(EntryKind kind, std::wstring_view name) const noexcept;
    // Adds an entry unless there is one of its kind and name. Returns false, with nothing changed, if there
    // is no memory.
    bool Add(clsItem& item) noexcept;
    // Returns whether there was an entry of the kind and name.
    bool Remove(EntryKind kind, std::wstring_view name) noexcept;

private:
    struct scSlot {
        clsItem* item; // null: free
        uint32_t hash;
    };

    clsNameIndex(clsAutoDeleteBytes<scSlot> slots, size_t capacity) noexcept
        : slots_(std::move(slots)), mask_(capacity - 1) {}

    static clsAutoDeleteBytes<scSlot> MakeSlots(size_t capacity) noexcept;
    size_t Capacity() const noexcept { return mask_ + 1; }
    bool Grow() noexcept;
    // The slot of an entry of the kind and name, or the free one where it belongs.
    scSlot& SlotOf(EntryKind kind, std::wstring_view name, uint32_t hash) const noexcept;

    clsAutoDeleteBytes<scSlot> slots_; // as many as a power of 2, never all in use
    size_t mask_;
    size_t used_ = 0;
};

} // namespace vxut
