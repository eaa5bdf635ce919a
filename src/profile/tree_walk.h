// A walk through all entries below a list, depth first in list order, without recursion.
#pragma once

#include "containers/stack.h"
#include "profile/item_list.h"

#include <new>

namespace vxut {

// Each plain item is met once, each sublist when it is entered and when it is left:
//     clsTreeWalk walk(list);
//     while (const auto step = walk.Next()) ... walk.Item() ...
// The tree must not change meanwhile.
class clsTreeWalk {
public:
    enum Step { kDone = 0, kItem, kEnter, kLeave };

    explicit clsTreeWalk(const clsItemList& list) { Push(list, nullptr); }

    Step Next() {
        scFrame& frame = *frames_.top();
        if (frame.next == Position()) return Pop();
        item_ = *frame.next;
        ++frame.next;
        if (item_->IsPlain()) return kItem;
        Push(*item_->Sublist(), item_);
        return kEnter;
    }

    // The item met, or the list item entered or left.
    clsItem& Item() const noexcept { return *item_; }
    clsItemList& List() const noexcept { return *item_->Sublist(); }

private:
    using Position = clsItemList::const_iterator;
    struct scFrame {
        Position next;
        clsItem* item = nullptr; // the list item; null for the list of the start
    };

    void Push(const clsItemList& list, clsItem* item) {
        if (!frames_.push(scFrame{list.begin(), item})) throw std::bad_alloc();
    }

    Step Pop() {
        if (frames_.entries() == 1) return kDone;
        item_ = frames_.pop().item;
        return kLeave;
    }

    WCStack<scFrame> frames_;
    clsItem* item_ = nullptr;
};

} // namespace vxut
