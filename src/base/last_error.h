// The thread's last error: preserved across calls that may change it, and read after calls that failed.
#pragma once

#include <windows.h>

namespace vxut {

// Restores, at the end of the scope, the last error that was set at its start.
class clsLastErrorScope {
public:
    clsLastErrorScope() noexcept : error_(GetLastError()) {}
    ~clsLastErrorScope() { SetLastError(error_); }
    clsLastErrorScope(const clsLastErrorScope&) = delete;
    clsLastErrorScope& operator=(const clsLastErrorScope&) = delete;

private:
    DWORD error_;
};

// The error of a call that has failed. Never ERROR_SUCCESS, not even if the call has not set one.
inline DWORD ErrorOfFailedCall() noexcept {
    const DWORD error = GetLastError();
    return error == ERROR_SUCCESS ? ERROR_GEN_FAILURE : error;
}

} // namespace vxut
