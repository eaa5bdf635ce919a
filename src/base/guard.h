// The barrier round every export: nothing is thrown across the boundary.
#pragma once

#include <utility>

namespace vxut {

// Runs body and gives its result, or neutral if it throws.
template <class Result, class Body>
Result Guarded(Result neutral, Body&& body) noexcept {
    try {
        return static_cast<Result>(std::forward<Body>(body)());
    } catch (...) {
        return neutral;
    }
}

// The same for exports without a result.
template <class Body>
void Guarded(Body&& body) noexcept {
    try {
        std::forward<Body>(body)();
    } catch (...) { // NOLINT(bugprone-empty-catch): the interface has no way to tell
    }
}

} // namespace vxut
