// An object that is costly to make, kept from one use to the next.
#pragma once

#include <atomic>
#include <memory>
#include <utility>

namespace vxut {

// Keeps one object that nobody uses at the moment. A user takes it, or makes an object of its own if there is
// none, and hands it back when done. Users on several threads never share an object and never wait.
template <class T>
class clsSpare {
public:
    constexpr clsSpare() noexcept = default;
    clsSpare(const clsSpare&) = delete;
    clsSpare& operator=(const clsSpare&) = delete;
    ~clsSpare() { delete kept_.load(); }

    // Returns null if there is none.
    std::unique_ptr<T> Take() noexcept { return std::unique_ptr<T>(kept_.exchange(nullptr)); }
    // Replaces the object that is kept.
    void Keep(std::unique_ptr<T> object) noexcept {
        const std::unique_ptr<T> previous(kept_.exchange(object.release()));
    }

private:
    std::atomic<T*> kept_{nullptr};
};

// Holds the object of a spare for a scope, and hands it back however the scope ends.
template <class T>
class clsSpareScope {
public:
    explicit clsSpareScope(clsSpare<T>& spare) noexcept : object(spare.Take()), spare_(spare) {}
    ~clsSpareScope() {
        if (object) spare_.Keep(std::move(object));
    }
    clsSpareScope(const clsSpareScope&) = delete;
    clsSpareScope& operator=(const clsSpareScope&) = delete;

    std::unique_ptr<T> object; // null if none was kept: the user makes one

private:
    clsSpare<T>& spare_;
};

} // namespace vxut
