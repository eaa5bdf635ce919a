#include "profile/open_file.h"

#include "base/last_error.h"
#include "base/path_limits.h"
#include "files/path.h"

#include <string_view>

namespace vxut {
namespace {

constexpr uint64_t kLimitMilliseconds = 10000;
constexpr DWORD kSleepMilliseconds = 100;

// Whether a name that does not look like one leads to a device. The system's answer differs between its
// versions.
bool IsDeviceName(const String& name) {
    constexpr std::wstring_view kDevices = L"\\\\.\\";
    wchar_t full[MAX_PATH];
    const DWORD length = GetFullPathNameW(name.Text(), MAX_PATH, full, nullptr);
    return length > 0 && length < MAX_PATH && std::wstring_view(full).starts_with(kDevices) &&
           !std::wstring_view(name.Text()).starts_with(kDevices);
}

// Some file systems answer an over-long name with a sharing violation, which would be waited for.
bool IsTooLong(const String& name) { return FilePart(name).Length() > kMostNameUnits; }

} // namespace

const scPatience kOpenPatience{kLimitMilliseconds, [] { Sleep(kSleepMilliseconds); }};
const scPatience kSavePatience{kLimitMilliseconds, [] { SwitchToThread(); }};

DWORD OpenOnDisk(clsFile& file, const String& name, const scOpenArguments& arguments) {
    if (IsDeviceName(name) || IsTooLong(name)) return ERROR_INVALID_NAME;
    if (file.Open(name, arguments.access, arguments.disposition, arguments.share) != 0)
        return ErrorOfFailedCall();
    if (GetFileType(file.Handle()) == FILE_TYPE_DISK) return ERROR_SUCCESS;
    file.Close();
    return ERROR_INVALID_NAME;
}

DWORD OpenPatiently(clsFile& file, const String& name, const scOpenArguments& arguments,
                    const scPatience& patience) {
    return RepeatPatiently(patience, [&] { return OpenOnDisk(file, name, arguments); });
}

} // namespace vxut
