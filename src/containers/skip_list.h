// Ordered dictionaries and sets on skip lists, and their iterators.
//
// Elements compare with their own == and <. Iteration is in ascending order; among equal elements of a
// multiset the one that was inserted last is first.
#pragma once

#include "containers/skip_list_base.h"

#include <cstddef>
#include <iterator>
#include <new>
#include <type_traits>
#include <utility>

namespace vxut {

// An element of a dictionary. The key cannot be changed, as its value decides its place, but moves with the
// element.
template <class K, class V>
class WCSkipListDictKeyVal {
public:
    explicit WCSkipListDictKeyVal(const K& key) : key_(key), value() {}
    template <class Source>
    WCSkipListDictKeyVal(const K& key, Source&& source) : key_(key), value(std::forward<Source>(source)) {}

    const K& key() const noexcept { return key_; }

private:
    K key_;

public:
    V value;
};

// The part of an element that is compared: the element itself, or the key of a pair.
template <class T>
struct WCSkipListKey {
    using Type = T;
    // NOLINTNEXTLINE(bugprone-return-const-ref-from-parameter): elements belong to nodes or to callers
    static const T& Of(const T& element) noexcept { return element; }
};

template <class K, class V>
struct WCSkipListKey<WCSkipListDictKeyVal<K, V>> {
    using Type = K;
    static const K& Of(const WCSkipListDictKeyVal<K, V>& pair) noexcept { return pair.key(); }
};

// The order of two keys of exactly this type: negative, 0 or positive. One comparison serves < and == where
// the type has one that answers both.
template <class K>
int WCSkipListOrder(const K& left, const K& right) {
    if constexpr (requires { K::Order(left, right); }) {
        return K::Order(left, right);
    } else {
        if (left < right) return -1;
        return left == right ? 0 : 1;
    }
}

// Compares elements T and allocates their nodes. Owns the elements.
template <class T>
class WCSkipListBase : public WCSkipNonTempBase {
public:
    using Key = typename WCSkipListKey<T>::Type;

    ~WCSkipListBase() override { clear(); }

    bool contains(const Key& key) const { return FindKey(key) != nullptr; }
    bool remove(const Key& key) { return Remove(static_cast<const void*>(&key)); }

protected:
    template <class Element>
    friend class WCSkipListPosition;

    WCSkipListBase(uint32_t levelMask, uint32_t maximumLevels, WCAllocator allocate, WCDeallocator deallocate,
                   bool allowDuplicates = false) noexcept
        : WCSkipNonTempBase(levelMask, maximumLevels, {allocate, deallocate}, allowDuplicates) {}
    WCSkipListBase(const WCSkipListBase& other)
        : WCSkipListBase(other.levelMask(), other.maximumLevels(), other.memory_.allocate,
                         other.memory_.deallocate, other.allowsDuplicates()) {
        Path path;
        StartAppending(path);
        for (WCSkipNode* node = other.First(); node; node = Next(node, 0)) {
            T copy(*ElementOf(node));
            if (!AppendNode(path, &copy)) throw std::bad_alloc();
        }
    }
    WCSkipListBase(WCSkipListBase&& other) noexcept
        : WCSkipListBase(other.levelMask(), other.maximumLevels(), other.memory_.allocate,
                         other.memory_.deallocate, other.allowsDuplicates()) {
        SwapNodes(other);
    }
    WCSkipListBase& operator=(const WCSkipListBase& other) {
        WCSkipListBase copy(other);
        SwapNodes(copy);
        return *this;
    }
    WCSkipListBase& operator=(WCSkipListBase&& other) noexcept {
        WCSkipListBase taken(std::move(other));
        SwapNodes(taken);
        return *this;
    }

    static T* ElementOf(WCSkipNode* node) noexcept {
        return node ? reinterpret_cast<T*>(reinterpret_cast<std::byte*>(node) - kElementBytes) : nullptr;
    }

    bool Equals(WCSkipNode* node, const void* key) const override {
        return WCSkipListKey<T>::Of(*ElementOf(node)) == *static_cast<const Key*>(key);
    }
    bool Less(WCSkipNode* node, const void* key) const override {
        return WCSkipListKey<T>::Of(*ElementOf(node)) < *static_cast<const Key*>(key);
    }
    WCSkipNode* AllocateNode(void* element, uint32_t level) override {
        WCNodeMemory memory(memory_, kElementBytes + ForwardBytes(level));
        if (!memory.Get()) return nullptr;
        new (memory.Get()) T(std::move(*static_cast<T*>(element)));
        return reinterpret_cast<WCSkipNode*>(memory.Detach() + kElementBytes);
    }
    void FreeNode(WCSkipNode* node, uint32_t level) noexcept override {
        T* const element = ElementOf(node);
        element->~T();
        memory_.Free(element, kElementBytes + ForwardBytes(level));
    }
    // Moves the element in and returns its place in the list; null if it is refused.
    virtual T* BaseInsert(T& element) {
        return ElementOf(this->InsertNode(KeyComparison(WCSkipListKey<T>::Of(element)), &element));
    }

    T* FindKey(const Key& key) const { return ElementOf(this->FindNode(KeyComparison(key))); }

private:
    // Keeps the outcome for the last node that is not less, which is the one that a search ends at.
    class KeyComparison {
    public:
        explicit KeyComparison(const Key& key) noexcept : key_(key) {}
        bool IsLess(WCSkipNode* node) {
            const int order = WCSkipListOrder(WCSkipListKey<T>::Of(*ElementOf(node)), key_);
            if (order < 0) return true;
            order_ = order;
            return false;
        }
        bool IsEqual(WCSkipNode*) const noexcept { return order_ == 0; }

    private:
        const Key& key_;
        int order_ = 1;
    };

    // The forward pointers follow the element, aligned for pointers.
    static constexpr size_t kElementBytes = (sizeof(T) + sizeof(void*) - 1) / sizeof(void*) * sizeof(void*);
    static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
};

// A forward iterator; null after the last element. Element is const in lists whose elements do not change.
template <class Element>
class WCSkipListPosition {
    using List = WCSkipListBase<std::remove_const_t<Element>>;

public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = std::remove_const_t<Element>;
    using difference_type = std::ptrdiff_t;
    using pointer = Element*;
    using reference = Element&;

    WCSkipListPosition() noexcept = default;
    explicit WCSkipListPosition(const List& list) noexcept : node_(list.First()) {}

    Element& operator*() const noexcept { return *List::ElementOf(node_); }
    Element* operator->() const noexcept { return List::ElementOf(node_); }
    WCSkipListPosition& operator++() noexcept {
        node_ = List::Next(node_, 0);
        return *this;
    }
    WCSkipListPosition operator++(int) noexcept {
        const WCSkipListPosition old = *this;
        ++*this;
        return old;
    }
    bool operator==(const WCSkipListPosition& other) const noexcept { return node_ == other.node_; }

private:
    WCSkipNode* node_ = nullptr;
};

// The common part of sets, which refuse duplicates, and multisets.
template <class T, bool kAllowDuplicates>
class WCValSkipListOf : public WCSkipListBase<T> {
public:
    using const_iterator = WCSkipListPosition<const T>;

    WCValSkipListOf() noexcept
        : WCValSkipListOf(WCSkipNonTempBase::kDefaultLevelMask, WCSkipNonTempBase::kDefaultLevels) {}
    WCValSkipListOf(uint32_t levelMask, uint32_t maximumLevels, WCAllocator allocate = nullptr,
                    WCDeallocator deallocate = nullptr) noexcept
        : WCSkipListBase<T>(levelMask, maximumLevels, allocate, deallocate, kAllowDuplicates) {}

    // The element that equals the given one; null if there is none.
    const T* find(const T& element) const { return this->FindKey(element); }

    // Returns false if the element is refused as a duplicate or there is no memory.
    bool insert(const T& element) {
        T copy(element);
        return this->BaseInsert(copy) != nullptr;
    }
    bool insert(T&& element) { return this->BaseInsert(element) != nullptr; }

    const_iterator begin() const noexcept { return const_iterator(*this); }
    const_iterator end() const noexcept { return {}; }
};

// An ordered multiset.
template <class T>
class WCValSkipList : public WCValSkipListOf<T, true> {
public:
    using WCValSkipListOf<T, true>::WCValSkipListOf;
};

// An ordered set.
template <class T>
class WCValSkipListSet : public WCValSkipListOf<T, false> {
public:
    using WCValSkipListOf<T, false>::WCValSkipListOf;
};

// An ordered set of pointers, compared by what they point to, which the set does not own. Null is refused.
template <class T>
class WCPtrSkipListSet : public WCSkipListBase<T*> {
public:
    using const_iterator = WCSkipListPosition<T* const>;

    WCPtrSkipListSet() noexcept
        : WCPtrSkipListSet(WCSkipNonTempBase::kDefaultLevelMask, WCSkipNonTempBase::kDefaultLevels) {}
    WCPtrSkipListSet(uint32_t levelMask, uint32_t maximumLevels, WCAllocator allocate = nullptr,
                     WCDeallocator deallocate = nullptr) noexcept
        : WCSkipListBase<T*>(levelMask, maximumLevels, allocate, deallocate) {}

    T* find(const T& wanted) const {
        const T* const key = &wanted;
        T* const* const place = this->ElementOf(this->FindNode(Comparison(*this, &key)));
        return place ? *place : nullptr;
    }
    bool contains(const T& wanted) const { return find(wanted) != nullptr; }
    bool insert(T* element) { return element && this->BaseInsert(element) != nullptr; }
    bool remove(const T& wanted) {
        const T* const key = &wanted;
        return this->Remove(&key);
    }

    const_iterator begin() const noexcept { return const_iterator(*this); }
    const_iterator end() const noexcept { return {}; }

protected:
    bool Equals(WCSkipNode* node, const void* key) const override {
        return **this->ElementOf(node) == **static_cast<T* const*>(key);
    }
    bool Less(WCSkipNode* node, const void* key) const override {
        return **this->ElementOf(node) < **static_cast<T* const*>(key);
    }
    T** BaseInsert(T*& element) override {
        return this->ElementOf(this->InsertNode(Comparison(*this, &element), &element));
    }

private:
    using Comparison = WCSkipNonTempBase::VirtualComparison;
};

// An ordered dictionary; keys are unique.
template <class K, class V>
class WCValSkipListDict : public WCSkipListBase<WCSkipListDictKeyVal<K, V>> {
public:
    using Pair = WCSkipListDictKeyVal<K, V>;
    using iterator = WCSkipListPosition<Pair>;
    using const_iterator = WCSkipListPosition<const Pair>;

    WCValSkipListDict() noexcept
        : WCValSkipListDict(WCSkipNonTempBase::kDefaultLevelMask, WCSkipNonTempBase::kDefaultLevels) {}
    WCValSkipListDict(uint32_t levelMask, uint32_t maximumLevels, WCAllocator allocate = nullptr,
                      WCDeallocator deallocate = nullptr) noexcept
        : WCSkipListBase<Pair>(levelMask, maximumLevels, allocate, deallocate) {}

    // The value of a key; null if the key is missing.
    V* find(const K& key) { return ValueOf(key); }
    const V* find(const K& key) const { return ValueOf(key); }

    // Returns false if the key exists, whose value stays, or if there is no memory. A value passed by move is
    // consumed in every case.
    bool insert(const K& key, const V& value) { return InsertNew(key, value); }
    bool insert(const K& key, V&& value) { return InsertNew(key, std::move(value)); }

    // The value of a key. A new key gets a default-constructed value. Throws std::bad_alloc if there is no
    // memory.
    V& operator[](const K& key) {
        if (V* const value = find(key)) return *value;
        Pair pair(key);
        Pair* const place = this->BaseInsert(pair);
        if (!place) throw std::bad_alloc();
        return place->value;
    }

    iterator begin() noexcept { return iterator(*this); }
    iterator end() noexcept { return {}; }
    const_iterator begin() const noexcept { return const_iterator(*this); }
    const_iterator end() const noexcept { return {}; }

private:
    V* ValueOf(const K& key) const {
        Pair* const pair = this->FindKey(key);
        return pair ? &pair->value : nullptr;
    }

    template <class Source>
    bool InsertNew(const K& key, Source&& value) {
        Pair pair(key, std::forward<Source>(value));
        return this->BaseInsert(pair) != nullptr;
    }
};

template <class List, class Position>
using WCSkipListIterBase = WCIterSteps<List, Position>;

template <class T>
class WCValSkipListSetIter
    : public WCSkipListIterBase<const WCValSkipListSet<T>, typename WCValSkipListSet<T>::const_iterator> {
public:
    explicit WCValSkipListSetIter(const WCValSkipListSet<T>& set) noexcept
        : WCValSkipListSetIter::WCIterSteps(set) {}

    // Precondition: the iterator is on an element.
    const T& current() const { return *this->position_; }
};

// List is the dictionary, const or not.
template <class List, class Position>
class WCSkipListDictIterBase : public WCSkipListIterBase<List, Position> {
public:
    using WCSkipListIterBase<List, Position>::WCIterSteps;

    // Precondition: the iterator is on an element.
    const auto& key() const { return this->position_->key(); }
    auto& value() const { return this->position_->value; }
};

template <class K, class V>
class WCValSkipListDictIter
    : public WCSkipListDictIterBase<WCValSkipListDict<K, V>, typename WCValSkipListDict<K, V>::iterator> {
public:
    explicit WCValSkipListDictIter(WCValSkipListDict<K, V>& dict) noexcept
        : WCValSkipListDictIter::WCSkipListDictIterBase(dict) {}
};

template <class K, class V>
class WCValConstSkipListDictIter
    : public WCSkipListDictIterBase<const WCValSkipListDict<K, V>,
                                    typename WCValSkipListDict<K, V>::const_iterator> {
public:
    explicit WCValConstSkipListDictIter(const WCValSkipListDict<K, V>& dict) noexcept
        : WCValConstSkipListDictIter::WCSkipListDictIterBase(dict) {}
};

} // namespace vxut
