// The folders of an archive: which files and subfolders are added, and in which order.
#include "base/debug.h"
#include "encoding/zip_file.h"
#include "encoding/zip_text.h"
#include "files/find_files.h"

#include <vector>

namespace vxut {

// A folder still to be added.
struct clsZIPFile::Folder {
    String relative; // to the base folder, which has an empty one
    FILETIME written{};
    DWORD attributes = 0;
};

namespace {

constexpr wchar_t kAllFiles[] = L"*.*";

String JoinPath(const String& first, const String& second) {
    if (first.IsEmpty()) return second;
    if (second.IsEmpty()) return first;
    return first[first.Length() - 1] == L'\\' ? first + second : first + L"\\" + second;
}

bool IsFolder(const WIN32_FIND_DATAW& found) { return found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY; }

bool IsDots(const WIN32_FIND_DATAW& found) {
    const String name(found.cFileName);
    return name == L"." || name == L"..";
}

// Searches as ForEachFound() does, and reports a search that ends early.
template <class Visit>
void Search(const String& path, Visit visit) {
    const DWORD error = ForEachFound(path, visit);
    if (error != ERROR_SUCCESS)
        DebugWrite(L"ERR: cannot search '%s': %s", path.Text(), String::FromError(error).Text());
}

// What a path leads to, also by way of links.
struct FolderId {
    DWORD volume = 0;
    DWORD high = 0;
    DWORD low = 0;
    bool isKnown = false;

    explicit FolderId(const String& path) {
        const clsAutoCloseFile folder(CreateFileW(
            path.Text(), FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
            nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        BY_HANDLE_FILE_INFORMATION information;
        if (!folder || !GetFileInformationByHandle(folder.Get(), &information)) return;
        volume = information.dwVolumeSerialNumber;
        high = information.nFileIndexHigh;
        low = information.nFileIndexLow;
        isKnown = true;
    }
    bool IsSame(const FolderId& other) const {
        return isKnown && other.isKnown && volume == other.volume && high == other.high && low == other.low;
    }
};

// Whether a folder is one of those that it was reached through, which would be added for ever.
bool IsInsideItself(const String& base, const String& relative) {
    const FolderId id(JoinPath(base, relative));
    for (int64_t i = 0; i < relative.Length(); ++i) {
        const bool isEnd = i == 0 || relative[i] == L'\\';
        if (isEnd && id.IsSame(FolderId(JoinPath(base, relative.Left(i))))) return true;
    }
    return false;
}

} // namespace

void clsZIPFile::AppendFiles(const Folder& folder, const String& path, const String& pattern) {
    Search(JoinPath(path, pattern), [&](const WIN32_FIND_DATAW& found) {
        if (IsFolder(found)) return;
        AppendFile(JoinPath(path, found.cFileName), String(), JoinPath(folder.relative, found.cFileName));
    });
}

// A loop over the folders that are left, the next one last, so that a deep tree needs no deep stack.
void clsZIPFile::AppendFolder(const String& base, const String& pattern, bool isRecursive) {
    std::vector<Folder> left(1);
    bool isTop = true;
    while (!left.empty()) {
        const Folder folder = std::move(left.back());
        left.pop_back();
        if (!isTop) {
            auto entry =
                std::make_unique<clsZIPFileEntry>(ZipName(folder.relative, String()) + L"/", String());
            entry->SetFolder(folder.written, folder.attributes);
            Add(std::move(entry));
            if ((folder.attributes & FILE_ATTRIBUTE_REPARSE_POINT) && IsInsideItself(base, folder.relative)) {
                DebugWrite(L"WRN: folder '%s' leads back to itself", folder.relative.Text());
                continue;
            }
        }
        const String path = JoinPath(base, folder.relative);
        // Subfolders take all their files: callers rely on it.
        AppendFiles(folder, path, isTop ? pattern : String(kAllFiles));
        isTop = false;
        if (!isRecursive) return;
        std::vector<Folder> found;
        Search(JoinPath(path, kAllFiles), [&](const WIN32_FIND_DATAW& data) {
            if (IsFolder(data) && !IsDots(data))
                found.push_back(
                    {JoinPath(folder.relative, data.cFileName), data.ftLastWriteTime, data.dwFileAttributes});
        });
        left.insert(left.end(), std::make_move_iterator(found.rbegin()),
                    std::make_move_iterator(found.rend()));
    }
}

} // namespace vxut
