#include "crash/debug_privilege.h"

#include "base/debug.h"
#include "base/owners.h"

#include <windows.h>

#include <atomic>

namespace vxut {
namespace {

constexpr scPrivilegeTexts kTexts = {L"Could not get the process token",
                                     L"Couldn't lookup SeDebugPrivilege name",
                                     L"Could not set the debug privilege"};

// No lock: a thread that is terminated within its scope would keep it.
constinit std::atomic<int> scopes{0};

} // namespace

clsDebugPrivilegeScope::clsDebugPrivilegeScope() {
    if (scopes++ == 0) SetDebugPrivilege(true, kTexts);
}

clsDebugPrivilegeScope::~clsDebugPrivilegeScope() {
    if (--scopes == 0) SetDebugPrivilege(false, kTexts);
}

void SetDebugPrivilege(bool enable, const scPrivilegeTexts& texts) {
    clsAutoCloseHandle token;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, token.Receive())) {
        DebugWrite(L"%s", texts.noToken);
        return;
    }
    TOKEN_PRIVILEGES privileges = {};
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0].Attributes = enable ? SE_PRIVILEGE_ENABLED : 0;
    if (!LookupPrivilegeValueW(nullptr, SE_DEBUG_NAME, &privileges.Privileges[0].Luid)) {
        DebugWrite(L"%s", texts.noName);
        return;
    }
    // A success with ERROR_NOT_ALL_ASSIGNED means that the account does not have the privilege.
    if (!AdjustTokenPrivileges(token.Get(), FALSE, &privileges, sizeof privileges, nullptr, nullptr) ||
        GetLastError() != ERROR_SUCCESS) {
        DebugWrite(L"%s", texts.notSet);
    }
}

} // namespace vxut
