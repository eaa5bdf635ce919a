// A recursive lock and its scope.
#pragma once

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

    void Enter() { EnterCriticalSection(&section_); }
    void Leave() { LeaveCriticalSection(&section_); }
    // For those who share the lock across the library's boundary.
    CRITICAL_SECTION* Native() noexcept { return &section_; }

private:
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

} // namespace vxut
