#include "crash/module_sources.h"

#include "base/debug.h"
#include "base/guard.h"
#include "base/owners.h"
#include "base/path_limits.h"

#include <algorithm>
#include <iterator>

namespace vxut {
namespace {

constexpr size_t kMostModules = 4096;

bool Add(LoadedModules& modules, uint64_t base, uint32_t size, const String& name) {
    const String path = PathOfModule(base);
    return modules.append({base, size, path.IsEmpty() ? name : path});
}

// The names may lack the folder and the extension.
BOOL CALLBACK TakeModule(PCSTR name, DWORD64 base, ULONG size, void* modules) {
    return Guarded(FALSE,
                   [&] { return Add(*static_cast<LoadedModules*>(modules), base, size, String(name)); });
}

bool ListBySnapshotOf(clsToolhelp32& library, LoadedModules& modules) {
    if (!library.CreateToolhelp32Snapshot.IsAvailable() || !library.Module32FirstW.IsAvailable() ||
        !library.Module32NextW.IsAvailable()) {
        return false;
    }
    const clsAutoCloseFile snapshot(
        library.CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, GetCurrentProcessId()));
    if (!snapshot) return false;
    MODULEENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL isOne = library.Module32FirstW(snapshot.Get(), &entry); isOne;
         isOne = library.Module32NextW(snapshot.Get(), &entry)) {
        if (!Add(modules, reinterpret_cast<uint64_t>(entry.modBaseAddr), entry.modBaseSize, entry.szExePath))
            return false;
    }
    return !modules.isEmpty();
}

template <class Source>
bool Succeeds(LoadedModules& modules, Source source) {
    if (source()) return true;
    modules.clear();
    return false;
}

} // namespace

String PathOfModule(uint64_t base) {
    wchar_t path[kPathUnits] = L"";
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    const auto length = GetModuleFileNameW(reinterpret_cast<HMODULE>(base), path, kPathUnits);
    return length < kPathUnits ? String(path) : String();
}

bool ListByDebugHelp(clsRPDBGHELP& library, HANDLE process, LoadedModules& modules) {
    if (!library.EnumerateLoadedModules64.IsAvailable()) return false;
    DebugWriteIndented(1, L">clsDBGHELP::GetModuleListDBGHelp");
    const bool isListed = library.EnumerateLoadedModules64(process, TakeModule, &modules) != FALSE;
    DebugWriteIndented(-1, L"<clsDBGHELP::GetModuleListDBGHelp -> %d", isListed);
    return isListed && !modules.isEmpty();
}

bool ListBySnapshot(LoadedModules& modules) {
    for (const wchar_t* name : {L"kernel32", L"tlhelp32"}) {
        clsToolhelp32 library(name);
        if (Succeeds(modules, [&] { return ListBySnapshotOf(library, modules); })) return true;
    }
    return false;
}

bool ListByPsapi(HANDLE process, LoadedModules& modules) {
    clsPSAPI library;
    if (!library.EnumProcessModules.IsAvailable() || !library.GetModuleInformation.IsAvailable())
        return false;
    const clsAutoDeleteBytes<HMODULE> handles(new HMODULE[kMostModules]);
    DWORD bytes = 0;
    if (!library.EnumProcessModules(process, handles.get(), kMostModules * sizeof(HMODULE), &bytes))
        return false;
    const size_t count = std::min<size_t>(bytes / sizeof(HMODULE), kMostModules);
    for (size_t i = 0; i < count; ++i) {
        MODULEINFO information;
        if (!library.GetModuleInformation(process, handles[i], &information, sizeof information)) continue;
        wchar_t name[kPathUnits] = L"";
        const bool isPath = library.GetModuleFileNameExW.IsAvailable() &&
                            library.GetModuleFileNameExW(process, handles[i], name, kPathUnits) > 0;
        if (!isPath && library.GetModuleBaseNameW.IsAvailable())
            library.GetModuleBaseNameW(process, handles[i], name, kPathUnits);
        if (!modules.append(
                {reinterpret_cast<uint64_t>(information.lpBaseOfDll), information.SizeOfImage, name}))
            return false;
    }
    return !modules.isEmpty();
}

bool ListLoadedModules(clsRPDBGHELP& library, HANDLE process, LoadedModules& modules) {
    return Succeeds(modules, [&] { return ListByDebugHelp(library, process, modules); }) ||
           Succeeds(modules, [&] { return ListBySnapshot(modules); }) ||
           Succeeds(modules, [&] { return ListByPsapi(process, modules); });
}

} // namespace vxut
