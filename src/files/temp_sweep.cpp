#include "files/temp_sweep.h"

#include "base/debug.h"
#include "base/last_error.h"
#include "base/library_version.h"
#include "base/owners.h"
#include "checks/validate.h"
#include "containers/containers.h"
#include "files/file.h"
#include "files/path.h"
#include "locale/system_time.h"
#include "locale/time_stamp.h"

namespace vxut {
namespace {

constexpr int64_t kHour = int64_t{60} * 60 * 1000; // in milliseconds
constexpr int64_t kIdleTime = 3 * kHour;
constexpr int64_t kSweptAge = kHour;
constexpr wchar_t kSignalExtension[] = L".signal";

SYSTEMTIME Before(SYSTEMTIME time, int64_t milliseconds) {
    AddMilliseconds(time, -milliseconds);
    return time;
}

String NamePrefix() {
    String prefix;
    prefix.Format(L"_%d_", kMajorVersion);
    return prefix;
}

// The names of the files to delete. A search that ends early finds the others next time.
WCStack<String> FindSweepable(const String& folder, const SYSTEMTIME& limit) {
    WCStack<String> names;
    const String prefix = NamePrefix();
    WIN32_FIND_DATAW found;
    const clsAutoCloseFind search(FindFirstFileW((folder + prefix + L"*").Text(), &found));
    if (!search) return names;
    do {
        const String name(found.cFileName);
        // The system also compares the short names of files, which may have lost characters.
        if (name.Left(prefix.Length()) == prefix && IsSweepable(name, found.ftLastWriteTime, limit) &&
            !names.push(name)) {
            break;
        }
    } while (FindNextFileW(search.Get(), &found));
    return names;
}

} // namespace

String ActivityFile(const String& folder) {
    String path;
    path.Format(L"%s\\_%d_activity.signal", folder.Text(), kMajorVersion);
    return path;
}

bool IsSweepDue(const String& activityFile, const SYSTEMTIME& now) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(activityFile.Text(), GetFileExInfoStandard, &data))
        return GetLastError() == ERROR_FILE_NOT_FOUND;
    return IsBefore(SystemTimeOf(data.ftLastWriteTime), Before(now, kIdleTime));
}

void SignalActivity(const String& activityFile, const SYSTEMTIME& now) {
    clsFile file;
    if (file.Open(activityFile, kAccessWrite, kDispositionCreateAlways, kShareRead) != 0) {
        DebugWrite(L"cannot create/open activity file '%s': %s", activityFile.Text(),
                   String::FromError(GetLastError()).Text());
        return;
    }
    file.WriteText(TimeStampText(now).Text()); // reports what it cannot write; the time counts all the same
}

bool IsSweepable(const String& name, const FILETIME& lastWritten, const SYSTEMTIME& limit) {
    const IString extension = Extension(name);
    return extension.CompareTo(kSignalExtension) != 0 && IsBefore(SystemTimeOf(lastWritten), limit);
}

void SweepTempFolder(const String& folder, const SYSTEMTIME& now) {
    WCStack<String> names = FindSweepable(folder, Before(now, kSweptAge));
    if (IsDeveloperLogin()) {
        DebugWrite(L"deleting %d files from temp directory that are older than one hour", names.entries());
    }
    while (!names.isEmpty()) DeleteTempFile(folder + names.pop());
}

DWORD DeleteTempFile(const String& path) {
    if (DeleteFileW(path.Text())) return ERROR_SUCCESS;
    const DWORD error = ErrorOfFailedCall();
    if (IsDeveloperLogin()) {
        DebugWrite(L"clsTempFileRemover: failed deleting file: %s", String::FromError(error).Text());
    } else if (error != ERROR_FILE_NOT_FOUND) {
        DebugWrite(L"WRN: clsTempFileRemover: error deleting temp file '%s': %s", path.Text(),
                   String::FromError(error).Text());
    }
    return error;
}

} // namespace vxut
