#include "base/system_libraries.h"

namespace vxut {
namespace {

clsCriticalSection& KernelLock() {
    static clsCriticalSection lock;
    return lock;
}

template <class Library>
Library& TheOne() {
    static Library library;
    return library;
}

} // namespace

clsLoadedLibrary::clsLoadedLibrary(const wchar_t* library, clsCriticalSection* familyLock)
    : CLateLoadBase(library, familyLock) {
    SetFreeAtEnd(false);
}

clsKernel32Base::clsKernel32Base() : clsLoadedLibrary(L"kernel32", &KernelLock()) {}
clsNTdll::clsNTdll() : clsLoadedLibrary(L"ntdll") {}
clsMpr::clsMpr() : CLateLoadBase(L"mpr") { SetFreeAtEnd(false); }
clsShlwapi::clsShlwapi() : CLateLoadBase(L"shlwapi") { SetFreeAtEnd(false); }
clsUrlMon::clsUrlMon() : CLateLoadBase(L"urlmon") { SetFreeAtEnd(false); }
clsWinMM::clsWinMM() : CLateLoadBase(L"winmm") { SetFreeAtEnd(false); }

clsKernel32& Kernel32() { return TheOne<clsKernel32>(); }
clsNTdll& NTdll() { return TheOne<clsNTdll>(); }
clsMpr& Mpr() { return TheOne<clsMpr>(); }
clsShlwapi& Shlwapi() { return TheOne<clsShlwapi>(); }
clsUrlMon& UrlMon() { return TheOne<clsUrlMon>(); }
clsWinMM& WinMM() { return TheOne<clsWinMM>(); }

} // namespace vxut
