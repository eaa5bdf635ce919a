// The owner of a kernel object's handle.
#pragma once

#include <windows.h>

#include <memory>

namespace vlm {

struct CloseKernelHandle {
    void operator()(void* handle) const { CloseHandle(handle); }
};
using HandleOwner = std::unique_ptr<void, CloseKernelHandle>;

// Null and INVALID_HANDLE_VALUE both make an empty owner.
inline HandleOwner Own(HANDLE handle) {
    return HandleOwner(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

} // namespace vlm
