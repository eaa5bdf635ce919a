// The barrier around exports and around callbacks that the system calls: no C++ exception leaves the library.
#pragma once

#include <utility>

namespace vxut {

// Runs body and returns its result, or neutral if it throws.
template <class Result, class Body>
Result Guarded(Result neutral, Body&& body) noexcept {
    try {
        return static_cast<Result>(std::forward<Body>(body)());
    } catch (...) {
        return neutral;
    }
}

// The same for a body without a result.
template <class Body>
void Guarded(Body&& body) noexcept {
    try {
        std::forward<Body>(body)();
    } catch (...) { // NOLINT(bugprone-empty-catch): such functions have no way to report a failure
    }
}

} // namespace vxut
