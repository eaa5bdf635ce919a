#include "base/identity.h"

#include "base/default_code_page.h"
#include "base/owners.h"

#include <algorithm>
#include <cwchar>

namespace vxut {
namespace {

constexpr int kRemoteSessionMetric = 0x1000;
constexpr int kLibraryManifest = 2;
constexpr int kProcessManifest = 1;

scProcessIdentity identity;
clsAutoReleaseActivationContext activationContext;

// Copies the units from begin to end, as many as fit.
template <size_t N>
void CopyRange(wchar_t (&target)[N], const wchar_t* begin, const wchar_t* end) {
    const auto length = std::min<size_t>(static_cast<size_t>(end - begin), N - 1);
    std::copy_n(begin, length, target);
    target[length] = L'\0';
}

// Fills the path of a module, and its parts.
template <size_t B>
void FillPath(HMODULE module, wchar_t (&path)[kPathUnits], wchar_t (&fileName)[kPathUnits],
              wchar_t (&baseName)[B], wchar_t (&directory)[kPathUnits]) {
    GetModuleFileNameW(module, path, kPathUnits);
    path[kPathUnits - 1] = L'\0';
    CharUpperW(path);
    const wchar_t* end = path + std::wcslen(path);
    const wchar_t* name = end;
    while (name > path && !std::wcschr(L"\\/:", name[-1])) --name;
    const wchar_t* dot = std::wcsrchr(name, L'.');
    CopyRange(directory, path, name);
    CopyRange(fileName, name, end);
    CopyRange(baseName, name, dot ? dot : end);
}

uint16_t OsVersion() {
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
    const auto version = static_cast<uint16_t>(GetVersion());
#pragma clang diagnostic pop
    return static_cast<uint16_t>(version << 8 | version >> 8);
}

uint32_t SessionId() {
    DWORD sessionId = 0;
    if (GetSystemMetrics(kRemoteSessionMetric)) ProcessIdToSessionId(GetCurrentProcessId(), &sessionId);
    return sessionId;
}

} // namespace

const scProcessIdentity& Identity() noexcept { return identity; }

void FillIdentity(HMODULE library) {
    identity.library = library;
    SetDefaultCodePage(GetACP());
    FillPath(nullptr, identity.processPath, identity.processFileName, identity.processBaseName,
             identity.processDirectory);
    FillPath(library, identity.libraryPath, identity.libraryFileName, identity.libraryBaseName,
             identity.libraryDirectory);
    identity.osVersion = OsVersion();
    identity.sessionId = SessionId();
}

void CreateActivationContext() {
    const bool isLibrary = identity.library != nullptr;
    ACTCTXW description = {};
    description.cbSize = sizeof description;
    description.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
    description.lpSource = isLibrary ? identity.libraryPath : identity.processPath;
    description.lpResourceName = MAKEINTRESOURCEW(isLibrary ? kLibraryManifest : kProcessManifest);
    description.hModule = identity.library;
    clsAutoReleaseActivationContext created(CreateActCtxW(&description));
    if (!created) {
        OutputDebugStringW(L"hActCtx == NULL, no manifest added, I guess");
        return;
    }
    activationContext = std::move(created);
    identity.activationContext = activationContext.Get();
}

void ClearLibraryHandle() noexcept { identity.library = nullptr; }

} // namespace vxut
