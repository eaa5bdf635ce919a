// A walk through all entries below a list, depth first in list order, without recursion.
#pragma once

#include "profile/item_list.h"

namespace vxut {

// Meets each plain item once, and each sublist when it is entered and when it is left:
//     clsTreeWalk walk(list);
//     while (const auto step = walk.Next()) ... walk.Item() ...
// Returns from a list by its owner, so that no depth takes memory. The tree must not change meanwhile.
class clsTreeWalk {
public:
    enum Step { kDone = 0, kItem, kEnter, kLeave };

    explicit clsTreeWalk(const clsItemList& start) noexcept
        : start_(start), list_(&start), next_(start.First()) {}

    Step Next() noexcept {
        if (!next_) return Leave();
        item_ = next_;
        if (item_->IsPlain()) {
            next_ = list_->After(*item_);
            return kItem;
        }
        list_ = item_->Sublist();
        next_ = list_->First();
        return kEnter;
    }

    // The item met, or the list item entered or left.
    clsItem& Item() const noexcept { return *item_; }
    clsItemList& List() const noexcept { return *item_->Sublist(); }

private:
    Step Leave() noexcept {
        if (list_ == &start_) return kDone;
        item_ = list_->Owner();
        list_ = item_->Parent();
        next_ = list_->After(*item_);
        return kLeave;
    }

    const clsItemList& start_;
    const clsItemList* list_; // the list that the walk is in
    clsItem* next_;           // its entry to meet next; null at its end
    clsItem* item_ = nullptr;
};

} // namespace vxut
