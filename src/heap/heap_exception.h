// The structured exceptions that a system heap raises when its owner has asked for them.
#pragma once

#include <windows.h>

namespace vxut {

// An exception that was caught under the library's lock, to be raised again for the host once the lock is
// left: on its way through the library it would run no destructors.
class clsHeapException {
public:
    // Raises the exception again, if there was one. It can be continued if the original could.
    void Raise() const {
        if (code_ != 0) [[unlikely]]
            RaiseException(code_, flags_ & EXCEPTION_NONCONTINUABLE, 0, nullptr);
    }
    // The filter expression of the handler that catches it.
    int Keep(const EXCEPTION_POINTERS* exception) noexcept;

private:
    DWORD code_ = 0;
    DWORD flags_ = 0;
};

// As HeapAlloc(), but returns null on every failure, and stores the exception if there was one.
void* AllocateShielded(HANDLE heap, DWORD flags, SIZE_T bytes, clsHeapException& exception);

} // namespace vxut
