// Items and lists by path: components with "/" between; a leading "/" starts at the root. Comparison is
// exact.
#pragma once

#include "profile/item_list.h"
#include "text/string.h"

#include <string_view>

namespace vxut {

// Where a path starts: the list that a call names, in the tree of its job.
struct scPlace {
    clsItemList& root;
    clsItemList& list;
};

// Lookups follow the first list that matches each component. An empty component matches nothing, and so does
// a null path.
clsItem* FindItemAt(const scPlace& place, const wchar_t* path);
// A null path gives the list itself, ".." alone its parent, which may be null.
clsItemList* FindListAt(const scPlace& place, const wchar_t* path);

// Where a writer's path leads. Lists that are missing on the way are made aside and join the tree at
// Commit(), so that a write that fails before has changed nothing.
class clsWritePath {
public:
    // A null path is an empty name in the list itself. Throws std::bad_alloc.
    clsWritePath(const scPlace& place, const wchar_t* path);

    // The list that the last component belongs in, and that component.
    clsItemList& List() const noexcept { return *list_; }
    std::wstring_view Name() const noexcept { return name_; }
    void Commit() noexcept;

private:
    clsItemList* existing_; // the last list on the way that is in the tree
    clsItemList* list_;
    clsAutoGiveItem made_; // the first list that is not, with the others inside; null if none is missing
    std::wstring_view name_;
};

// Creates a list with all lists on the way. One that is there is emptied.
clsItemList& CreateListAt(const scPlace& place, const wchar_t* path);
// The same, but the last component always gets a new list.
clsItemList& AppendListAt(const scPlace& place, const wchar_t* path);

// Deletes follow every list that matches a component that is not the last. A leading "/" is an empty
// component, which matches nothing: callers rely on such a call doing nothing.
void DeleteItemsAt(clsItemList& list, const String& path);
// An empty path empties the list.
void DeleteListsAt(clsItemList& list, const String& path);
// Deletes the first entry of the tree, depth first, whose sublist is the one given: for null the first plain
// item. The pointer is compared, never followed.
void DeleteEntryOf(clsItemList& root, const clsItemList* sublist);

} // namespace vxut
