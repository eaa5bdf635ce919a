// Links and intrusive rings, from which the value lists are built.
//
// A list is a ring of links. It keeps its last link, whose next is the first one; an empty list keeps null.
// The rings neither allocate nor free links.
#pragma once

#include "containers/container_base.h"

#include <utility>

namespace vxut {

// A link of a singly linked list.
template <class T>
struct WCNIsvSLink {
    template <class Source>
    WCNIsvSLink(std::in_place_t, Source&& source) : element(std::forward<Source>(source)) {}

    WCNIsvSLink* next = nullptr;
    T element;
};

// A link of a doubly linked list.
template <class T>
struct WCNIsvDLink {
    template <class Source>
    WCNIsvDLink(std::in_place_t, Source&& source) : element(std::forward<Source>(source)) {}

    WCNIsvDLink* next = nullptr;
    WCNIsvDLink* previous = nullptr;
    T element;
};

// What all rings have: the last link and the number of links.
class WCIsvListBase : public WCExcept {
public:
    int entries() const noexcept { return entries_; }
    bool isEmpty() const noexcept { return entries_ == 0; }

protected:
    WCIsvListBase() noexcept = default;
    // A copy starts empty, as rings cannot share links.
    WCIsvListBase(const WCIsvListBase& other) noexcept : WCExcept(other) {}
    WCIsvListBase& operator=(const WCIsvListBase&) = delete;

    void SwapRing(WCIsvListBase& other) noexcept {
        std::swap(last_, other.last_);
        std::swap(entries_, other.entries_);
    }

    void* last_ = nullptr;
    int entries_ = 0;
};

// A ring of singly linked links.
template <class L>
class WCIsvSListBase : public WCIsvListBase {
protected:
    L* Last() const noexcept { return static_cast<L*>(last_); }

    // The link before the one at index. Precondition: 0 <= index < entries_.
    L* Before(int index) const noexcept {
        L* link = Last();
        for (int i = 0; i < index; ++i) link = link->next;
        return link;
    }

    void LinkFirst(L* link) noexcept {
        link->next = last_ ? Last()->next : link;
        if (last_)
            Last()->next = link;
        else
            last_ = link;
        ++entries_;
    }

    L* UnlinkAfter(L* previous) noexcept {
        L* const link = previous->next;
        previous->next = link->next;
        if (link == last_) last_ = link == previous ? nullptr : previous;
        --entries_;
        return link;
    }
};

// A ring of doubly linked links.
template <class L>
class WCIsvDListBase : public WCIsvListBase {
protected:
    L* Last() const noexcept { return static_cast<L*>(last_); }

    // The link before the one at index, found from the nearer end. Precondition: 0 <= index < entries_.
    L* Before(int index) const noexcept {
        L* link = Last();
        if (index <= entries_ / 2) {
            for (int i = 0; i < index; ++i) link = link->next;
        } else {
            for (int i = entries_; i > index; --i) link = link->previous;
        }
        return link;
    }

    void LinkFirst(L* link) noexcept {
        L* const last = last_ ? Last() : link;
        link->next = last_ ? last->next : link;
        link->previous = last;
        link->next->previous = link;
        last->next = link;
        last_ = last;
        ++entries_;
    }

    L* UnlinkAfter(L* previous) noexcept {
        L* const link = previous->next;
        previous->next = link->next;
        link->next->previous = previous;
        if (link == last_) last_ = link == previous ? nullptr : previous;
        --entries_;
        return link;
    }
};

} // namespace vxut
