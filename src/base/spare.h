// An object that is costly to make, kept from one use to the next.
#pragma once

#include <atomic>
#include <memory>

namespace vxut {

// Keeps one object that nobody uses at the moment. A user takes it, or makes an object of its own if there is
// none, and hands it back when done; an object that throws while it is used is not handed back. Users on
// several threads never share an object and never wait.
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

} // namespace vxut
