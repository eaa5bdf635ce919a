// The system libraries that the engine works with: dbghelp, and those that list modules.
#pragma once

#include "base/late_load.h"

#include <windows.h>
// After windows.h, which they need:
#include <dbghelp.h>
#include <psapi.h>
#include <tlhelp32.h>

namespace vxut {

// Loads dbghelp.dll from the folder of the program, from those of the Debugging Tools for Windows, or as the
// system finds it. Freed with the object. dbghelp is not safe for threads: see clsDBGHelpWrapper.
class clsRPDBGHELP : public CLateLoadBase {
public:
    clsRPDBGHELP();

    // Loads the library if that was not tried before.
    bool IsLoaded() { return SetLibrary(kName, true); }

    clsLateFunction<decltype(::StackWalk64)> StackWalk64{*this, "StackWalk64", 44};
    clsLateFunction<DWORD WINAPI(PCSTR, PSTR, DWORD, DWORD)> UnDecorateName{*this, "UnDecorateSymbolName",
                                                                            16};
    clsLateFunction<decltype(::SymSetOptions)> SymSetOptions{*this, "SymSetOptions", 4};
    clsLateFunction<decltype(::SymGetOptions)> SymGetOptions{*this, "SymGetOptions", 0};
    clsLateFunction<BOOL WINAPI(HANDLE, PCSTR, BOOL)> SymInitializeNarrow{*this, "SymInitialize", 12};
    clsLateFunction<decltype(::SymCleanup)> SymCleanup{*this, "SymCleanup", 4};
    clsLateFunction<decltype(::SymGetSymFromAddr64)> SymGetSymFromAddr64{*this, "SymGetSymFromAddr64", 20};
    clsLateFunction<decltype(::SymGetLineFromAddr64)> SymGetLineFromAddr64{*this, "SymGetLineFromAddr64", 20};
    clsLateFunction<decltype(::SymGetModuleBase64)> SymGetModuleBase64{*this, "SymGetModuleBase64", 12};
    clsLateFunction<decltype(::SymGetModuleInfo64)> SymGetModuleInfo64{*this, "SymGetModuleInfo64", 16};
    clsLateFunction<decltype(::SymFunctionTableAccess64)> SymFunctionTableAccess64{
        *this, "SymFunctionTableAccess64", 12};
    clsLateFunction<decltype(::SymLoadModule64)> SymLoadModule64{*this, "SymLoadModule64", 28};
    clsLateFunction<decltype(::SymRegisterCallback64)> SymRegisterCallback64{*this, "SymRegisterCallback64",
                                                                             16};
    clsLateFunction<decltype(::EnumerateLoadedModules64)> EnumerateLoadedModules64{
        *this, "EnumerateLoadedModules64", 12};
    clsLateFunction<decltype(::MiniDumpWriteDump)> MiniDumpWriteDump{*this, "MiniDumpWriteDump", 28};
    clsLateFunction<decltype(::SymSetContext)> SymSetContext{*this, "SymSetContext", 12};
    clsLateFunction<decltype(::SymEnumSymbols)> SymEnumSymbols{*this, "SymEnumSymbols", 24};
    clsLateFunction<decltype(::SymGetTypeInfo)> SymGetTypeInfo{*this, "SymGetTypeInfo", 24};

protected:
    HMODULE Load(const wchar_t* name) override;

private:
    static constexpr wchar_t kName[] = L"dbghelp.dll";
};

class clsPSAPI : public CLateLoadBase {
public:
    clsPSAPI() : CLateLoadBase(L"psapi") {}

    clsLateFunction<decltype(::EnumProcessModules)> EnumProcessModules{*this, "EnumProcessModules", 16};
    clsLateFunction<decltype(::GetModuleFileNameExW)> GetModuleFileNameExW{*this, "GetModuleFileNameEx", 16};
    clsLateFunction<decltype(::GetModuleBaseNameW)> GetModuleBaseNameW{*this, "GetModuleBaseName", 16};
    clsLateFunction<decltype(::GetModuleInformation)> GetModuleInformation{*this, "GetModuleInformation", 16};
};

// Snapshots of the process, which are in kernel32, on old systems in a library of their own.
class clsToolhelp32 : public CLateLoadBase {
public:
    explicit clsToolhelp32(const wchar_t* library) : CLateLoadBase(library) {}

    clsLateFunction<decltype(::CreateToolhelp32Snapshot)> CreateToolhelp32Snapshot{
        *this, "CreateToolhelp32Snapshot", 8};
    clsLateFunction<decltype(::Module32FirstW)> Module32FirstW{*this, "Module32FirstW", 8};
    clsLateFunction<decltype(::Module32NextW)> Module32NextW{*this, "Module32NextW", 8};
};

} // namespace vxut
