// A kernel object, held by a handle that is owned or borrowed.
#pragma once

#include "base/owners.h"

#include <windows.h>

#include <utility>

namespace vxut {

// Handles of 0 and INVALID_HANDLE_VALUE count as no handle. An owned handle is closed by Release() and by the
// destructor. Not synchronised: Release() must not run while another thread uses the handle.
class clsGenericHandleObjectAutoRelease {
public:
    clsGenericHandleObjectAutoRelease() noexcept = default;
    explicit clsGenericHandleObjectAutoRelease(HANDLE handle, bool isOwned = true) noexcept
        : handle_(handle), isOwned_(isOwned) {}
    clsGenericHandleObjectAutoRelease(const clsGenericHandleObjectAutoRelease&) = delete;
    clsGenericHandleObjectAutoRelease& operator=(const clsGenericHandleObjectAutoRelease&) = delete;

    // The virtual operations, in this order.
    // Ends the hold, and closes the handle if it is owned.
    virtual void Release() noexcept {
        if (IsHeld() && isOwned_) Close();
        handle_ = nullptr;
    }

protected:
    virtual void Close() noexcept { scKernelHandleTraits::Close(handle_); }

public:
    // Returns another handle of the same object with the same access, or none on failure.
    virtual clsAutoCloseHandle Duplicate() const {
        clsAutoCloseHandle copy;
        const HANDLE process = GetCurrentProcess();
        if (IsHeld()) {
            DuplicateHandle(process, handle_, process, copy.Receive(), 0, FALSE, DUPLICATE_SAME_ACCESS);
        }
        return copy;
    }
    virtual ~clsGenericHandleObjectAutoRelease() {
        if (IsHeld() && isOwned_) scKernelHandleTraits::Close(handle_);
    }

    HANDLE Get() const noexcept { return handle_; }
    bool IsHeld() const noexcept { return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE; }

private:
    HANDLE handle_ = nullptr;
    bool isOwned_ = true;
};

} // namespace vxut
