// Builds a tree from the lines of a file.
#pragma once

#include "profile/item_list.h"

#include <string_view>

namespace vxut {

// A list joins its parent when it is closed, with its contents. Lists that are still open at the end of the
// builder's life are dropped: close them all before.
class clsListBuilder {
public:
    explicit clsListBuilder(clsItemList& target) : target_(target), current_(&target) {}
    ~clsListBuilder();
    clsListBuilder(const clsListBuilder&) = delete;
    clsListBuilder& operator=(const clsListBuilder&) = delete;

    void OpenList(std::wstring_view name);
    // False if no list is open.
    bool CloseList();
    void CloseAll();
    clsItem& AddItem(std::wstring_view name, std::wstring_view value) {
        return current_->AppendItem(name, value);
    }

private:
    // The open list, which leaves the builder: its parent is the current one now.
    clsGenericAutoDelete<clsItemList> DetachCurrent() noexcept;

    clsItemList& target_;
    clsItemList* current_; // each open list is known by its child's parent pointer
};

} // namespace vxut
