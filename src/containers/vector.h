// An array that grows when an index asks for it.
#pragma once

#include "containers/container_base.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace vxut {

// The array: length elements of room, of which the first entries are made.
template <class T>
class WCBareVectorBase : public WCExcept {
public:
    WCBareVectorBase() noexcept = default;
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

    // Makes room for exactly n elements and drops those beyond. False, with all as it was, if n is negative
    // or there is no memory.
    bool resize(int n) {
        if (n < 0) return false;
        WCBareVectorBase larger;
        if (n > 0 && !larger.Reserve(n)) return false;
        const int kept = std::min(entries_, n);
        for (; larger.entries_ < kept; ++larger.entries_)
            new (larger.array_ + larger.entries_) T(std::move_if_noexcept(array_[larger.entries_]));
        swap(larger);
        return true;
    }

    void clear() noexcept {
        std::destroy_n(array_, entries_);
        WCAllocatorPair{}.Free(array_, 0);
        array_ = nullptr;
        length_ = entries_ = 0;
    }

    void swap(WCBareVectorBase& other) noexcept {
        std::swap(array_, other.array_);
        std::swap(length_, other.length_);
        std::swap(entries_, other.entries_);
    }

protected:
    // Makes the elements up to index, which is below the length.
    T& Reach(int index) {
        for (; entries_ <= index; ++entries_) new (array_ + entries_) T{};
        return array_[index];
    }

    const T* Array() const noexcept { return array_; }

private:
    bool Reserve(int n) noexcept {
        if (static_cast<size_t>(n) > SIZE_MAX / sizeof(T)) return false;
        array_ = static_cast<T*>(WCAllocatorPair{}.Allocate(static_cast<size_t>(n) * sizeof(T)));
        if (array_) length_ = n;
        return array_ != nullptr;
    }

    T* array_ = nullptr;
    int length_ = 0;
    int entries_ = 0;
};

template <class T>
class WCValVector : public WCBareVectorBase<T> {
public:
    WCValVector() noexcept = default;
    explicit WCValVector(int length) {
        if (!this->resize(length)) throw std::bad_alloc();
    }

    // Grows to reach the index. A negative index is 0; where memory does not suffice it is the last element,
    // or the only one of a vector that was empty.
    T& operator[](int index) {
        index = std::max(index, 0);
        if (index >= this->length() && (index == INT_MAX || !this->resize(index + 1))) {
            if (this->length() == 0 && !this->resize(1)) throw std::bad_alloc();
            index = this->length() - 1;
        }
        return this->Reach(index);
    }

    // Changes nothing: beyond the end is the last element, and an empty vector hands out a shared default.
    const T& operator[](int index) const {
        if (this->isEmpty()) return WCSharedDefault<T>();
        return this->Array()[std::clamp(index, 0, this->entries() - 1)];
    }
};

} // namespace vxut
