// An array that grows when an index asks for it.
#pragma once

#include "containers/container_base.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace vxut {

// An array of length() elements, of which the first entries() are constructed; the others are memory only.
// The array owns its elements and is not thread-safe. References stay valid until the length changes. An
// operation that fails or throws leaves the array as it was.
//
// Memory has static Allocate(bytes), null on failure, and Free(memory, bytes).
template <class T, class Memory = WCGeneralMemory>
class WCBareVectorBase : public WCExcept {
public:
    WCBareVectorBase() noexcept = default;
    // Throws std::bad_alloc, and what copying an element throws.
    WCBareVectorBase(const WCBareVectorBase& other) : WCBareVectorBase() {
        if (!resize(other.length_)) throw std::bad_alloc();
        for (; entries_ < other.entries_; ++entries_) new (array_ + entries_) T(other.array_[entries_]);
    }
    WCBareVectorBase(WCBareVectorBase&& other) noexcept { swap(other); }
    WCBareVectorBase& operator=(const WCBareVectorBase& other) {
        WCBareVectorBase copy(other);
        swap(copy);
        return *this;
    }
    WCBareVectorBase& operator=(WCBareVectorBase&& other) noexcept {
        WCBareVectorBase taken(std::move(other));
        swap(taken);
        return *this;
    }
    ~WCBareVectorBase() override { clear(); }

    int length() const noexcept { return length_; }
    int entries() const noexcept { return entries_; }
    bool isEmpty() const noexcept { return entries_ == 0; }

    // Sets the length to n, allocates exactly as much, and destroys the elements beyond. Returns false if n
    // is negative or there is no memory.
    bool resize(int n) {
        if (n < 0 || !Reallocate(n)) return false;
        length_ = n;
        return true;
    }

    // Destroys all elements and frees the memory.
    void clear() noexcept {
        std::destroy_n(array_, entries_);
        Memory::Free(array_, BytesOf(capacity_));
        array_ = nullptr;
        capacity_ = length_ = entries_ = 0;
    }

    void swap(WCBareVectorBase& other) noexcept {
        std::swap(array_, other.array_);
        std::swap(capacity_, other.capacity_);
        std::swap(length_, other.length_);
        std::swap(entries_, other.entries_);
    }

protected:
    // Allocates memory for the element at index and, where there is enough, for half the elements again, so
    // that an array that grows by one element at a time moves each a constant number of times on average.
    // Changes neither length nor elements. Returns false if there is no memory.
    bool Reserve(int index) {
        if (index < capacity_) return true;
        if (index == INT_MAX) return false;
        const int needed = index + 1;
        const int spacious = capacity_ <= INT_MAX / 3 * 2 ? capacity_ + capacity_ / 2 : INT_MAX;
        return (spacious > needed && Reallocate(spacious)) || Reallocate(needed);
    }

    // The element at index, for which there is memory; constructs the elements up to it and raises the
    // length.
    T& Reach(int index) {
        if (index >= entries_) {
            std::uninitialized_value_construct_n(array_ + entries_, index + 1 - entries_);
            entries_ = index + 1;
            length_ = std::max(length_, entries_);
        }
        return array_[index];
    }

    const T* Array() const noexcept { return array_; }

private:
    static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);

    static size_t BytesOf(int n) noexcept { return static_cast<size_t>(n) * sizeof(T); }

    // Moves what fits of the array into memory for exactly n elements, which may be none. Copies elements
    // that could throw while they are moved.
    bool Reallocate(int n) {
        WCBareVectorBase moved;
        if (n > 0 && !moved.Allocate(n)) return false;
        const int kept = std::min(entries_, n);
        for (; moved.entries_ < kept; ++moved.entries_)
            new (moved.array_ + moved.entries_) T(std::move_if_noexcept(array_[moved.entries_]));
        moved.length_ = std::min(length_, n);
        swap(moved);
        return true;
    }

    bool Allocate(int n) noexcept {
        if (static_cast<size_t>(n) > SIZE_MAX / sizeof(T)) return false;
        array_ = static_cast<T*>(Memory::Allocate(BytesOf(n)));
        if (array_) capacity_ = n;
        return array_ != nullptr;
    }

    T* array_ = nullptr;
    int capacity_ = 0; // elements that the memory holds: the length, and more after growth by an index
    int length_ = 0;
    int entries_ = 0;
};

template <class T, class Memory = WCGeneralMemory>
class WCValVector : public WCBareVectorBase<T, Memory> {
public:
    WCValVector() noexcept = default;
    // Throws std::bad_alloc if the length is negative or there is no memory.
    explicit WCValVector(int length) {
        if (!this->resize(length)) throw std::bad_alloc();
    }

    // The element at an index. Beyond the length, the length becomes index + 1. A negative index is 0. If
    // there is no memory for the index, returns the last element, or element 0 of a vector of length 0;
    // throws std::bad_alloc if there is no memory for that one either.
    T& operator[](int index) {
        index = std::max(index, 0);
        if (index >= this->length() && !this->Reserve(index)) {
            if (this->length() == 0 && !this->Reserve(0)) throw std::bad_alloc();
            index = std::max(this->length() - 1, 0);
        }
        return this->Reach(index);
    }

    // Changes nothing: an index beyond the end is the last element, and an empty vector returns the shared
    // default element.
    const T& operator[](int index) const {
        if (this->isEmpty()) return WCSharedDefault<T>();
        return this->Array()[std::clamp(index, 0, this->entries() - 1)];
    }
};

} // namespace vxut
