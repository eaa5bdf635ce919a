// A pattern that threads share.
#pragma once

#include "base/spare.h"
#include "text/regex.h"

#include <cstdint>
#include <memory>

namespace vxut {

// Keeps the compiled pattern between uses. A thread that finds it in use compiles one of its own and waits
// for nobody: the debug channel's log file matches under the channel's lock, and must not wait for a thread
// that may be about to write a line.
class clsSharedRegEx {
public:
    // The text of the pattern is not copied. Options are RegExOptions.
    constexpr explicit clsSharedRegEx(const wchar_t* pattern, uint32_t options = 0) noexcept
        : pattern_(pattern), options_(options) {}

    // The same as clsRegEx::Match().
    bool Match(const String& subject, clsRegExMatchList* matches = nullptr) {
        clsMatchBudget budget;
        return Match(subject, matches, budget);
    }
    bool Match(const String& subject, clsRegExMatchList* matches, clsMatchBudget& budget) {
        clsSpareScope scope(spare_);
        if (!scope.object) scope.object = std::make_unique<clsRegEx>(pattern_, options_);
        return scope.object->Match(subject, matches, budget);
    }

private:
    const wchar_t* pattern_;
    uint32_t options_;
    clsSpare<clsRegEx> spare_;
};

} // namespace vxut
