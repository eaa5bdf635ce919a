// Work that may raise a structured exception: a fault in memory that a host handed over, or inside the
// system.
//
// The compiler's run-time runs no destructors while such an exception is on its way to a handler. A lock that
// a scope object holds would stay held once the host has handled the fault, so a lock under which memory of a
// host may be touched is held by Locked(), or the memory is touched by Shielded() or ReadShielded() only.
#pragma once

#include "base/critical_section.h"

#include <windows.h>

namespace vxut {

// Whether a structured exception is a fault: neither the throw of a C++ exception nor the end of the stack,
// which cannot be handled here.
constexpr bool IsFault(DWORD code) {
    constexpr DWORD kThrow = 0x20474343; // of the compiler's run-time; bits 24 to 27 are its kind
    return (code & 0xF0FFFFFF) != kThrow && code != STATUS_STACK_OVERFLOW;
}

// A call of its own: a guarded block covers what it calls, not its own instructions.
template <class Work>
[[gnu::noinline]] auto RunApart(Work& work) {
    return work();
}

// Runs work and returns true, or false at its first fault. What work holds at that point is not released, so
// it holds nothing. C++ exceptions pass.
template <class Work>
[[gnu::noinline]] bool Shielded(Work&& work) {
    __try {
        RunApart(work);
        return true;
    } __except (IsFault(GetExceptionCode()) ? EXCEPTION_EXECUTE_HANDLER : EXCEPTION_CONTINUE_SEARCH) {
        return false;
    }
}

// Runs work while a critical section is held, and returns its result. The section is left however work ends.
// A structured exception passes; destructors inside work do not run then.
template <class Work>
[[gnu::noinline]] auto Locked(clsCriticalSection& section, Work&& work) {
    section.Enter();
    __try {
        return RunApart(work);
    } __finally {
        section.Leave();
    }
}

// Runs work, then cleanup, however work ends. A structured exception passes; destructors inside work do not
// run then.
template <class Work, class Cleanup>
[[gnu::noinline]] void RunThen(Work&& work, Cleanup&& cleanup) {
    __try {
        RunApart(work);
    } __finally {
        RunApart(cleanup);
    }
}

} // namespace vxut
