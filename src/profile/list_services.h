// Operations on whole lists: copying, enumerating, showing.
#pragma once

#include "profile/item_list.h"

namespace vxut {

// Appends copies of all entries that source has at the call. The target may be the source or lie inside it.
// Throws std::bad_alloc, and has then changed nothing.
void CopyEntries(const clsItemList& source, clsItemList& target);

// Calls visit(item) for each entry that the list has at the call, until it returns false. visit may append
// entries and delete the one that it is called for. Returns whether every call returned true.
template <class Visit>
bool EnumerateEntries(const clsItemList& list, Visit visit) {
    auto next = list.begin();
    for (int left = list.entries(); left > 0 && next != list.end(); --left) {
        const clsItem& item = **next;
        ++next;
        if (!visit(item)) return false;
    }
    return true;
}

// Writes the entries and all below them to the debug channel, one line each.
void DebugWriteEntries(const clsItemList& list);

} // namespace vxut
