// A kernel object by its handle, which the holder may or may not own.
#pragma once

#include "base/owners.h"

#include <windows.h>

#include <utility>

namespace vxut {

// A handle of 0 or INVALID_HANDLE_VALUE is none.
class clsGenericHandleObjectAutoRelease {
public:
    clsGenericHandleObjectAutoRelease() noexcept = default;
    explicit clsGenericHandleObjectAutoRelease(HANDLE handle, bool isOwned = true) noexcept
        : handle_(handle), isOwned_(isOwned) {}
    clsGenericHandleObjectAutoRelease(const clsGenericHandleObjectAutoRelease&) = delete;
    clsGenericHandleObjectAutoRelease& operator=(const clsGenericHandleObjectAutoRelease&) = delete;

    // The virtual operations, in this order.
    // Gives up what is held, and closes it if it is owned.
    virtual void Release() noexcept {
        if (IsHeld() && isOwned_) Close();
        handle_ = nullptr;
    }

protected:
    virtual void Close() noexcept { KernelHandleTraits::Close(handle_); }

public:
    // Another handle of the same object, with the same access; none if that fails.
    virtual clsAutoCloseHandle Duplicate() const {
        clsAutoCloseHandle copy;
        const HANDLE process = GetCurrentProcess();
        if (IsHeld()) {
            DuplicateHandle(process, handle_, process, copy.Receive(), 0, FALSE, DUPLICATE_SAME_ACCESS);
        }
        return copy;
    }
    virtual ~clsGenericHandleObjectAutoRelease() {
        if (IsHeld() && isOwned_) KernelHandleTraits::Close(handle_);
    }

    HANDLE Get() const noexcept { return handle_; }
    bool IsHeld() const noexcept { return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE; }

private:
    HANDLE handle_ = nullptr;
    bool isOwned_ = true;
};

} // namespace vxut
