// The outcome of an operation on files or streams.
#pragma once

#include <windows.h>

#include <cstdint>

namespace vxut {

// What an export returns, and the system error that it leaves as the thread's last error.
struct scOutcome {
    int32_t code; // PROF_..., or a count
    DWORD error;
};

} // namespace vxut
