#include "library/invalid_parameter.h"

#include "base/debug.h"
#include "library/c_run_times.h"

#include <cstdint>
#include <cstdlib>
#include <utility>

namespace vxut {
namespace {

using Handler = _invalid_parameter_handler;
using GetHandler = Handler __cdecl();
using SetHandler = Handler __cdecl(Handler);

// A run-time library in which the handler is installed.
struct Installation {
    HMODULE runTime = nullptr; // null if it is not installed
    Handler previous = nullptr;
};

constinit Installation installations[kCRunTimeCount] = {};

// A handler that a host had set before, such as a hook of its crash reports, has its turn after the line. The
// call does not say which run-time it comes from.
Handler PreviousHandler() {
    for (const Installation& installation : installations)
        if (installation.previous) return installation.previous;
    return nullptr;
}

void __cdecl Report(const wchar_t* expression, const wchar_t* function, const wchar_t* file, unsigned line,
                    uintptr_t reserved) {
    if (expression == nullptr) {
        DebugWrite(L"INVALID PARAMETER in CRT function detected - ignored");
    } else {
        // The quoted field has no text: the line is known in this form.
        DebugWrite(L"%ws (line %d): %ws: INVALID PARAMETER in '%ws'", file, line, function, nullptr);
    }
    if (const Handler previous = PreviousHandler()) previous(expression, function, file, line, reserved);
}

// The functions of a run-time library itself: the import library of the tool chain has copies of its own,
// with a handler that no run-time calls.
struct Functions {
    explicit Functions(HMODULE runTime)
        : get(FunctionOfRunTime<GetHandler>(runTime, "_get_invalid_parameter_handler")),
          set(FunctionOfRunTime<SetHandler>(runTime, "_set_invalid_parameter_handler")) {}

    explicit operator bool() const { return get && set; }

    GetHandler* get;
    SetHandler* set;
};

} // namespace

void InstallInvalidParameterHandler() {
    for (size_t i = 0; i < kCRunTimeCount; ++i) {
        const HMODULE runTime = GetModuleHandleW(kCRunTimes[i]);
        if (!runTime) continue;
        const Functions functions(runTime);
        if (functions && functions.get() != Report) installations[i] = {runTime, functions.set(Report)};
    }
}

void RemoveInvalidParameterHandler() {
    for (size_t i = 0; i < kCRunTimeCount; ++i) {
        const Installation installation = std::exchange(installations[i], Installation());
        // A run-time that has been unloaded took the handler with it.
        if (!installation.runTime || GetModuleHandleW(kCRunTimes[i]) != installation.runTime) continue;
        const Functions functions(installation.runTime);
        if (functions && functions.get() == Report) functions.set(installation.previous);
    }
}

} // namespace vxut
