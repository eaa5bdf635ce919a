#include "system/environment_policy.h"

#include "base/debug.h"
#include "base/grow_buffer.h"
#include "base/identity.h"
#include "base/owners.h"
#include "containers/list.h"
#include "text/settings.h"
#include "util/environment.h"

#include <algorithm>
#include <iterator>

namespace vxut {
namespace {

// Constructed with the other globals of the library, before any caller can ask for them.
clsCriticalSection gdiThreadingSection;
clsCriticalSection debugHelpThreadingSection;

// The development server has its version in its name, so only the beginning is compared.
struct ProcessNameRule {
    const wchar_t* name;
    int64_t units; // the length that is compared, -1 for all
};
constexpr ProcessNameRule kWebServers[] = {
    {L"aspnet_wp", -1}, {L"iisexpress", -1}, {L"w3wp", -1}, {L"WebDev.WebServer", 16}};

bool IsWebServer(const IString& processName) {
    return std::any_of(std::begin(kWebServers), std::end(kWebServers), [&](const ProcessNameRule& rule) {
        return processName.CompareTo(rule.name, rule.units) == 0;
    });
}

clsAutoFreeSid NtAuthoritySid(DWORD subAuthority) {
    SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
    clsAutoFreeSid sid;
    AllocateAndInitializeSid(&authority, 1, subAuthority, 0, 0, 0, 0, 0, 0, 0, sid.Receive());
    return sid;
}

// Returns an empty text for a name of more than 32 units: none of the names that are compared is as long.
String UserName() {
    wchar_t name[33] = L"";
    DWORD units = static_cast<DWORD>(std::size(name));
    return GetUserNameW(name, &units) ? String(name) : String();
}

// The token of the process, not of the thread: an impersonated user does not change the kind of environment.
EnvironmentType TypeOfProcessToken() {
    clsAutoCloseHandle token;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.Receive())) return kEnvironmentUnknown;
    clsGrowBuffer<BYTE, 300> groups;
    const DWORD bytes = groups.Fill([&](BYTE* target, DWORD capacity) {
        DWORD needed = 0;
        if (GetTokenInformation(token.Get(), TokenGroups, target, capacity, &needed)) return needed;
        return GetLastError() == ERROR_INSUFFICIENT_BUFFER && needed > capacity ? needed : 0;
    });
    return bytes > 0 ? TypeOfTokenGroups(*reinterpret_cast<const TOKEN_GROUPS*>(groups.Get()))
                     : kEnvironmentUnknown;
}

bool IsWindowStationHidden() {
    USEROBJECTFLAGS flags = {};
    return GetUserObjectInformationW(GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof flags, nullptr) &&
           (flags.dwFlags & WSF_VISIBLE) == 0;
}

} // namespace

// An unreadable user root means that the account has no loaded profile, as that of a service.
EnvironmentType DecideEnvironment(const scEnvironmentFacts& facts) {
    const IString userName(facts.userName);
    if (userName.CompareTo(L"aspnet") == 0) return UTIL_ENVIRONMENT_WEBSERVER;
    if (IsWebServer(facts.processName)) return UTIL_ENVIRONMENT_WEBSERVER;
    if (userName.CompareTo(L"system") == 0) return UTIL_ENVIRONMENT_NONINTERACTIVE;
    if (facts.typeOfToken != kEnvironmentUnknown) return facts.typeOfToken;
    return facts.isUserRootReadable ? UTIL_ENVIRONMENT_INTERACTIVE : UTIL_ENVIRONMENT_NONINTERACTIVE;
}

EnvironmentType TypeOfTokenGroups(const TOKEN_GROUPS& groups) {
    const clsAutoFreeSid interactive = NtAuthoritySid(SECURITY_INTERACTIVE_RID);
    const clsAutoFreeSid service = NtAuthoritySid(SECURITY_SERVICE_RID);
    if (!interactive || !service) return kEnvironmentUnknown;
    const SID_AND_ATTRIBUTES* const first = groups.Groups;
    for (const auto* group = first; group != first + groups.GroupCount; ++group) {
        if (EqualSid(group->Sid, interactive.Get())) return UTIL_ENVIRONMENT_INTERACTIVE;
        if (EqualSid(group->Sid, service.Get())) return UTIL_ENVIRONMENT_NONINTERACTIVE;
    }
    return UTIL_ENVIRONMENT_NONINTERACTIVE;
}

bool DecideInteraction(const scInteractionFacts& facts, EnvironmentType type) {
    if (facts.isWindowStationHidden) {
        DebugWrite(L"suppressed UI interaction: invisible WindowStation");
        return false;
    }
    for (const String& name : facts.nonInteractiveApps.Split(L';')) {
        if (IString(name).CompareTo(facts.processName) != 0) continue;
        DebugWrite(L"suppressed UI interaction: application '%s' forced to be UI inactive by registry key",
                   facts.processName.Text());
        return false;
    }
    return type == UTIL_ENVIRONMENT_INTERACTIVE || type == UTIL_ENVIRONMENT_RESERVED;
}

clsEnvironmentPolicy& clsEnvironmentPolicy::Instance() {
    static clsEnvironmentPolicy policy;
    return policy;
}

EnvironmentType clsEnvironmentPolicy::Type() {
    const clsCriticalSectionScope scope(lock_);
    if (type_ == kEnvironmentUnknown) {
        type_ = DecideEnvironment(
            {Identity().processBaseName, UserName(), TypeOfProcessToken(), IsUserRootReadable()});
    }
    return type_;
}

bool clsEnvironmentPolicy::IsInteractionAllowed() {
    // Recursive: Type() takes the lock as well.
    const clsCriticalSectionScope scope(lock_);
    if (interaction_ == kUnknown) {
        const scInteractionFacts facts = {Identity().processBaseName, IsWindowStationHidden(),
                                          ReadSettingString(kSettingNonInteractiveApps)};
        interaction_ = DecideInteraction(facts, Type()) ? kAllowed : kNotAllowed;
    }
    return interaction_ == kAllowed;
}

clsCriticalSection& GdiThreadingSection() { return gdiThreadingSection; }

clsCriticalSection& DebugHelpThreadingSection() { return debugHelpThreadingSection; }

} // namespace vxut
