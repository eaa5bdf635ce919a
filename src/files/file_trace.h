// The trace of the stream interface of files.
#pragma once

#include "text/string.h"

#include <windows.h>

namespace vxut {

// Whether the trace is on for the process. Nothing in the library sets it; a debugger does.
extern bool streamTraceOn;

// Writes the call of a stream method to the debug channel, and its result when the scope ends.
class clsStreamTrace {
public:
    explicit clsStreamTrace(const wchar_t* format, ...);
    clsStreamTrace(const clsStreamTrace&) = delete;
    clsStreamTrace& operator=(const clsStreamTrace&) = delete;
    ~clsStreamTrace();

    // Remembers the method's result for the closing line, and returns it.
    HRESULT Result(HRESULT result) noexcept;

private:
    const bool active_;
    bool hasResult_ = false;
    HRESULT result_ = S_OK;
    String call_;
};

} // namespace vxut
