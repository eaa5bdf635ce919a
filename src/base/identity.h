// Names and properties of the process and of the library. Written at load only; any thread may read them
// afterwards without a lock.
#pragma once

#include <windows.h>

#include <cstdint>

namespace vxut {

// Paths are in upper case, and so is what is taken from them.
struct ProcessIdentity {
    HMODULE library = nullptr; // null again after detach

    wchar_t processPath[260] = {};
    wchar_t processFileName[260] = {};
    wchar_t processBaseName[256] = {};
    wchar_t processDirectory[260] = {}; // with its drive and the backslash at its end

    wchar_t libraryPath[260] = {};
    wchar_t libraryFileName[260] = {};
    wchar_t libraryBaseName[256] = {};
    wchar_t libraryDirectory[260] = {};

    uint16_t osVersion = 0; // the major version in the high byte: 0x0501, 0x0600
    uint32_t sessionId = 0; // 0 unless the session is a remote one
    HANDLE activationContext = INVALID_HANDLE_VALUE;
};

const ProcessIdentity& Identity() noexcept;

// The steps of load and unload that write the block. Called under the loader's lock.
void FillIdentity(HMODULE library);
void CreateActivationContext();
void ClearLibraryHandle() noexcept;

} // namespace vxut
