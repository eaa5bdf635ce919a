// A recursive lock and its scope.
#pragma once

#include "base/process_end.h"

#include <windows.h>

namespace vxut {

class clsCriticalSection {
public:
    explicit clsCriticalSection(DWORD spinCount = 0) {
        InitializeCriticalSectionAndSpinCount(&section_, spinCount);
    }
    ~clsCriticalSection() { DeleteCriticalSection(&section_); }
    clsCriticalSection(const clsCriticalSection&) = delete;
    clsCriticalSection& operator=(const clsCriticalSection&) = delete;

    // Never waits once the process is ending: see process_end.h.
    void Enter() {
        if (IsProcessEnding()) [[unlikely]]
            return EnterAtProcessEnd();
        EnterCriticalSection(&section_);
    }
    bool TryEnter() { return TryEnterCriticalSection(&section_) != FALSE; }
    void Leave() { LeaveCriticalSection(&section_); }
    // For those who share the lock across the library's boundary.
    CRITICAL_SECTION* Native() noexcept { return &section_; }

private:
    void EnterAtProcessEnd();

    CRITICAL_SECTION section_;
};

// Holds a critical section for a scope.
class clsCriticalSectionScope {
public:
    explicit clsCriticalSectionScope(clsCriticalSection& section) : section_(section) { section_.Enter(); }
    ~clsCriticalSectionScope() { section_.Leave(); }
    clsCriticalSectionScope(const clsCriticalSectionScope&) = delete;
    clsCriticalSectionScope& operator=(const clsCriticalSectionScope&) = delete;

private:
    clsCriticalSection& section_;
};

// Holds a critical section for a scope, if nobody else holds it.
class clsCriticalSectionTryScope {
public:
    explicit clsCriticalSectionTryScope(clsCriticalSection& section)
        : section_(section), hasEntered_(section_.TryEnter()) {}
    ~clsCriticalSectionTryScope() {
        if (hasEntered_) section_.Leave();
    }
    clsCriticalSectionTryScope(const clsCriticalSectionTryScope&) = delete;
    clsCriticalSectionTryScope& operator=(const clsCriticalSectionTryScope&) = delete;

    bool HasEntered() const { return hasEntered_; }

private:
    clsCriticalSection& section_;
    bool hasEntered_;
};

// Leaves a critical section, which the thread holds once, for a scope.
class clsCriticalSectionGap {
public:
    explicit clsCriticalSectionGap(clsCriticalSection& section) : section_(section) { section_.Leave(); }
    ~clsCriticalSectionGap() { section_.Enter(); }
    clsCriticalSectionGap(const clsCriticalSectionGap&) = delete;
    clsCriticalSectionGap& operator=(const clsCriticalSectionGap&) = delete;

private:
    clsCriticalSection& section_;
};

} // namespace vxut
