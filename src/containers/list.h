// Linked lists of values or of pointers, and their iterators.
//
// Indexes are clamped and never an error: a negative one is 0, and one beyond the end is the last element.
// Only remove() refuses an index out of range. Access by index walks the list.
#pragma once

#include "containers/list_links.h"

#include <cstddef>
#include <iterator>
#include <new>
#include <type_traits>

namespace vxut {

// A forward iterator over a list of links L; null after the last element.
template <class L, class T>
class WCListPosition {
public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = std::remove_const_t<T>;
    using difference_type = std::ptrdiff_t;
    using pointer = T*;
    using reference = T&;

    WCListPosition() noexcept = default;
    WCListPosition(L* link, const L* last) noexcept : link_(link), last_(last) {}

    T& operator*() const noexcept { return link_->element; }
    T* operator->() const noexcept { return &link_->element; }
    WCListPosition& operator++() noexcept {
        link_ = link_ == last_ ? nullptr : link_->next;
        return *this;
    }
    WCListPosition operator++(int) noexcept {
        const WCListPosition old = *this;
        ++*this;
        return old;
    }
    bool operator==(const WCListPosition& other) const noexcept { return link_ == other.link_; }

private:
    L* link_ = nullptr;
    const L* last_ = nullptr;
};

// A list of elements T in links L, which the ring B joins. Positions and references stay valid until their
// element is removed.
template <class T, class B, class L>
class WCValListBase : public B {
public:
    using iterator = WCListPosition<L, T>;
    using const_iterator = WCListPosition<L, const T>;
    using Link = L;

    WCValListBase() noexcept = default;
    explicit WCValListBase(WCAllocator allocate, WCDeallocator deallocate) noexcept
        : memory_{allocate, deallocate} {}
    WCValListBase(const WCValListBase& other)
        : WCValListBase(other.memory_.allocate, other.memory_.deallocate) {
        for (const T& element : other)
            if (!append(element)) throw std::bad_alloc();
    }
    WCValListBase(WCValListBase&& other) noexcept { swap(other); }
    WCValListBase& operator=(const WCValListBase& other) {
        WCValListBase copy(other);
        swap(copy);
        return *this;
    }
    WCValListBase& operator=(WCValListBase&& other) noexcept {
        WCValListBase taken(std::move(other));
        swap(taken);
        return *this;
    }
    ~WCValListBase() override { clear(); }

    // Adds an element at the end. Returns false if there is no memory.
    bool append(const T& element) { return AppendNew(element); }
    bool append(T&& element) { return AppendNew(std::move(element)); }
    // Adds an element at the head. Returns false if there is no memory.
    bool insert(const T& element) { return InsertNew(element); }
    bool insert(T&& element) { return InsertNew(std::move(element)); }

    // The element at an index, which is clamped. An empty list returns the shared default element.
    const T& get(int index) const {
        const L* const link = LinkAt(index);
        return link ? link->element : WCSharedDefault<T>();
    }
    // The same for changing it; null if the list is empty.
    T* find(int index) noexcept {
        L* const link = LinkAt(index);
        return link ? &link->element : nullptr;
    }

    // Removes the element at an index. Returns false if there is none.
    bool remove(int index) noexcept {
        if (index < 0 || index >= this->entries_) return false;
        Destroy(this->UnlinkAfter(this->Before(index)));
        return true;
    }

    // Removes each element for which match(element) is true, in one pass. Returns the number of elements
    // removed.
    template <class Match>
    int removeIf(Match match) {
        const int before = this->entries_;
        L* previous = this->Last();
        for (int left = before; left > 0; --left) {
            if (match(previous->next->element))
                Destroy(this->UnlinkAfter(previous));
            else
                previous = previous->next;
        }
        return before - this->entries_;
    }

    void clear() noexcept {
        while (!this->isEmpty()) Destroy(this->UnlinkAfter(this->Last()));
    }

    void swap(WCValListBase& other) noexcept {
        this->SwapRing(other);
        std::swap(memory_, other.memory_);
    }

    iterator begin() noexcept { return {First(), this->Last()}; }
    iterator end() noexcept { return {}; }
    const_iterator begin() const noexcept { return {First(), this->Last()}; }
    const_iterator end() const noexcept { return {}; }

private:
    L* First() const noexcept { return this->Last() ? this->Last()->next : nullptr; }

    template <class Source>
    bool InsertNew(Source&& source) {
        WCNodeMemory memory(memory_, sizeof(L));
        if (!memory.Get()) return false;
        this->LinkFirst(new (memory.Get()) L(std::in_place, std::forward<Source>(source)));
        memory.Detach();
        return true;
    }

    // In a ring, a new first link becomes the last when the list takes it for its last link.
    template <class Source>
    bool AppendNew(Source&& source) {
        if (!InsertNew(std::forward<Source>(source))) return false;
        this->last_ = First();
        return true;
    }

    void Destroy(L* link) noexcept {
        link->~L();
        memory_.Free(link, sizeof(L));
    }

    L* LinkAt(int index) const noexcept {
        if (this->isEmpty() || index >= this->entries_ - 1) return this->Last();
        return this->Before(index)->next;
    }

    WCAllocatorPair memory_;
};

template <class T>
class WCValSList : public WCValListBase<T, WCIsvSListBase<WCNIsvSLink<T>>, WCNIsvSLink<T>> {
public:
    using WCValListBase<T, WCIsvSListBase<WCNIsvSLink<T>>, WCNIsvSLink<T>>::WCValListBase;
};

template <class T>
class WCValDList : public WCValListBase<T, WCIsvDListBase<WCNIsvDLink<T>>, WCNIsvDLink<T>> {
public:
    using WCValListBase<T, WCIsvDListBase<WCNIsvDLink<T>>, WCNIsvDLink<T>>::WCValListBase;
};

// A list of pointers. The list does not own what they point to.
template <class T>
class WCPtrSList : public WCValListBase<T*, WCIsvSListBase<WCNIsvSLink<T*>>, WCNIsvSLink<T*>> {
public:
    using WCValListBase<T*, WCIsvSListBase<WCNIsvSLink<T*>>, WCNIsvSLink<T*>>::WCValListBase;
};

template <class List, class Position>
using WCListIterBase = WCIterSteps<List, Position>;

template <class List, class Position>
class WCValListIterBase : public WCListIterBase<List, Position> {
public:
    using WCListIterBase<List, Position>::WCIterSteps;

    // The element that the iterator is on. The shared default element if it is on none.
    const typename Position::value_type& current() const {
        if (this->position_ == Position()) return WCSharedDefault<typename Position::value_type>();
        return *this->position_;
    }
    // The same for changing it, where the list may be changed; null if the iterator is on none.
    typename Position::pointer element() const noexcept {
        return this->position_ == Position() ? nullptr : &*this->position_;
    }
};

template <class List>
using WCListIter = WCValListIterBase<List, typename List::iterator>;
template <class List>
using WCConstListIter = WCValListIterBase<const List, typename List::const_iterator>;

template <class T>
class WCValSListIter : public WCListIter<WCValSList<T>> {
public:
    explicit WCValSListIter(WCValSList<T>& list) noexcept : WCListIter<WCValSList<T>>(list) {}
};

template <class T>
class WCValConstSListIter : public WCConstListIter<WCValSList<T>> {
public:
    explicit WCValConstSListIter(const WCValSList<T>& list) noexcept : WCConstListIter<WCValSList<T>>(list) {}
};

template <class T>
class WCValDListIter : public WCListIter<WCValDList<T>> {
public:
    explicit WCValDListIter(WCValDList<T>& list) noexcept : WCListIter<WCValDList<T>>(list) {}
};

template <class T>
class WCValConstDListIter : public WCConstListIter<WCValDList<T>> {
public:
    explicit WCValConstDListIter(const WCValDList<T>& list) noexcept : WCConstListIter<WCValDList<T>>(list) {}
};

template <class T>
class WCPtrSListIter : public WCListIter<WCPtrSList<T>> {
public:
    explicit WCPtrSListIter(WCPtrSList<T>& list) noexcept : WCListIter<WCPtrSList<T>>(list) {}
};

template <class T>
class WCPtrConstSListIter : public WCConstListIter<WCPtrSList<T>> {
public:
    explicit WCPtrConstSListIter(const WCPtrSList<T>& list) noexcept : WCConstListIter<WCPtrSList<T>>(list) {}
};

} // namespace vxut
