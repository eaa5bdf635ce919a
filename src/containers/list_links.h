// Links and intrusive rings: the ground on which the value lists stand.
//
// A list is a ring that is known by its last link, whose next is the first. The last link of an empty list is
// null.
#pragma once

#include "containers/container_base.h"

#include <utility>

namespace vxut {

template <class T>
struct WCNIsvSLink {
    template <class Source>
    WCNIsvSLink(std::in_place_t, Source&& source) : element(std::forward<Source>(source)) {}

    WCNIsvSLink* next = nullptr;
    T element;
};

template <class T>
struct WCNIsvDLink {
    template <class Source>
    WCNIsvDLink(std::in_place_t, Source&& source) : element(std::forward<Source>(source)) {}

    WCNIsvDLink* next = nullptr;
    WCNIsvDLink* previous = nullptr;
    T element;
};

class WCIsvListBase : public WCExcept {
public:
    int entries() const noexcept { return entries_; }
    bool isEmpty() const noexcept { return entries_ == 0; }

protected:
    WCIsvListBase() noexcept = default;
    // Links are not shared: a copy starts empty.
    WCIsvListBase(const WCIsvListBase& other) noexcept : WCExcept(other) {}
    WCIsvListBase& operator=(const WCIsvListBase&) = delete;

    void SwapRing(WCIsvListBase& other) noexcept {
        std::swap(last_, other.last_);
        std::swap(entries_, other.entries_);
    }

    void* last_ = nullptr;
    int entries_ = 0;
};

template <class L>
class WCIsvSListBase : public WCIsvListBase {
protected:
    L* Last() const noexcept { return static_cast<L*>(last_); }

    // The link in front of the one at index, which is within the list.
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

template <class L>
class WCIsvDListBase : public WCIsvListBase {
protected:
    L* Last() const noexcept { return static_cast<L*>(last_); }

    // The link in front of the one at index, which is within the list; walks from the nearer end.
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
