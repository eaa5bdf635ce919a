// vlm temp: the shared temp folder and what a sweep of the temp-file manager would delete there.
#include "host/groups.h"

#include "host/binary_file.h"
#include "host/output.h"
#include "host/text.h"
#include "host/value_text.h"

#include <util.h>
#include <windows.h>

#include <bit>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vlm {

namespace {

// The rules of the library, as util/temp_file.h describes them.
constexpr int64_t kMillisecondsOfHour = int64_t{60} * 60 * 1000;
constexpr int64_t kIdleHours = 3;
constexpr int64_t kSweptHours = 1;
constexpr wchar_t kActivityFile[] = L"_21_activity.signal";
constexpr wchar_t kPrefix[] = L"_21_";
constexpr wchar_t kSignalExtension[] = L".signal";
// A text of the library is shorter; anybody may have written another one.
constexpr size_t kMostActivityBytes = 256;

struct CloseFind {
    void operator()(void* search) const { FindClose(search); }
};

struct TempFile {
    std::wstring name;
    uint64_t bytes = 0;
    FILETIME written = {};
};

int64_t Milliseconds(const FILETIME& time) { return std::bit_cast<int64_t>(time) / 10'000; }

int64_t Now() {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    return Milliseconds(now);
}

// A time that the system cannot convert counts as old.
bool IsOlder(const FILETIME& time, int64_t hours) {
    SYSTEMTIME converted;
    return !FileTimeToSystemTime(&time, &converted) ||
           Milliseconds(time) < Now() - hours * kMillisecondsOfHour;
}

std::wstring TimeText(const FILETIME& time) {
    SYSTEMTIME converted;
    return FileTimeToSystemTime(&time, &converted) ? FormatTime(converted) + L"Z" : L"unknown";
}

std::wstring SharedFolder() {
    wchar_t path[MAX_PATH + 1] = L"";
    if (!GetTempPathW(MAX_PATH + 1, path)) Fail(L"no temp directory: " + SystemMessage(GetLastError()));
    std::wstring folder(static_cast<size_t>(32) * 1024, L'\0');
    folder.resize(GetLongPathNameW(path, folder.data(), static_cast<DWORD>(folder.size())));
    return (folder.empty() ? path : folder) + L"Velmora";
}

bool IsSignal(const std::wstring& name) {
    const size_t dot = name.find_last_of(L'.');
    return dot != std::wstring::npos && _wcsicmp(name.c_str() + dot, kSignalExtension) == 0;
}

// The files of the version, in the order of the folder, without those that are signs of activity.
std::vector<TempFile> FilesOf(const std::wstring& folder) {
    std::vector<TempFile> files;
    WIN32_FIND_DATAW found;
    const HANDLE first = FindFirstFileW((folder + L"\\" + kPrefix + L"*").c_str(), &found);
    if (first == INVALID_HANDLE_VALUE) return files;
    const std::unique_ptr<void, CloseFind> search(first);
    do {
        const std::wstring name = found.cFileName;
        if (!name.starts_with(kPrefix) || IsSignal(name)) continue;
        files.push_back(
            {name, uint64_t{found.nFileSizeHigh} << 32 | found.nFileSizeLow, found.ftLastWriteTime});
    } while (FindNextFileW(search.get(), &found));
    return files;
}

std::optional<FILETIME> TimeOf(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return data.ftLastWriteTime;
    const DWORD error = GetLastError();
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) return std::nullopt;
    Fail(path + L": " + SystemMessage(error));
}

// What the last process has written, made safe to display.
std::wstring Signature(const std::wstring& path) {
    const std::string bytes = ReadBinaryFile(path, kMostActivityBytes).substr(0, kMostActivityBytes);
    std::wstring text;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2)
        text +=
            static_cast<wchar_t>(static_cast<uint8_t>(bytes[i]) | static_cast<uint8_t>(bytes[i + 1]) << 8);
    return Visible(text);
}

void PrintActivity(const std::wstring& path, Output& out) {
    out.Field(L"Activity file", path);
    const std::optional<FILETIME> written = TimeOf(path);
    out.Field(L"Last activity", written ? TimeText(*written) : L"none");
    if (written) out.Field(L"Time stamp", Signature(path));
    const bool isDue = !written || IsOlder(*written, kIdleHours);
    out.Field(L"Sweep", isDue ? L"due" : L"not due: the folder was in use during the last three hours");
}

ExitCode RunTemp(const Arguments&, Output& out) {
    const std::wstring folder = SharedFolder();
    out.Field(L"Shared folder", folder);
    if (GetFileAttributesW(folder.c_str()) == INVALID_FILE_ATTRIBUTES) {
        out.Field(L"Sweep", L"none: the folder does not exist");
        return kExitSuccess;
    }
    PrintActivity(folder + L"\\" + kActivityFile, out);
    const std::vector<TempFile> files = FilesOf(folder);
    std::vector<TempFile> swept;
    for (const TempFile& file : files)
        if (IsOlder(file.written, kSweptHours)) swept.push_back(file);
    out.Field(L"Files", std::to_wstring(files.size()));
    out.Field(L"A sweep would take", std::to_wstring(swept.size()));
    for (const TempFile& file : swept) {
        out.Line(L"  " + TimeText(file.written) + L"  " + Visible(file.name) + L"  " +
                 std::to_wstring(file.bytes));
    }
    return kExitSuccess;
}

} // namespace

Command TempCommand() {
    return {
        .name = L"temp",
        .summary = L"Print the shared temp folder, its activity file and what a sweep would delete",
        .help =
            L"Programs of the library keep temporary files in a folder that they share, and rewrite the\n"
            L"activity file there while they have the temp-file manager open. A program that opens it\n"
            L"after three hours without activity sweeps the folder: it deletes the files of programs\n"
            L"that died, which are those that were not written for an hour. This command deletes\n"
            L"nothing. It lists these files, each with the time of its last write, its name and its\n"
            L"size in bytes. Times are in UTC.",
        .run = RunTemp,
    };
}

} // namespace vlm
