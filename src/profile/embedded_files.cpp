#include "profile/embedded_files.h"

#include "base/debug.h"
#include "base/path_limits.h"
#include "files/file.h"
#include "files/find_files.h"
#include "files/path.h"
#include "files/plain_name.h"
#include "prof/codes.h"
#include "profile/embedded_data.h"
#include "profile/item_access.h"

namespace vxut {
namespace {

constexpr wchar_t kEntry[] = L"File.Entry";
constexpr wchar_t kName[] = L"Name";
constexpr wchar_t kContents[] = L"Contents";

std::wstring_view ViewOf(const String& text) { return {text.Text(), static_cast<size_t>(text.Length())}; }

// Keeps the first of several errors.
void Note(scOutcome& outcome, DWORD error) {
    if (outcome.error == ERROR_SUCCESS) outcome.error = error;
}

// Returns the system's error.
DWORD AppendEntry(clsItemList& list, const String& path, const String& password) {
    DWORD error = ERROR_SUCCESS;
    const String contents = EncodeFileNamed(path, password, error);
    if (contents.IsEmpty()) return error;
    clsItemList& entry = list.AppendList(kEntry);
    entry.AppendItem(kName, ViewOf(FilePart(path)));
    entry.AppendItem(kContents, ViewOf(contents));
    return ERROR_SUCCESS;
}

DWORD MakeFolder(const String& folder) {
    if (CreateDirectoryW(folder.Text(), nullptr)) return ERROR_SUCCESS;
    const DWORD error = ErrorOfFailedCall();
    return error == ERROR_ALREADY_EXISTS ? ERROR_SUCCESS : error;
}

// A link may lead out of its folder. Returns ERROR_SUCCESS if a path is none, or not there at all.
DWORD ErrorOfLink(const String& path) {
    WIN32_FIND_DATAW found;
    const clsAutoCloseFind search(FindFirstFileW(path.Text(), &found));
    if (!search) return GetLastError() == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : ErrorOfFailedCall();
    const bool isLink = (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
                        IsReparseTagNameSurrogate(found.dwReserved0);
    return isLink ? ERROR_CANT_ACCESS_FILE : ERROR_SUCCESS;
}

DWORD DeleteFileNamed(const String& path) {
    if (DeleteFileW(path.Text())) return ERROR_SUCCESS;
    const DWORD error = ErrorOfFailedCall();
    return error == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : error;
}

// Makes the file of an entry what the entry says. Returns the system's error.
DWORD ExtractFile(const clsItemList& entry, const String& folder, const String& name,
                  const String& password) {
    const String path = folder + name;
    if (!IsPlainFileName(name)) return ERROR_INVALID_NAME;
    if (const DWORD error = ErrorOfLink(path)) return error;
    const clsItem* const contents = entry.FindItem(kContents);
    if (!contents || contents->Value().empty()) return DeleteFileNamed(path);
    return WriteDecodedFile(path, contents->Value(), password);
}

DWORD ExtractEntry(const clsItemList& entry, const String& folder, const String& password) {
    wchar_t name[kPathUnits];
    if (ReadText(entry.FindItem(kName), name, kPathUnits, nullptr) <= 0) {
        DebugWrite(L"ProfExtractFiles:\"Filename=\" not found");
        return ERROR_INVALID_DATA;
    }
    const DWORD error = ExtractFile(entry, folder, name, password);
    if (error != ERROR_SUCCESS) DebugWrite(L"'%s%s' could not be created", folder.Text(), name);
    return error;
}

} // namespace

// The lists are made aside, so that a lack of memory leaves none of them.
scOutcome AppendFiles(clsItemList& list, const String& pattern, const String& password) {
    const String folder = DirectoryPart(pattern);
    clsItemList entries(L"");
    scOutcome outcome{0, ERROR_SUCCESS};
    const DWORD searched = ForEachFound(pattern, [&](const WIN32_FIND_DATAW& found) {
        if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) return;
        ++outcome.code;
        Note(outcome, AppendEntry(entries, folder + found.cFileName, password));
    });
    Note(outcome, searched);
    list.TakeEntries(entries);
    return outcome;
}

// The folder is asked for before each file: somebody may remove it meanwhile.
scOutcome ExtractFiles(const clsItemList& list, const String& folder, const String& password) {
    scOutcome outcome{PROF_OK, ERROR_SUCCESS};
    for (const clsItem* const item : list) {
        if (item->IsPlain() || item->Name() != kEntry) continue;
        const DWORD error = MakeFolder(folder);
        if (error != ERROR_SUCCESS) {
            DebugWrite(L"problem creating directory '%s'", folder.Text());
            return {PROF_ERR_WRITE, error};
        }
        Note(outcome, ExtractEntry(*item->Sublist(), WithBackslash(folder), password));
    }
    return outcome;
}

} // namespace vxut
