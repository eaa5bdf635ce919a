#include "frame/load.h"

#include "diagnostics/debug_channel.h"
#include "files/debug_log.h"
#include "frame/identity.h"
#include "frame/invalid_parameter.h"
#include "frame/processor_features.h"
#include "frame/system_libraries.h"
#include "frame/tick_count.h"
#include "frame/validate.h"

#include <atomic>

namespace vxut {
namespace {

constinit std::atomic<void (*)()> unloadSteps[static_cast<size_t>(UnloadStep::kCount)] = {};

// Resolves what is called where late binding's own locks must not be taken.
void ResolveEarly() {
    NTdll().RtlTryEnterCriticalSection.IsAvailable();
    NTdll().RtlLeaveCriticalSection.IsAvailable();
    Kernel32().IsBadStringPtr.IsAvailable(); // of String's formatting
    TickCount64();
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
    InstallDebugLogFile();
    if (clsDebugChannel* channel = clsDebugChannel::Instance()) channel->Attach();
    WarnOfBrokenRoundTrips();
}

void Detach() {
    if (Identity().library) {
        for (auto& step : unloadSteps) {
            if (const auto shutDown = step.load()) shutDown();
        }
    }
    if (clsDebugChannel* channel = clsDebugChannel::Instance()) channel->Detach();
    RemoveInvalidParameterHandler();
    ClearLibraryHandle();
}

void SetUnloadStep(UnloadStep step, void (*shutDown)()) { unloadSteps[static_cast<size_t>(step)] = shutDown; }

} // namespace vxut
