// Modules and frames as lines of text.
#pragma once

#include "util/debug_help.h"

#include <cstdint>

namespace vxut {

// Takes lines, one at a time and without their ends. Formats are Microsoft's.
class clsDebugOutput {
public:
    virtual void Line(const wchar_t* format, ...) = 0;

protected:
    ~clsDebugOutput() = default;
};

// How addresses are shown: reports have 8 digits, lists for developers 16.
enum class AddressForm { kShort, kLong };

// Write nothing but a report to the debug channel if the record has the size of another build. Allocate
// nothing.
void WriteModuleLine(const DBGModuleItem& module, clsDebugOutput& output);
void WriteFrameLines(const DBGStackTraceItem& frame, AddressForm form, clsDebugOutput& output);

// Walks the calling thread's stack and writes its frames. frameMode is UTIL_DEBUGHELP_FRAME_*. Opens a job of
// its own.
void DumpStackTraceEx(int32_t depth, uint32_t frameMode, clsDebugOutput& output);

} // namespace vxut
