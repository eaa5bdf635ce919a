// What the system's dump function asks its callback, kept for the debug channel.
#pragma once

#include <windows.h>
// After windows.h, which it needs:
#include <dbghelp.h>

#include <cstddef>

namespace vxut {

// While a dump is written, all other threads stand still, perhaps inside the debug channel or an allocator.
// So the callback only takes notes, in memory that it has already, and Report() writes them after the call.
// What does not fit is left out.
class clsMinidumpNotes {
public:
    // leftOut is the id of a thread that the dump does not show; 0 for none.
    explicit clsMinidumpNotes(DWORD leftOut) : leftOut_(leftOut) {}

    // The callback, for which an object is the parameter.
    static BOOL CALLBACK Callback(void* notes, MINIDUMP_CALLBACK_INPUT* input,
                                  MINIDUMP_CALLBACK_OUTPUT* output);

    void Report();

private:
    static constexpr size_t kUnits = size_t{32} * 1024;

    BOOL Take(const MINIDUMP_CALLBACK_INPUT& input, MINIDUMP_CALLBACK_OUTPUT& output);
    void Note(const wchar_t* format, ...);

    const DWORD leftOut_;
    size_t length_ = 0;
    wchar_t lines_[kUnits] = {}; // each with its terminator
};

} // namespace vxut
