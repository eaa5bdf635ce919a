#include "library/processor_features.h"

#include "base/system_libraries.h"

#include <windows.h>

namespace vxut {
namespace {

constexpr DWORD64 kAvxState = 1u << 2;

// Only some run-time libraries have these paths, and with them the switch.
void SwitchOffFma3() {
    constexpr const wchar_t* kRunTimes[] = {L"ucrtbase", L"msvcr120", L"msvcrt"};
    for (const wchar_t* name : kRunTimes) {
        const HMODULE runTime = GetModuleHandleW(name);
        if (!runTime) continue;
        using Switch = int(__cdecl*)(int);
        // NOLINTNEXTLINE(bugprone-casting-through-void): GetProcAddress() has one type for all functions
        const auto setFma3 =
            reinterpret_cast<Switch>(reinterpret_cast<void*>(GetProcAddress(runTime, "_set_FMA3_enable")));
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
