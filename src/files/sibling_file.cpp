#include "files/sibling_file.h"

#include "base/last_error.h"
#include "files/path.h"

#include <x86intrin.h>

#include <cstring>
#include <cwchar>
#include <cwctype>
#include <string>
#include <string_view>
#include <vector>

namespace vxut {
namespace {

// A sibling has the name of its target, followed by "~vx", a number of 16 digits and ".tmp".
constexpr std::wstring_view kNameStart = L"~vx";
constexpr std::wstring_view kNameEnd = L".tmp";
constexpr size_t kNumberDigits = 16;
constexpr int kMaxAttempts = 100;

// Attributes that a file keeps when its content is replaced.
constexpr DWORD kKeptAttributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                                  FILE_ATTRIBUTE_NOT_CONTENT_INDEXED | FILE_ATTRIBUTE_TEMPORARY;
// Attributes that a sibling has from its folder or not at all.
constexpr DWORD kInheritedAttributes =
    FILE_ATTRIBUTE_COMPRESSED | FILE_ATTRIBUTE_ENCRYPTED | FILE_ATTRIBUTE_REPARSE_POINT;

// The path without links in it, so that the file itself is replaced and not a link that leads to it.
String FinalPath(HANDLE file) {
    const DWORD needed = GetFinalPathNameByHandleW(file, nullptr, 0, FILE_NAME_NORMALIZED);
    std::vector<wchar_t> path(needed + 1);
    const DWORD length = GetFinalPathNameByHandleW(file, path.data(), needed, FILE_NAME_NORMALIZED);
    return length > 0 && length < needed ? String(path.data()) : String();
}

// Whether there is more in a file than its content. A file system without streams fails the query.
bool HasStreams(HANDLE file) {
    constexpr std::wstring_view kContentName = L"::$DATA";
    alignas(FILE_STREAM_INFO) BYTE buffer[4096] = {};
    SetLastError(ERROR_SUCCESS);
    if (!GetFileInformationByHandleEx(file, FileStreamInfo, buffer, sizeof(buffer)))
        return GetLastError() == ERROR_MORE_DATA;
    const auto* const first = reinterpret_cast<const FILE_STREAM_INFO*>(buffer);
    const std::wstring_view name(first->StreamName, first->StreamNameLength / sizeof(wchar_t));
    return first->NextEntryOffset != 0 || (!name.empty() && name != kContentName);
}

// The access list of a file, to create another one with. Empty if the file system has none.
std::vector<BYTE> AccessListOf(HANDLE file) {
    DWORD size = 0;
    GetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<BYTE> descriptor(size);
    if (size == 0 ||
        !GetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, descriptor.data(), size, &size))
        descriptor.clear();
    return descriptor;
}

bool IsSiblingName(std::wstring_view name, std::wstring_view targetName) {
    if (name.size() != targetName.size() + kNameStart.size() + kNumberDigits + kNameEnd.size()) return false;
    std::wstring_view number = name.substr(targetName.size());
    if (!number.starts_with(kNameStart) || !number.ends_with(kNameEnd)) return false;
    number.remove_prefix(kNameStart.size());
    number.remove_suffix(kNameEnd.size());
    for (const wchar_t digit : number)
        if (!std::iswxdigit(digit)) return false;
    return true;
}

// Where the name begins in a path.
size_t NameStart(std::wstring_view path) { return path.find_last_of(L"\\/:") + 1; }

// A sibling whose owner lives is open there and cannot be removed.
void RemoveLeftoversOf(const String& path) {
    const size_t nameStart = NameStart(path.Text());
    const std::wstring folder(path.Text(), nameStart);
    const std::wstring_view targetName(path.Text() + nameStart);
    WIN32_FIND_DATAW match{};
    const std::wstring pattern = (std::wstring(path.Text()) += kNameStart) + L"*";
    const clsAutoCloseFind search(FindFirstFileW(pattern.c_str(), &match));
    if (!search) return;
    do {
        if (!IsSiblingName(match.cFileName, targetName)) continue;
        const clsAutoCloseFile removed(CreateFileW((folder + match.cFileName).c_str(), DELETE, 0, nullptr,
                                                   OPEN_EXISTING, FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    } while (FindNextFileW(search.Get(), &match));
}

std::vector<BYTE> RenameTo(const String& path, bool replaces) {
    const size_t bytes = static_cast<size_t>(path.Length()) * sizeof(wchar_t);
    std::vector<BYTE> buffer(sizeof(FILE_RENAME_INFO) + bytes);
    auto* const info = reinterpret_cast<FILE_RENAME_INFO*>(buffer.data());
    info->ReplaceIfExists = replaces;
    info->FileNameLength = static_cast<DWORD>(bytes);
    std::memcpy(info->FileName, path.Text(), bytes);
    return buffer;
}

} // namespace

clsSiblingFile::clsSiblingFile(const String& path, HANDLE target) : path_(FullName(path)) {
    const bool replaces = target != INVALID_HANDLE_VALUE;
    if (replaces && !CanReplace(target)) return;
    rename_ = RenameTo(path_, replaces);
    RemoveLeftoversOf(path_);
    Create(target);
    if (!file_.IsOpen()) return;
    isMarked_ = Mark(true);
    if (replaces && !SetFileInformationByHandle(file_.Handle(), FileBasicInfo, &traits_, sizeof(traits_)))
        Remove();
}

clsSiblingFile::~clsSiblingFile() {
    if (file_.IsOpen()) Remove();
}

void clsSiblingFile::RemoveLeftovers(HANDLE target) {
    const String path = FinalPath(target);
    if (!path.IsEmpty()) RemoveLeftoversOf(path);
}

// Whether a rename leaves everything about the target as it is. Notes what the sibling takes over.
bool clsSiblingFile::CanReplace(HANDLE target) {
    BY_HANDLE_FILE_INFORMATION info{};
    FILE_BASIC_INFO basic{};
    if (!GetFileInformationByHandle(target, &info) || info.nNumberOfLinks > 1 || HasStreams(target) ||
        !GetFileInformationByHandleEx(target, FileBasicInfo, &basic, sizeof(basic)))
        return false;
    path_ = FinalPath(target);
    targetAttributes_ = basic.FileAttributes;
    traits_.CreationTime = basic.CreationTime;
    traits_.FileAttributes = basic.FileAttributes & kKeptAttributes;
    if (traits_.FileAttributes == 0) traits_.FileAttributes = FILE_ATTRIBUTE_NORMAL;
    return !path_.IsEmpty();
}

void clsSiblingFile::Create(HANDLE target) {
    std::vector<BYTE> accessList;
    if (target != INVALID_HANDLE_VALUE) accessList = AccessListOf(target);
    SECURITY_ATTRIBUTES security{sizeof(security), accessList.data(), FALSE};
    for (int attempt = 0; attempt < kMaxAttempts; ++attempt) {
        String name;
        name.Format(L"%s%s%0*I64x%s", path_.Text(), kNameStart.data(), static_cast<int>(kNumberDigits),
                    __rdtsc(), kNameEnd.data());
        clsAutoCloseFile file(CreateFileW(name.Text(), GENERIC_WRITE | DELETE, 0,
                                          accessList.empty() ? nullptr : &security, CREATE_NEW,
                                          FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
        if (!file && GetLastError() == ERROR_FILE_EXISTS) continue;
        if (file) file_.TakeHandle(std::move(file), name);
        break;
    }
    FILE_BASIC_INFO basic{};
    if (!file_.IsOpen() || target == INVALID_HANDLE_VALUE) return;
    const bool isAlike = GetFileInformationByHandleEx(file_.Handle(), FileBasicInfo, &basic, sizeof(basic)) &&
                         ((basic.FileAttributes ^ targetAttributes_) & kInheritedAttributes) == 0;
    if (!isAlike) Remove();
}

void clsSiblingFile::Remove() noexcept {
    const bool isMarked = isMarked_ || Mark(true);
    file_.Close();
    if (!isMarked) DeleteFileW(file_.Name().Text());
}

bool clsSiblingFile::Mark(bool forDeletion) noexcept {
    FILE_DISPOSITION_INFO info{};
    info.DeleteFile = forDeletion;
    return SetFileInformationByHandle(file_.Handle(), FileDispositionInfo, &info, sizeof(info)) != 0;
}

DWORD clsSiblingFile::Flush() noexcept {
    return FlushFileBuffers(file_.Handle()) ? ERROR_SUCCESS : ErrorOfFailedCall();
}

DWORD clsSiblingFile::PutInPlace() {
    if (isMarked_ && !Mark(false)) return ErrorOfFailedCall();
    isMarked_ = false;
    if (SetFileInformationByHandle(file_.Handle(), FileRenameInfo, rename_.data(),
                                   static_cast<DWORD>(rename_.size()))) {
        file_.Close();
        return ERROR_SUCCESS;
    }
    const DWORD error = ErrorOfFailedCall();
    isMarked_ = Mark(true);
    return error;
}

clsAutoCloseFile clsSiblingFile::OpenTarget() const noexcept {
    return clsAutoCloseFile(CreateFileW(path_.Text(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN,
                                        nullptr));
}

} // namespace vxut
