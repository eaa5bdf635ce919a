// Items and lists by path: components with "/" between them; a leading "/" starts at the root. Comparison is
// exact.
#pragma once

#include "profile/item_list.h"
#include "text/string.h"

#include <string_view>

namespace vxut {

// Where a path starts: a list, and the root of its tree.
struct scPlace {
    clsItemList& root;
    clsItemList& list;
};

// Lookups follow the first list that matches each component. An empty component and a null path match
// nothing. They return null if there is no match.
clsItem* FindItemAt(const scPlace& place, const wchar_t* path);
// A null path names the list itself, ".." alone for its parent, which is null for the root.
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

// These two throw std::bad_alloc, and have then changed nothing. Creates a list with all lists on the way to
// it; if it exists, it is emptied.
clsItemList& CreateListAt(const scPlace& place, const wchar_t* path);
// The same, but the last component always gets a new list.
clsItemList& AppendListAt(const scPlace& place, const wchar_t* path);

// Deletions follow every list that matches a component before the last. A leading "/" is an empty component,
// which matches nothing: callers rely on such a call doing nothing. They throw std::bad_alloc, and have then
// deleted nothing.
void DeleteItemsAt(clsItemList& list, const String& path);
// An empty path empties the list.
void DeleteListsAt(clsItemList& list, const String& path);
// Deletes the first entry of the tree, depth first, that has this sublist; for null the first plain item. The
// pointer is compared, never dereferenced, so that an invalid one does nothing.
void DeleteEntryOf(clsItemList& root, const clsItemList* sublist);

} // namespace vxut
