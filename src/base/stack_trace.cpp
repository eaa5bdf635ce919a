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
constexpr uint32_t kMostOwn = 16; // frames of the library itself that are captured in addition
// The most frames that the system captures: fewer before Windows Vista.
constexpr uint32_t kMaxFrames = 200;
constexpr uint32_t kMaxFramesBeforeVista = 61;

} // namespace

// The linker's name for the start of the module that this code is linked into.
extern "C" const IMAGE_DOS_HEADER __ImageBase;

uint32_t CaptureStack(uint32_t skip, void** frames, uint32_t capacity) {
    auto& capture = NTdll().RtlCaptureStackBackTrace;
    if (Identity().osVersion < 0x0501 || !capture.IsAvailable()) return 0;
    const uint32_t limit = Identity().osVersion < 0x0600 ? kMaxFramesBeforeVista : kMaxFrames;
    return capture(skip, std::min(capacity, limit - std::min(skip, limit)), frames, nullptr);
}

uint32_t LeadingOwnFrames(void* const* frames, uint32_t count) {
    const auto start = reinterpret_cast<uintptr_t>(&__ImageBase);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(start + __ImageBase.e_lfanew);
    const uintptr_t size = headers->OptionalHeader.SizeOfImage;
    uint32_t own = 0;
    while (own < count && reinterpret_cast<uintptr_t>(frames[own]) - start < size) ++own;
    return own;
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
    const uint32_t count = CaptureStack(0, frames, std::min(skip + kListed + kMostOwn, kMaxFrames));
    const uint32_t first = LeadingOwnFrames(frames, count) + skip;
    for (uint32_t i = first; i < std::min(count, first + kListed); ++i) {
        wchar_t path[MAX_PATH];
        if (!ModuleOfAddress(frames[i], path)) continue;
        wchar_t text[MAX_PATH + 16] = L"";
        if (path[0]) _snwprintf(text, MAX_PATH + 15, L" [called by %s]", path);
        DebugWriteAs(nullptr, 0, L"\n%s", text);
    }
    DebugWriteAs(nullptr, 0, L"\n%s", L"");
}

// The first region of a module begins at its allocation base. Addresses are printed with their low 32 bits.
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
