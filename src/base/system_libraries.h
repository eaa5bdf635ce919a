// The system libraries that are reached by late binding, each with the functions that the library calls.
//
// A name without the W of its wide form means that form, which is found as the second spelling.
#pragma once

#include "base/late_load.h"

#include <windows.h>
// After windows.h, which they need:
#include <shlwapi.h>
#include <timeapi.h>
#include <urlmon.h>
#include <winnetwk.h>

namespace vxut {

// A library that every process has loaded. It is not searched for in the file system.
class clsLoadedLibrary : public CLateLoadBase {
protected:
    explicit clsLoadedLibrary(const wchar_t* library, clsCriticalSection* familyLock = nullptr);
    HMODULE Load(const wchar_t* name) override { return GetModuleHandleW(name); }
};

// The wrappers of kernel32 share one lock.
class clsKernel32Base : public clsLoadedLibrary {
protected:
    clsKernel32Base();
};

class clsKernel32 : public clsKernel32Base {
public:
    clsLateFunction<decltype(::IsBadReadPtr)> IsBadReadPtr{*this, "IsBadReadPtr", 8};
    clsLateFunction<decltype(::IsBadWritePtr)> IsBadWritePtr{*this, "IsBadWritePtr", 8};
    clsLateFunction<decltype(::IsBadStringPtr)> IsBadStringPtr{*this, "IsBadStringPtr", 8};
    clsLateFunction<decltype(::IsBadStringPtrA)> IsBadStringPtrA{*this, "IsBadStringPtrA", 8};
    clsLateFunction<decltype(::HeapWalk)> HeapWalk{*this, "HeapWalk", 8};
    clsLateFunction<decltype(::HeapValidate)> HeapValidate{*this, "HeapValidate", 12};
    clsLateFunction<decltype(::HeapCompact)> HeapCompact{*this, "HeapCompact", 8};
    clsLateFunction<decltype(::GetCurrentProcessorNumber)> GetCurrentProcessorNumber{
        *this, "GetCurrentProcessorNumber", 0};
    clsLateFunction<decltype(::GetCurrentProcessorNumberEx)> GetCurrentProcessorNumberEx{
        *this, "GetCurrentProcessorNumberEx", 4};
    clsLateFunction<decltype(::GetTickCount64)> GetTickCount64{*this, "GetTickCount64", 0};
    clsLateFunction<decltype(::LCMapStringEx)> LCMapStringEx{*this, "LCMapStringEx", 36};
    clsLateFunction<decltype(::GetFullPathName)> GetFullPathName{*this, "GetFullPathName", 16};
    clsLateFunction<decltype(::GetLongPathName)> GetLongPathName{*this, "GetLongPathName", 12};
    clsLateFunction<decltype(::GetUserDefaultUILanguage)> GetUserDefaultUILanguage{
        *this, "GetUserDefaultUILanguage", 0};
    clsLateFunction<decltype(::RtlCaptureContext)> RtlCaptureContext{*this, "RtlCaptureContext", 4};
    clsLateFunction<decltype(::SetThreadStackGuarantee)> SetThreadStackGuarantee{
        *this, "SetThreadStackGuarantee", 4};
    clsLateFunction<decltype(::GetEnabledXStateFeatures)> GetEnabledXStateFeatures{
        *this, "GetEnabledXStateFeatures", 0};
    clsLateFunction<decltype(::IsDebuggerPresent)> IsDebuggerPresent{*this, "IsDebuggerPresent", 0};
    clsLateFunction<decltype(::EnumSystemLocalesEx)> EnumSystemLocalesEx{*this, "EnumSystemLocalesEx", 16};
    clsLateFunction<decltype(::LocaleNameToLCID)> LocaleNameToLCID{*this, "LocaleNameToLCID", 8};
    clsLateFunction<decltype(::LCIDToLocaleName)> LCIDToLocaleName{*this, "LCIDToLocaleName", 16};
};

class clsNTdll : public clsLoadedLibrary {
public:
    clsNTdll();

    clsLateFunction<BOOL WINAPI(CRITICAL_SECTION*)> RtlTryEnterCriticalSection{
        *this, "RtlTryEnterCriticalSection", 4};
    clsLateFunction<LONG WINAPI(CRITICAL_SECTION*)> RtlLeaveCriticalSection{*this, "RtlLeaveCriticalSection",
                                                                            4};
    clsLateFunction<USHORT WINAPI(ULONG, ULONG, void**, ULONG*)> RtlCaptureStackBackTrace{
        *this, "RtlCaptureStackBackTrace", 16};
};

class clsShlwapi : public CLateLoadBase {
public:
    clsShlwapi();

    clsLateFunction<decltype(::PathCanonicalize)> PathCanonicalize{*this, "PathCanonicalize", 8};
    clsLateFunction<decltype(::PathIsNetworkPath)> PathIsNetworkPath{*this, "PathIsNetworkPath", 4};
};

class clsUrlMon : public CLateLoadBase {
public:
    clsUrlMon();

    clsLateFunction<decltype(::URLDownloadToFile)> URLDownloadToFile{*this, "URLDownloadToFile", 20};
};

class clsMpr : public CLateLoadBase {
public:
    clsMpr();

    clsLateFunction<decltype(::WNetOpenEnum)> WNetOpenEnum{*this, "WNetOpenEnum", 20};
    clsLateFunction<decltype(::WNetEnumResource)> WNetEnumResource{*this, "WNetEnumResource", 16};
    clsLateFunction<decltype(::WNetCloseEnum)> WNetCloseEnum{*this, "WNetCloseEnum", 4};
    clsLateFunction<decltype(::WNetGetUniversalName)> WNetGetUniversalName{*this, "WNetGetUniversalName", 16};
};

class clsWinMM : public CLateLoadBase {
public:
    clsWinMM();

    clsLateFunction<decltype(::timeBeginPeriod)> timeBeginPeriod{*this, "timeBeginPeriod", 4};
    clsLateFunction<decltype(::timeEndPeriod)> timeEndPeriod{*this, "timeEndPeriod", 4};
};

// One object of each for the process, alive until the library is unloaded.
clsKernel32& Kernel32();
clsNTdll& NTdll();
clsMpr& Mpr();
clsShlwapi& Shlwapi();
clsUrlMon& UrlMon();
clsWinMM& WinMM();

} // namespace vxut
