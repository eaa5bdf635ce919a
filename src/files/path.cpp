#include "files/path.h"

#include "base/critical_section.h"
#include "base/path_limits.h"
#include "base/system_libraries.h"
#include "text/regex.h"
#include "text/settings.h"
#include "text/shared_regex.h"

#include <windows.h>

#include <cwchar>

namespace vxut {
namespace {

// The indexes at which the parts of a path begin.
struct PathSplit {
    int64_t name = 0;
    int64_t extension = 0; // the length of the path if there is none
};

PathSplit Split(const String& path) {
    const wchar_t* const text = path.Text();
    PathSplit split;
    int64_t dot = -1;
    for (int64_t i = 0; i < path.Length(); ++i) {
        if (text[i] == L'.') dot = i;
        if (text[i] == L'\\' || text[i] == L'/' || (text[i] == L':' && i == 1)) split.name = i + 1;
    }
    split.extension = dot >= split.name ? dot : path.Length();
    return split;
}

// Empty if the system fails.
String AskTempDirectory() {
    wchar_t scratch[kPathBufferUnits];
    const DWORD length = GetTempPathW(kPathBufferUnits, scratch);
    return length > 0 && length < kPathBufferUnits ? String(scratch) : String();
}

// The user's temp directory in its short and its long form, each kept once the system has answered. The lock
// is held only while a String is copied: what allocates much, fails or calls the system runs outside of it.
class TempDirectoryCache {
public:
    String Get(bool longForm) {
        String directory = Kept(longForm);
        if (!directory.IsEmpty()) return directory;
        directory = AskTempDirectory();
        const bool hasAnswer = !directory.IsEmpty();
        if (!hasAnswer) directory = WithBackslash(EnvironmentText(kEnvironmentTemp));
        if (longForm) directory = LongName(directory);
        return hasAnswer ? Keep(longForm, directory) : directory;
    }

private:
    String& Form(bool longForm) { return longForm ? longForm_ : shortForm_; }

    String Kept(bool longForm) {
        const clsCriticalSectionScope scope(lock_);
        return Form(longForm);
    }

    // The answer of the first thread stays.
    String Keep(bool longForm, const String& directory) {
        const clsCriticalSectionScope scope(lock_);
        if (Form(longForm).IsEmpty()) Form(longForm) = directory;
        return Form(longForm);
    }

    clsCriticalSection lock_{4000};
    String shortForm_;
    String longForm_;
};

struct PortPattern {
    const wchar_t* pattern;
    PathKind kind;
};
constexpr PortPattern kPortPatterns[] = {
    {L"^LPT\\d+:$", kPathPrinterPort}, {L"^COM\\d+:$", kPathSerialPort}, {L"^USB:", kPathUsbPort}};

bool MatchesWithoutCase(const wchar_t* pattern, const String& subject) {
    return clsRegEx(pattern, kRegExCaseless).Match(subject);
}

PathKind PortKind(const String& path) {
    if (path.Length() <= 2 || !std::wcschr(path.Text() + 2, L':')) return kPathNothing;
    for (const PortPattern& port : kPortPatterns)
        if (MatchesWithoutCase(port.pattern, path)) return port.kind;
    return kPathNothing;
}

} // namespace

String DirectoryPart(const String& path) { return path.Left(Split(path).name); }

String FilePart(const String& path) { return path.Mid(Split(path).name); }

String BaseName(const String& path) {
    const PathSplit split = Split(path);
    return path.Mid(split.name, split.extension - split.name);
}

String Extension(const String& path) { return path.Mid(Split(path).extension); }

String WithBackslash(const String& folder) {
    const bool complete = !folder.IsEmpty() && folder[folder.Length() - 1] == L'\\';
    return complete ? folder : folder + L"\\";
}

String FullName(const String& path) {
    wchar_t full[kPathBufferUnits];
    if (!Kernel32().GetFullPathName.IsAvailable()) return path;
    const DWORD length = Kernel32().GetFullPathName(path.Text(), kPathUnits, full, nullptr);
    if (length == 0 || length >= kPathUnits) return path;
    String result(full);
    result.ReplaceText(L"\\.\\", L"\\");
    wchar_t canonical[kPathBufferUnits];
    if (!Shlwapi().PathCanonicalize.IsAvailable()) return result;
    return Shlwapi().PathCanonicalize(canonical, result.Text()) ? String(canonical) : result;
}

String LongName(const String& path) {
    wchar_t name[kPathBufferUnits];
    if (!Kernel32().GetLongPathName.IsAvailable()) return path;
    const DWORD length = Kernel32().GetLongPathName(path.Text(), name, kPathUnits);
    return length > 0 && length < kPathUnits ? String(name) : path;
}

String TempDirectory(bool longForm) {
    static TempDirectoryCache cache;
    return cache.Get(longForm);
}

bool IsFileNameAllowed(const String& fileName) {
    // The last option keeps "$" from matching before a line end at the end of the name.
    static clsSharedRegEx allowed(
        L"^(?!  (?:\tCON|PRN|AUX|NUL|\tCOM[1-9]|LPT[1-9]  )  (?:\\.[^.]*)?  $)"
        L"[^<>:\"/\\|?*\\x00-\\x1F]*[^<>:\"/\\|?*\\x00-\\x1F\\ .]$",
        kRegExExtended | kRegExDollarEndOnly);
    return allowed.Match(fileName);
}

PathKind DeviceTest(String& path) {
    const PathKind port = PortKind(path);
    if (port != kPathNothing) return port;
    if (MatchesWithoutCase(L"^FILE:(.*)", path)) path.Delete(0, 5);
    const DWORD attributes = GetFileAttributesW(path.Text());
    if (attributes == INVALID_FILE_ATTRIBUTES) return kPathNothing;
    return attributes & FILE_ATTRIBUTE_DIRECTORY ? kPathDirectory : kPathFile;
}

} // namespace vxut
