#include "library/processor_features.h"

#include "base/system_libraries.h"
#include "library/c_run_times.h"

#include <windows.h>

namespace vxut {
namespace {

constexpr DWORD64 kAvxState = 1u << 2;

// Only some run-time libraries have these code paths and the function that disables them.
void SwitchOffFma3() {
    using Switch = int __cdecl(int);
    for (const wchar_t* name : kCRunTimes) {
        const HMODULE runTime = GetModuleHandleW(name);
        auto* const setFma3 = runTime ? FunctionOfRunTime<Switch>(runTime, "_set_FMA3_enable") : nullptr;
        if (setFma3) setFma3(0);
    }
}

bool HasAvxState() {
    auto& enabled = Kernel32().GetEnabledXStateFeatures;
    return enabled.IsAvailable() && (enabled() & kAvxState) != 0;
}

} // namespace

void DisableDefectiveMathPaths() {
    if (!IsProcessorFeaturePresent(PF_XSAVE_ENABLED)) {
        OutputDebugStringW(L"disabling XSAVE due to math library bug up to VS 2015\r\n");
        SwitchOffFma3();
    }
    if (!HasAvxState()) {
        OutputDebugStringW(L"disabling AVX due to math library bug up to VS 2015\r\n");
        SwitchOffFma3();
    }
}

} // namespace vxut
