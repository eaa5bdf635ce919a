#include "files/network_path.h"

#include "base/grow_buffer.h"
#include "base/path_limits.h"
#include "base/system_libraries.h"
#include "text/shared_regex.h"

#include <winnetwk.h>

#include <cstdint>
#include <cwchar>
#include <memory>
#include <string_view>
#include <vector>

namespace vxut {
namespace {

constexpr DWORD kBufferBytes = 128 * 1024; // more than the longest path
constexpr int kMostAttempts = 8;           // for one answer that asks for a larger buffer each time

struct CloseEnumeration {
    void operator()(void* enumeration) const { Mpr().WNetCloseEnum(enumeration); }
};
using Enumeration = std::unique_ptr<void, CloseEnumeration>;

// Starts to list the connections that the system restores at the next login.
Enumeration OpenRememberedConnections() {
    clsMpr& mpr = Mpr();
    HANDLE enumeration = nullptr;
    const bool isAvailable = mpr.WNetOpenEnum.IsAvailable() && mpr.WNetEnumResource.IsAvailable() &&
                             mpr.WNetCloseEnum.IsAvailable();
    if (!isAvailable ||
        mpr.WNetOpenEnum(RESOURCE_REMEMBERED, RESOURCETYPE_DISK, 0, nullptr, &enumeration) != NO_ERROR)
        return nullptr;
    return Enumeration(enumeration);
}

// Returns the drive that is connected to a share; empty if there is none.
String DriveOfShare(const IString& share) {
    const Enumeration enumeration = OpenRememberedConnections();
    if (!enumeration) return {};
    std::vector<uint64_t> buffer(kBufferBytes / sizeof(uint64_t)); // aligned for the records
    for (int attempt = 0; attempt < kMostAttempts;) {
        auto count = static_cast<DWORD>(-1);
        auto bytes = static_cast<DWORD>(buffer.size() * sizeof(uint64_t));
        const DWORD result = Mpr().WNetEnumResource(enumeration.get(), &count, buffer.data(), &bytes);
        if (result == ERROR_MORE_DATA) {
            buffer.resize(buffer.size() * 2);
            ++attempt;
            continue;
        }
        if (result != NO_ERROR) return {};
        const auto* const resources = reinterpret_cast<const NETRESOURCEW*>(buffer.data());
        for (DWORD index = 0; index < count; ++index) {
            const NETRESOURCEW& resource = resources[index];
            if (resource.lpLocalName && resource.lpRemoteName && share == resource.lpRemoteName)
                return resource.lpLocalName;
        }
    }
    return {};
}

// Whether a drive is a disk of the machine itself. The network providers, which take long to answer, need not
// be asked about it.
bool IsLocalDisk(wchar_t letter) {
    constexpr std::wstring_view kDisk = LR"(\Device\HarddiskVolume)";
    const wchar_t drive[] = {letter, L':', L'\0'};
    wchar_t device[kPathBufferUnits];
    return QueryDosDeviceW(drive, device, kPathBufferUnits) != 0 &&
           _wcsnicmp(device, kDisk.data(), kDisk.size()) == 0;
}

} // namespace

String EnsureLocalPath(const String& path) {
    static clsSharedRegEx pattern(LR"(^(\\\\(?:.*?)\\(?:.*?))(\\.*|)$)");
    clsRegExMatchList groups;
    if (!pattern.Match(path, &groups)) return path;
    const String drive = DriveOfShare(groups.get(1).text);
    return drive.IsEmpty() ? path : drive + groups.get(2).text;
}

String EnsureUncPath(const String& path) {
    static clsSharedRegEx pattern(L"(?i)^([A-Z]:)(.*)$");
    if (!pattern.Match(path) || IsLocalDisk(path[0]) || !Mpr().WNetGetUniversalName.IsAvailable())
        return path;
    std::vector<uint64_t> buffer(kBufferBytes / sizeof(uint64_t)); // aligned for the record
    DWORD bytes = kBufferBytes;
    const DWORD result =
        Mpr().WNetGetUniversalName(path.Text(), UNIVERSAL_NAME_INFO_LEVEL, buffer.data(), &bytes);
    if (result != NO_ERROR) return path;
    const auto* const name = reinterpret_cast<const UNIVERSAL_NAME_INFOW*>(buffer.data());
    return name->lpUniversalName ? name->lpUniversalName : path;
}

} // namespace vxut
