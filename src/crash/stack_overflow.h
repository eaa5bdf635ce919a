// The report of a stack overflow, which needs another stack.
#pragma once

#include <windows.h>

#include <cstdint>

namespace vxut {

// Sets how many bytes of its stack a thread keeps for the time after an overflow; 0, the initial state,
// switches such reports off. Starts the thread that writes them. Returns false if it cannot be started.
bool SetStackReserve(uint32_t bytes);

// Gives the calling thread its reserve, if there is to be one.
void PrepareForStackOverflow();

// Has the overflow of the calling thread reported by the other thread, and waits for that. Does nothing if
// such reports are off.
void ReportStackOverflow(EXCEPTION_POINTERS* exception);

// The thread whose fault the calling thread reports: itself, unless it reports an overflow.
DWORD FaultingThreadId() noexcept;

} // namespace vxut
