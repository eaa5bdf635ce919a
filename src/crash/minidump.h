// Writing a minidump of the process.
#pragma once

#include "crash/debug_help_library.h"
#include "text/string.h"

namespace vxut {

struct scMinidump {
    String path;
    EXCEPTION_POINTERS* exception = nullptr; // may be null
    DWORD faultingThread = 0;                // the one that asked for the dump
};

// Writes the dump as the registry says. Without an exception the system's function runs on a thread of its
// own. Returns S_OK, E_UNEXPECTED if the file cannot be created, E_FAIL if the dump cannot be written.
HRESULT WriteMinidump(clsRPDBGHELP& library, HANDLE process, const scMinidump& dump);

} // namespace vxut
