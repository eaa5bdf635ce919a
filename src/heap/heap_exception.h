// The structured exceptions that a system heap raises when its owner has asked for them.
#pragma once

#include <windows.h>

namespace vxut {

// An exception that was caught below the library's locks, to be raised in the host above them: it would not
// run the destructors on its way.
class clsHeapException {
public:
    // Passes the exception on to the caller's handlers, if there was one.
    void Raise() const;
    // The filter of the handler that catches one.
    int Keep(const EXCEPTION_POINTERS* exception) noexcept;

private:
    DWORD code_ = 0;
    DWORD flags_ = 0;
};

// As HeapAlloc: null on failure in any case.
void* AllocateShielded(HANDLE heap, DWORD flags, SIZE_T bytes, clsHeapException& exception);

} // namespace vxut
