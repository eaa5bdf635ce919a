// Names and properties of the process and of the library. Written at load only; any thread may read them
// afterwards without a lock.
#pragma once

#include "base/path_limits.h"

#include <windows.h>

#include <cstdint>

namespace vxut {

inline constexpr uint16_t kWindowsVista = 0x0600; // as osVersion

// Paths are in upper case, and so is what is taken from them.
struct scProcessIdentity {
    HMODULE library = nullptr; // null again after detach

    wchar_t processPath[kPathUnits] = {};
    wchar_t processFileName[kPathUnits] = {};
    wchar_t processBaseName[256] = {};
    wchar_t processDirectory[kPathUnits] = {}; // with its drive and the backslash at its end

    wchar_t libraryPath[kPathUnits] = {};
    wchar_t libraryFileName[kPathUnits] = {};
    wchar_t libraryBaseName[256] = {};
    wchar_t libraryDirectory[kPathUnits] = {};

    uint16_t osVersion = 0; // the major version in the high byte: 0x0501, kWindowsVista
    uint32_t sessionId = 0; // 0 unless the session is a remote one
    HANDLE activationContext = INVALID_HANDLE_VALUE;
};

const scProcessIdentity& Identity() noexcept;

// The steps of load and unload that write the block. Called under the loader's lock.
void FillIdentity(HMODULE library);
void CreateActivationContext();
void ClearLibraryHandle() noexcept;

} // namespace vxut
