#include "library/load.h"

#include "base/guard.h"
#include "base/identity.h"
#include "base/process_end.h"
#include "base/system_libraries.h"
#include "base/unload_steps.h"
#include "checks/validate.h"
#include "files/debug_log.h"
#include "library/invalid_parameter.h"
#include "library/processor_features.h"
#include "trace/debug_channel.h"

namespace vxut {
namespace {

// Resolves the functions of the libraries that every process has loaded. They are called under locks of this
// library, among them that of the debug channel, where late binding would take its own and the loader's.
void ResolveEarly() {
    NTdll().ResolveAll();
    Kernel32().ResolveAll();
}

// A process whose own module cannot be found by its name is one in which much else fails.
void WarnOfBrokenRoundTrips() {
    if (!GetModuleHandleW(Identity().processPath)) {
        OutputDebugStringW(
            L"WARNING: the roundtrip 'GetModuleHandle(GetModuleFileName(NULL))' returns 0 and thus "
            L"implies that it does not work. DANGER! Crashes might follow!");
    }
    if (!GetModuleHandleW(Identity().processFileName)) {
        OutputDebugStringW(
            L"WARNING: the roundtrip 'GetModuleHandle(ExtractFileName(GetModuleFileName(NULL)))' "
            L"returns 0 and thus implies that it does not work. DANGER! Crashes might follow!");
    }
}

} // namespace

void Attach(HMODULE library) {
    DisableDefectiveMathPaths(); // before any floating-point work
    InstallInvalidParameterHandler();
    ResetDebuggerState();
    FillIdentity(library);
    ResolveEarly();
    CreateActivationContext();
    Guarded([] { InstallDebugLogFile(); });
    if (clsDebugChannel* channel = clsDebugChannel::Instance()) channel->Attach();
    WarnOfBrokenRoundTrips();
}

void Detach() {
    if (Identity().library) Guarded([] { RunUnloadSteps(); });
    if (clsDebugChannel* channel = clsDebugChannel::Instance()) channel->Detach();
    RemoveInvalidParameterHandler();
    ClearLibraryHandle();
}

// A terminated thread may have left any data of the library inconsistent.
[[gnu::noinline]] void DetachAtProcessEnd() {
    isProcessEnding.store(true);
    __try {
        Detach();
    } __except (EXCEPTION_EXECUTE_HANDLER) {
    }
}

} // namespace vxut
