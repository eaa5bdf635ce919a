// The C run-time libraries that are loaded into the process, beside the one that the library itself uses.
#pragma once

#include <windows.h>

#include <iterator>

namespace vxut {

inline constexpr const wchar_t* kCRunTimes[] = {
    L"ucrtbase", L"ucrtbased", L"msvcrt",   L"msvcr80",   L"msvcr80d", L"msvcr90",   L"msvcr90d",
    L"msvcr100", L"msvcr100d", L"msvcr110", L"msvcr110d", L"msvcr120", L"msvcr120d",
};
inline constexpr size_t kCRunTimeCount = std::size(kCRunTimes);

// Returns a function of a run-time library, or null if it has none of that name.
template <class Function>
Function* FunctionOfRunTime(HMODULE runTime, const char* name) noexcept {
    // NOLINTNEXTLINE(bugprone-casting-through-void): GetProcAddress() has one type for all functions
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(runTime, name)));
}

} // namespace vxut
