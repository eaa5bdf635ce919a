// The trace of the stream face.
#pragma once

#include "text/string.h"

#include <windows.h>

namespace vxut {

// Switches the trace on for the process. Nothing in the library does: it is for a debugging session.
extern bool streamTraceOn;

// Writes the call of a stream method to the debug channel, and its result when the scope ends.
class clsStreamTrace {
public:
    explicit clsStreamTrace(const wchar_t* format, ...);
    clsStreamTrace(const clsStreamTrace&) = delete;
    clsStreamTrace& operator=(const clsStreamTrace&) = delete;
    ~clsStreamTrace();

    // Notes the method's result, and gives it.
    HRESULT Result(HRESULT result) noexcept;

private:
    const bool active_;
    bool hasResult_ = false;
    HRESULT result_ = S_OK;
    String call_;
};

} // namespace vxut
