#include "util/path.h"

#include "base/guard.h"
#include "checks/validate.h"
#include "files/network_path.h"
#include "files/path.h"

#include <oleauto.h>
#include <windows.h>

#include <cerrno>
#include <cstdlib>

namespace {

using namespace vxut;

static_assert(sizeof(UtilFSInfo) == 20);

constexpr DWORD kMaxShortName = 12; // an 8.3 name with its dot

struct VolumeFlag {
    DWORD system;
    uint32_t flag;
};
constexpr VolumeFlag kVolumeFlags[] = {{FILE_CASE_SENSITIVE_SEARCH, UTIL_FS_CASE_SENSITIVE},
                                       {FILE_CASE_PRESERVED_NAMES, UTIL_FS_CASE_PRESERVED},
                                       {FILE_UNICODE_ON_DISK, UTIL_FS_UNICODE},
                                       {FILE_VOLUME_IS_COMPRESSED, UTIL_FS_COMPRESSED}};

uint32_t TranslateVolume(DWORD maximumComponent, DWORD systemFlags) {
    uint32_t flags = maximumComponent > kMaxShortName ? UTIL_FS_LONG_NAMES : 0;
    for (const VolumeFlag& row : kVolumeFlags)
        if (systemFlags & row.system) flags |= row.flag;
    return flags;
}

// Returns 1 if the converted path could be stored.
template <class Conversion>
int Converted(const wchar_t* path, BSTR* target, Conversion convert) {
    return Guarded(0, [&] {
        if (!target) return 0;
        *target = nullptr;
        return path && convert(path).ToBSTR(target) ? 1 : 0;
    });
}

// The capacity of an optional buffer, which must be 0 if there is none.
size_t UnitsOf(const wchar_t* buffer, size_t units) { return buffer ? units : 0; }

} // namespace

int32_t UtilSplitpath(const wchar_t* path, wchar_t* drive, wchar_t* directory, wchar_t* name,
                      wchar_t* extension) {
    return Guarded<int32_t>(EINVAL, [&] {
        return _wsplitpath_s(path, drive, UnitsOf(drive, UTIL_DRIVE_UNITS), directory,
                             UnitsOf(directory, UTIL_DIRECTORY_UNITS), name, UnitsOf(name, UTIL_NAME_UNITS),
                             extension, UnitsOf(extension, UTIL_EXTENSION_UNITS));
    });
}

int32_t UtilMergepath(wchar_t* target, const wchar_t* drive, const wchar_t* directory, const wchar_t* name,
                      const wchar_t* extension) {
    return Guarded<int32_t>(EINVAL, [&] {
        return _wmakepath_s(target, UnitsOf(target, UTIL_PATH_UNITS), drive, directory, name, extension);
    });
}

void UtilFullpath(wchar_t* target, const wchar_t* relative, uint32_t capacity) {
    Guarded([&] {
        // The run-time takes a capacity of 0 for a programming error, not for a small buffer.
        if (target && capacity > 0 && _wfullpath(target, relative, capacity)) return;
        const DWORD error = GetLastError();
        if (target && capacity > 0) target[0] = L'\0';
        if (ParameterChecksEnabled()) WriteBanner(L"UtilFullpath", L"Buffer too small", target, error);
    });
}

uint32_t UtilGetFSInfo(const wchar_t* root, UtilFSInfo* info) {
    return Guarded<uint32_t>(0, [&]() -> uint32_t {
        if (!info || info->size != sizeof *info) return UTIL_FS_ERR_SIZE;
        DWORD component = 0;
        DWORD flags = 0;
        if (!GetVolumeInformationW(root, nullptr, 0, nullptr, &component, &flags, nullptr, 0))
            component = flags = 0;
        *info = {sizeof *info, UTIL_PATH_UNITS, UTIL_DRIVE_UNITS, component,
                 TranslateVolume(component, flags)};
        return info->flags & UTIL_FS_CASE_SENSITIVE;
    });
}

int UtilExpandDefaultTokensOfFolderPath(const wchar_t* path, BSTR* target) {
    return Guarded(0, [&] {
        if (!target) return 0;
        *target = nullptr;
        String expanded;
        return path && ExpandTokens(path, expanded) && expanded.ToBSTR(target) ? 1 : 0;
    });
}

int UtilEnsureLocalPath(const wchar_t* path, BSTR* target) {
    return Converted(path, target, EnsureLocalPath);
}

int UtilEnsureUNCPath(const wchar_t* path, BSTR* target) { return Converted(path, target, EnsureUncPath); }
