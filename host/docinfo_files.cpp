#include "host/docinfo_files.h"

#include "host/command.h"

#include <windows.h>

#include <memory>
#include <utility>

namespace vlm {

namespace {

struct CloseFind {
    void operator()(void* search) const { FindClose(search); }
};

// Calls visit for each entry of a folder whose name matches.
template <class Visit>
void ForEachEntry(const std::wstring& folder, const std::wstring& pattern, Visit visit) {
    WIN32_FIND_DATAW found;
    const HANDLE first = FindFirstFileW((folder + pattern).c_str(), &found);
    if (first == INVALID_HANDLE_VALUE) return;
    const std::unique_ptr<void, CloseFind> search(first);
    do {
        const std::wstring name = found.cFileName;
        if (name != L"." && name != L"..") visit(found);
    } while (FindNextFileW(search.get(), &found));
}

uint64_t SizeOf(DWORD high, DWORD low) { return uint64_t{high} << 32 | low; }

// Adds the files of a folder, whose name ends with a separator.
void FindInFolder(const std::wstring& folder, const std::wstring& pattern, bool isRecursive,
                  std::vector<DocinfoFile>& files) {
    std::vector<std::wstring> folders = {folder};
    while (!folders.empty()) {
        const std::wstring here = std::move(folders.back());
        folders.pop_back();
        ForEachEntry(here, pattern, [&](const WIN32_FIND_DATAW& found) {
            if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
                files.push_back({here + found.cFileName, SizeOf(found.nFileSizeHigh, found.nFileSizeLow)});
        });
        if (!isRecursive) return;
        ForEachEntry(here, L"*", [&](const WIN32_FIND_DATAW& found) {
            if ((found.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) ==
                FILE_ATTRIBUTE_DIRECTORY)
                folders.push_back(here + found.cFileName + L'\\');
        });
    }
}

void FindFiles(const std::wstring& path, bool isRecursive, std::vector<DocinfoFile>& files) {
    WIN32_FILE_ATTRIBUTE_DATA found = {};
    const bool exists = GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &found) != 0;
    const size_t name = path.find_last_of(L"\\/:") + 1;
    const bool isPattern = path.find_first_of(L"*?", name) != std::wstring::npos;
    const bool isFolder = exists && (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (!isFolder && !isPattern) {
        files.push_back({path, SizeOf(found.nFileSizeHigh, found.nFileSizeLow)});
        return;
    }
    const size_t before = files.size();
    if (isPattern)
        FindInFolder(path.substr(0, name), path.substr(name), isRecursive, files);
    else
        FindInFolder(name == path.size() ? path : path + L'\\', L"*", isRecursive, files);
    if (files.size() == before) Fail(path + L": no files");
}

} // namespace

std::vector<DocinfoFile> FindDocinfoFiles(std::span<const std::wstring> paths, bool isRecursive) {
    std::vector<DocinfoFile> files;
    for (const std::wstring& path : paths) FindFiles(path, isRecursive, files);
    return files;
}

} // namespace vlm
