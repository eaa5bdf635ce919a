#include "files/temp_file.h"

#include "base/library_version.h"
#include "containers/containers.h"
#include "files/path.h"

#include <x86intrin.h>

namespace vxut {
namespace {

constexpr uint32_t kMaxAttempts = 0xFFFFF;
// How many creations may fail for another reason than that the name is taken. A few fail for a file that is
// being deleted; more fail for the folder, which another name does not help.
constexpr int kMaxRefusals = 100;
constexpr wchar_t kDefaultBase[] = L"qzr";
constexpr double kTicksOfDay = 864e9; // of 100 ns
constexpr double kMaxLeftoverDays = 7.0;

double Days(const FILETIME& time) {
    return static_cast<double>(ULARGE_INTEGER{{time.dwLowDateTime, time.dwHighDateTime}}.QuadPart) /
           kTicksOfDay;
}

bool IsLeftover(const FILETIME& lastWritten) {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    return Days(now) - Days(lastWritten) > kMaxLeftoverDays;
}

bool IsTaken(DWORD error) { return error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS; }

// Tries names for one temp file until one is free.
class TempFileMaker {
public:
    TempFileMaker(const String& templatePath, const String& extension, uint32_t flags,
                  clsAutoCloseFile* holder);

    String Create();

private:
    String NextName(bool bare) const;
    static clsAutoCloseFile OpenFile(const String& name, DWORD disposition, DWORD attributes);
    clsAutoCloseFile TakeOverLeftover(const String& name) const;

    String directory_;
    String base_;
    String extension_;
    const bool bareFirst_;
    DWORD attributes_;
    clsAutoCloseFile* const holder_;
};

TempFileMaker::TempFileMaker(const String& templatePath, const String& extension, uint32_t flags,
                             clsAutoCloseFile* holder)
    : directory_(DirectoryPart(templatePath)),
      base_(BaseName(templatePath)),
      extension_(extension),
      bareFirst_((flags & kTempBareNameFirst) != 0),
      attributes_(FILE_ATTRIBUTE_NORMAL),
      holder_(holder) {
    if (directory_.IsEmpty()) directory_ = TempDirectory((flags & kTempLongDirectory) != 0);
    if (base_.IsEmpty()) base_ = kDefaultBase;
    if (!(flags & kTempNoVersionPrefix)) {
        String prefixed;
        prefixed.Format(L"_%u_%s", kMajorVersion, base_.Text());
        base_.Take(prefixed);
    }
    if (extension_[0] == L'.') extension_.Delete(0, 1);
    if (holder_) attributes_ |= FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE;
    attributes_ |= flags & kTempRandomAccess ? FILE_FLAG_RANDOM_ACCESS : FILE_FLAG_SEQUENTIAL_SCAN;
}

String TempFileMaker::Create() {
    int refusals = 0;
    for (uint32_t attempt = 0; attempt < kMaxAttempts && refusals < kMaxRefusals; ++attempt) {
        const String name = NextName(bareFirst_ && attempt == 0);
        clsAutoCloseFile file = OpenFile(name, CREATE_NEW, attributes_);
        if (!file) {
            const bool taken = IsTaken(GetLastError());
            if (!taken) ++refusals;
            if (taken && holder_) file = TakeOverLeftover(name);
        }
        if (!file) continue;
        if (holder_) *holder_ = std::move(file);
        return name;
    }
    return {};
}

String TempFileMaker::NextName(bool bare) const {
    String name;
    if (bare) {
        name.Format(L"%s%s.%s", directory_.Text(), base_.Text(), extension_.Text());
    } else {
        name.Format(L"%s%s%I64x.%s", directory_.Text(), base_.Text(), __rdtsc(), extension_.Text());
    }
    return name;
}

clsAutoCloseFile TempFileMaker::OpenFile(const String& name, DWORD disposition, DWORD attributes) {
    return clsAutoCloseFile(
        CreateFileW(name.Text(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, disposition, attributes, nullptr));
}

// A file that was not written for a week was left by a dead process. It is opened without deletion on close
// first, so that one which turns out to be in use is not deleted.
clsAutoCloseFile TempFileMaker::TakeOverLeftover(const String& name) const {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(name.Text(), GetFileExInfoStandard, &data) ||
        !IsLeftover(data.ftLastWriteTime)) {
        return {};
    }
    clsAutoCloseFile file = OpenFile(name, OPEN_EXISTING, attributes_ & ~FILE_FLAG_DELETE_ON_CLOSE);
    FILETIME written;
    if (!file || !GetFileTime(file.Get(), nullptr, nullptr, &written) || !IsLeftover(written)) return {};
    file.Reset();
    file = OpenFile(name, OPEN_EXISTING, attributes_);
    if (!file || !SetEndOfFile(file.Get())) return {};
    return file;
}

// Template path of a file in the shared temp folder, unless the name brings a folder.
String TemplateInSharedFolder(const String& templateName) {
    const String directory = DirectoryPart(templateName);
    const String name = BaseName(templateName);
    return (directory.IsEmpty() ? TempFolder(kSharedTempFolder) : directory) +
           (name.IsEmpty() ? kDefaultBase : name);
}

} // namespace

String CreateTempFile(const String& templatePath, const String& extension, uint32_t flags,
                      clsAutoCloseFile* holder) {
    return TempFileMaker(templatePath, extension, flags, holder).Create();
}

String TempFolder(const String& folders) {
    String path = TempDirectory(true);
    path.TrimRight(L'\\');
    for (const String& folder : folders.Split(L'\\')) {
        path += L"\\" + folder;
        if (!CreateDirectoryW(path.Text(), nullptr) && GetLastError() != ERROR_ALREADY_EXISTS) {
            return TempDirectory(true);
        }
    }
    return WithBackslash(path);
}

clsFileRWTemp::clsFileRWTemp(const String& templateName, const String& extension) {
    clsAutoCloseFile handle;
    const String name =
        CreateTempFile(TemplateInSharedFolder(templateName), extension.IsEmpty() ? String(L"tmp") : extension,
                       kTempLongDirectory, &handle);
    TakeHandle(std::move(handle), name);
}

clsAutoCloseFile clsFileRWTemp::OpenHandle(const String&, DWORD, DWORD, DWORD, DWORD) { return {}; }

} // namespace vxut
