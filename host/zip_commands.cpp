// vlm zip: builds ZIP archives.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/output.h"
#include "host/owners.h"
#include "host/progress_bar.h"
#include "host/text.h"

#include <util.h>
#include <windows.h>

#include <exception>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace vlm {

namespace {

namespace fs = std::filesystem;

constexpr DWORD kRedrawMilliseconds = 200;

struct Request {
    std::wstring archive;
    std::vector<std::wstring> sources;
    std::wstring comment;
    const wchar_t* pattern = nullptr;
    uint32_t flags = 0;
};

bool IsFolder(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) Fail(path + L": " + SystemMessage(GetLastError()));
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

struct CloseFind {
    void operator()(void* search) const { FindClose(search); }
};

// Adds the sizes of the files that match, and the names of the folders that do.
void Search(const fs::path& path, uint64_t& bytes, std::vector<std::wstring>& folders) {
    WIN32_FIND_DATAW found;
    const HANDLE first = FindFirstFileW(path.c_str(), &found);
    if (first == INVALID_HANDLE_VALUE) return;
    const std::unique_ptr<void, CloseFind> search(first);
    do {
        const std::wstring name = found.cFileName;
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
            bytes += uint64_t{found.nFileSizeHigh} << 32 | found.nFileSizeLow;
        else if (name != L"." && name != L".." && !(found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT))
            folders.push_back(path.parent_path() / name);
    } while (FindNextFileW(search.get(), &found));
}

uint64_t BytesIn(const std::wstring& folder, const Request& request) {
    uint64_t bytes = 0;
    std::vector<std::wstring> ignored;
    Search(fs::path(folder) / (request.pattern ? request.pattern : L"*.*"), bytes, ignored);
    if (!(request.flags & UTIL_ZIP_RECURSIVE)) return bytes;
    uint64_t known = 0; // the files of the folder itself, which the pattern has selected
    std::vector<std::wstring> left;
    Search(fs::path(folder) / L"*.*", known, left);
    while (!left.empty()) {
        const fs::path next = left.back();
        left.pop_back();
        Search(next / L"*.*", bytes, left);
    }
    return bytes;
}

uint64_t BytesToPack(const Request& request) {
    uint64_t bytes = 0;
    std::error_code error;
    for (const std::wstring& source : request.sources)
        if (IsFolder(source))
            bytes += BytesIn(source, request);
        else if (const uint64_t size = fs::file_size(source, error); !error)
            bytes += size;
    return bytes;
}

// The name of a file in the archive: its path without the root, or the bare name if that leads upwards.
std::wstring EntryName(const fs::path& source) {
    const fs::path name = source.lexically_normal().relative_path();
    return name.empty() || *name.begin() == L".." ? source.filename() : name;
}

void AddSource(HUTILZIP zip, const std::wstring& source, const Request& request) {
    const int32_t code = IsFolder(source)
                             ? UtilZIPAppendList(zip, source.c_str(), request.pattern, request.flags)
                             : UtilZIPAppend(zip, source.c_str(), nullptr, EntryName(source).c_str());
    if (code == UTIL_ZIP_ERR_SOURCE) Fail(source + L": cannot be read");
    if (code != UTIL_ZIP_OK) Fail(source + L": cannot be packed");
}

struct CloseZip {
    void operator()(HUTILZIP zip) const { UtilZIPClose(zip); }
};
using ZipOwner = std::unique_ptr<std::remove_pointer_t<HUTILZIP>, CloseZip>;

void BuildArchive(const std::wstring& path, const Request& request) {
    ZipOwner zip(UtilZIPCreate(path.c_str(), request.comment.c_str()));
    if (!zip) Fail(request.archive + L": cannot be created");
    for (const std::wstring& source : request.sources) AddSource(zip.get(), source, request);
    if (UtilZIPClose(zip.release()) != UTIL_ZIP_OK) Fail(request.archive + L": cannot be written");
}

// Builds the archive beside its place, so that an old one stays until the new one is complete.
void ReplaceArchive(const Request& request) {
    const std::wstring sibling = request.archive + L".part";
    // While it is held, an old archive in one of the folders is not packed into the new one.
    HandleOwner old = Own(CreateFileW(request.archive.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    try {
        BuildArchive(sibling, request);
        old.reset();
        if (!MoveFileExW(sibling.c_str(), request.archive.c_str(),
                         MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
            Fail(request.archive + L": " + SystemMessage(GetLastError()));
    } catch (...) {
        DeleteFileW(sibling.c_str());
        throw;
    }
}

uint64_t BytesRead() {
    IO_COUNTERS counters = {};
    return GetProcessIoCounters(GetCurrentProcess(), &counters) ? counters.ReadTransferCount : 0;
}

// Runs work on a thread of its own while this one draws the bar. Passes on what work throws.
template <class Work>
void RunWithBar(Work work, ProgressBar& bar) {
    const HandleOwner isOver = Own(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (!isOver) Fail(SystemMessage(GetLastError()));
    std::exception_ptr failure;
    const uint64_t readBefore = BytesRead();
    std::thread worker([&] {
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
        SetEvent(isOver.get());
    });
    while (WaitForSingleObject(isOver.get(), kRedrawMilliseconds) == WAIT_TIMEOUT)
        bar.Show(BytesRead() - readBefore);
    worker.join();
    if (failure) std::rethrow_exception(failure);
    bar.Finish();
}

ExitCode RunCreate(const Arguments& arguments, Output&) {
    Request request;
    request.archive = arguments.Operand(0);
    for (size_t index = 1; arguments.HasOperand(index); ++index)
        request.sources.push_back(arguments.Operand(index));
    if (const std::wstring* comment = arguments.Value(L"comment")) request.comment = *comment;
    if (const std::wstring* pattern = arguments.Value(L"pattern")) request.pattern = pattern->c_str();
    if (arguments.Has(L"recursive")) request.flags |= UTIL_ZIP_RECURSIVE;

    ProgressBar bar(BytesToPack(request), arguments.Has(L"progress"), L"Packing");
    RunWithBar([&] { ReplaceArchive(request); }, bar);
    return kExitSuccess;
}

constexpr Option kCreateOptions[] = {
    {L"comment", L"TEXT", L"comment of the archive"},
    {L"pattern", L"PATTERN", L"add only the files of a folder that match, for example *.txt"},
    {L"recursive", nullptr, L"add subfolders, with all of their files"},
    {L"progress", nullptr, L"show progress even if standard error is not a console"},
};

const Command kCommands[] = {
    {
        .name = L"create",
        .summary = L"Create a ZIP archive of files and folders",
        .operands = L"ARCHIVE SOURCE [SOURCE...]",
        .help =
            L"A file is stored under its path as given, without a drive. The files of a folder are stored\n"
            L"under their names in the folder; those that cannot be read are left out. --pattern applies\n"
            L"to the folder itself and not to its subfolders. An existing archive is replaced once the\n"
            L"new one is complete. Files and archives of more than 4 GB are not supported.",
        .options = kCreateOptions,
        .run = RunCreate,
    },
};

} // namespace

Command ZipCommands() {
    return {
        .name = L"zip",
        .summary = L"Create ZIP archives",
        .children = kCommands,
    };
}

} // namespace vlm
