// The right to debug processes, which helps to read the process's own threads and memory.
#pragma once

namespace vxut {

// Enables the privilege for a scope; scopes may be nested and on any threads. Failures are reported and
// ignored: most accounts do not have the privilege.
class clsDebugPrivilegeScope {
public:
    clsDebugPrivilegeScope();
    ~clsDebugPrivilegeScope();
    clsDebugPrivilegeScope(const clsDebugPrivilegeScope&) = delete;
    clsDebugPrivilegeScope& operator=(const clsDebugPrivilegeScope&) = delete;
};

// The two failures that a change of the privilege can have beside a missing name, as they are reported.
struct scPrivilegeTexts {
    const wchar_t* noToken;
    const wchar_t* noName;
    const wchar_t* notSet;
};

// Enables or disables the privilege of the process.
void SetDebugPrivilege(bool enable, const scPrivilegeTexts& texts);

} // namespace vxut
