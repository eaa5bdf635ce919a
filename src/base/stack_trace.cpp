#include "base/stack_trace.h"

#include "base/debug.h"
#include "base/identity.h"
#include "base/system_libraries.h"

#include <algorithm>
#include <cstdio>

namespace vxut {
namespace {

constexpr uint32_t kMaxSkip = 256;
constexpr uint32_t kListed = 20;
// The most frames that the system captures: fewer before Windows Vista.
constexpr uint32_t kMaxFrames = 200;
constexpr uint32_t kMaxFramesBeforeVista = 61;

} // namespace

uint32_t CaptureStack(uint32_t skip, void** frames, uint32_t capacity) {
    auto& capture = NTdll().RtlCaptureStackBackTrace;
    if (Identity().osVersion < 0x0501 || !capture.IsAvailable()) return 0;
    const uint32_t limit = Identity().osVersion < 0x0600 ? kMaxFramesBeforeVista : kMaxFrames;
    return capture(skip, std::min(capacity, limit - std::min(skip, limit)), frames, nullptr);
}

bool ModuleOfAddress(const void* address, wchar_t (&path)[MAX_PATH]) {
    path[0] = L'\0';
    MEMORY_BASIC_INFORMATION region;
    if (VirtualQuery(address, &region, sizeof region) != sizeof region || region.State == MEM_FREE)
        return false;
    GetModuleFileNameW(static_cast<HMODULE>(region.AllocationBase), path, MAX_PATH);
    return true;
}

void DebugWriteStackTrace(uint32_t skip) {
    if (skip > kMaxSkip) return;
    void* frames[kMaxFrames];
    const uint32_t count = CaptureStack(0, frames, std::min(skip + kListed, kMaxFrames));
    for (uint32_t i = skip; i < count; ++i) {
        wchar_t path[MAX_PATH];
        if (!ModuleOfAddress(frames[i], path)) continue;
        wchar_t text[MAX_PATH + 16] = L"";
        if (path[0]) _snwprintf(text, MAX_PATH + 15, L" [called by %s]", path);
        DebugWriteAs(nullptr, 0, L"\n%s", text);
    }
    DebugWriteAs(nullptr, 0, L"\n%s", L"");
}

// A module's first region begins where its allocation does. Addresses print with their low 32 bits.
void DebugWriteModules() {
    if (!DebugIsActive()) return;
    DebugWrite(L"Memory image addresses of modules:");
    MEMORY_BASIC_INFORMATION region;
    for (uintptr_t start = 0; VirtualQuery(reinterpret_cast<void*>(start), &region, sizeof region);) {
        const uintptr_t end = start + region.RegionSize;
        wchar_t path[MAX_PATH] = L"";
        if (region.State != MEM_FREE && region.BaseAddress == region.AllocationBase)
            GetModuleFileNameW(static_cast<HMODULE>(region.AllocationBase), path, MAX_PATH);
        if (path[0])
            DebugWrite(L"0x%08x-0x%08x: %s", static_cast<uint32_t>(start), static_cast<uint32_t>(end - 1),
                       path);
        if (end <= start) break;
        start = end;
    }
}

} // namespace vxut
