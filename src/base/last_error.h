// Keeps the thread's last error over calls that may change it.
#pragma once

#include <windows.h>

namespace vxut {

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
