#include "diagnostics/stack_trace.h"

#include "diagnostics/debug.h"
#include "frame/identity.h"
#include "frame/system_libraries.h"

#include <algorithm>
#include <cstdio>

namespace vxut {
namespace {

constexpr uint32_t kMaxSkip = 256;
constexpr uint32_t kListed = 20;
// The most frames that the system captures: fewer before Windows Vista.
constexpr uint32_t kMaxFrames = 200;
constexpr uint32_t kMaxFramesBeforeVista = 61;

// The path of the module that an address lies in; empty for an address outside of all.
void ModuleOfAddress(const void* address, wchar_t (&name)[MAX_PATH]) {
    name[0] = L'\0';
    MEMORY_BASIC_INFORMATION region;
    if (VirtualQuery(address, &region, sizeof region) != sizeof region || region.State == MEM_FREE) return;
    GetModuleFileNameW(static_cast<HMODULE>(region.AllocationBase), name, MAX_PATH);
}

} // namespace

uint32_t CaptureStack(uint32_t skip, void** frames, uint32_t capacity) {
    auto& capture = NTdll().RtlCaptureStackBackTrace;
    if (Identity().osVersion < 0x0501 || !capture.IsAvailable()) return 0;
    const uint32_t limit = Identity().osVersion < 0x0600 ? kMaxFramesBeforeVista : kMaxFrames;
    return capture(skip, std::min(capacity, limit - std::min(skip, limit)), frames, nullptr);
}

void DebugWriteStackTrace(uint32_t skip) {
    if (skip > kMaxSkip) return;
    void* frames[kMaxFrames];
    const uint32_t count = CaptureStack(0, frames, std::min(skip + kListed, kMaxFrames));
    for (uint32_t i = skip; i < count; ++i) {
        wchar_t name[MAX_PATH];
        wchar_t text[MAX_PATH + 16] = L"";
        ModuleOfAddress(frames[i], name);
        if (name[0]) _snwprintf(text, MAX_PATH + 15, L" [called by %s]", name);
        DebugWrite(L"\n%s", text);
    }
    DebugWrite(L"\n%s", L"");
}

} // namespace vxut
