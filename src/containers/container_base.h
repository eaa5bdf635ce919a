// The base classes of all containers and iterators, and the memory of containers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

namespace vxut {

// The root of all containers. Callers know its layout: the virtual table, then a word of exception state. The
// word is always 0, as failures are results.
class WCExcept {
public:
    virtual ~WCExcept() = default;
    int32_t exceptions() const noexcept { return exceptionState_; }

protected:
    WCExcept() noexcept = default;
    WCExcept(const WCExcept&) noexcept = default;
    WCExcept& operator=(const WCExcept&) noexcept = default;

private:
    int32_t exceptionState_ = 0;
};

// The root of all iterators, of the same layout.
class WCIterExcept {
public:
    virtual ~WCIterExcept() = default;
    int32_t exceptions() const noexcept { return exceptionState_; }

protected:
    WCIterExcept() noexcept = default;
    WCIterExcept(const WCIterExcept&) noexcept = default;
    WCIterExcept& operator=(const WCIterExcept&) noexcept = default;

private:
    int32_t exceptionState_ = 0;
};

// An iterator that starts before the first element of a container. It refers to the container, which must
// outlive it and must not change while it is used.
template <class List, class Position>
class WCIterSteps : public WCIterExcept {
public:
    explicit WCIterSteps(List& list) noexcept : list_(&list) {}

    // Moves to the first element, then to the next. Returns false after the last one, and from then on until
    // reset().
    bool operator++() noexcept {
        if (isBefore_)
            position_ = list_->begin();
        else if (position_ != Position())
            ++position_;
        isBefore_ = false;
        return position_ != Position();
    }

    void reset() noexcept {
        position_ = Position();
        isBefore_ = true;
    }

protected:
    Position position_;

private:
    List* list_;
    bool isBefore_ = true;
};

// The general allocator.
struct WCGeneralMemory {
    static void* Allocate(size_t bytes) noexcept; // null on failure
    static void Free(void* memory, size_t bytes) noexcept;
};

using WCAllocator = void* (*)(size_t bytes);
using WCDeallocator = void (*)(void* memory, size_t bytes);

// A container's source of nodes: a pair of functions, or the general allocator where one is null.
struct WCAllocatorPair {
    WCAllocator allocate = nullptr;
    WCDeallocator deallocate = nullptr;

    void* Allocate(size_t bytes) const noexcept; // null on failure
    void Free(void* memory, size_t bytes) const noexcept;
};

// Owns the memory of a node until its element is constructed.
class WCNodeMemory {
public:
    WCNodeMemory(const WCAllocatorPair& source, size_t bytes) noexcept
        : source_(source), bytes_(bytes), memory_(source.Allocate(bytes)) {}
    ~WCNodeMemory() {
        if (memory_) source_.Free(memory_, bytes_);
    }
    WCNodeMemory(const WCNodeMemory&) = delete;
    WCNodeMemory& operator=(const WCNodeMemory&) = delete;

    std::byte* Get() const noexcept { return static_cast<std::byte*>(memory_); }
    std::byte* Detach() noexcept { return static_cast<std::byte*>(std::exchange(memory_, nullptr)); }

private:
    const WCAllocatorPair& source_;
    size_t bytes_;
    void* memory_;
};

// The element that a container without elements returns. All containers of the process share it, so it is
// never writable: whoever wants to change an element asks for a pointer, which is null where there is none.
template <class T>
const T& WCSharedDefault() {
    static const T element{};
    return element;
}

} // namespace vxut
