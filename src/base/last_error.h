// Preserves the thread's last error across calls that may change it.
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

} // namespace vxut
