#include "host/embedded_commands.h"

#include "host/profile_arguments.h"
#include "host/text.h"

#include <prof.h>

#include <string>

namespace vlm {

namespace {

const wchar_t* PasswordOf(const Arguments& arguments) {
    const std::wstring* password = arguments.Value(L"password");
    return password ? password->c_str() : nullptr;
}

// Fails with the system's reason if the last call of the library has left one.
void RequireSuccess(const std::wstring& what) {
    if (const DWORD error = GetLastError()) Fail(what + L": " + SystemMessage(error));
}

// The path that an option of the tree names; empty without the option.
std::wstring PathOption(const Arguments& arguments, const wchar_t* option) {
    const std::wstring* path = arguments.Value(option);
    return path ? TreePath(*path) : std::wstring();
}

// The list of a path, which is created if it is missing. The empty path is the root.
HPROFLIST ListFor(HPROF job, const std::wstring& path) {
    if (path.empty()) return nullptr;
    HPROFLIST list = ProfGetListW(job, nullptr, path.c_str());
    return list ? list : ProfCreateListW(job, nullptr, path.c_str());
}

void CopyTo(HPROF target, const std::wstring& path, HPROF source) {
    if (const int32_t result = ProfCopyList(target, ListFor(target, path), source, nullptr))
        Fail(ProfileErrorWords(result));
}

// Reads the files first, so that a profile is neither created nor kept open for files that cannot be read.
ProfileFile ReadFiles(const Arguments& arguments) {
    ProfileFile files = ProfileFile::Empty();
    const std::wstring& pattern = arguments.Operand(1);
    const int32_t matches = ProfAppendFilesW(files.Job(), nullptr, pattern.c_str(), PasswordOf(arguments));
    RequireSuccess(pattern);
    if (matches == 0) Fail(pattern + L": there is no such file");
    return files;
}

ProfileFile ReadItem(const std::wstring& name, const Arguments& arguments) {
    ProfileFile item = ProfileFile::Empty();
    const std::wstring& source = arguments.Operand(1);
    ProfAppendFileW(item.Job(), nullptr, name.c_str(), PasswordOf(arguments), source.c_str());
    RequireSuccess(source);
    return item;
}

void EmbedFiles(const std::wstring& path, const Arguments& arguments) {
    const ProfileFile files = ReadFiles(arguments);
    const ProfileFile target = OpenForChange(arguments);
    CopyTo(target.Job(), path, files.Job());
    target.Save();
}

// The item takes the place of all of its name.
void EmbedItem(const std::wstring& path, const Arguments& arguments) {
    const size_t slash = path.rfind(L'/');
    const size_t nameStart = slash == std::wstring::npos ? 0 : slash + 1;
    const ProfileFile item = ReadItem(path.substr(nameStart), arguments);
    const ProfileFile target = OpenForChange(arguments);
    ProfDeleteItemW(target.Job(), nullptr, path.c_str());
    CopyTo(target.Job(), path.substr(0, slash == std::wstring::npos ? 0 : slash), item.Job());
    target.Save();
}

ExitCode RunEmbed(const Arguments& arguments, Output&) {
    const std::wstring item = PathOption(arguments, L"item");
    const std::wstring list = PathOption(arguments, L"list");
    if (!item.empty() && !list.empty()) FailUsage(L"specify --item or --list, not both");
    if (!list.empty()) CheckNewList(list);
    if (!item.empty()) {
        CheckNewItem(item);
        EmbedItem(item, arguments);
    } else {
        EmbedFiles(list, arguments);
    }
    return kExitSuccess;
}

void ExtractItem(HPROF job, const std::wstring& path, const Arguments& arguments) {
    const std::wstring& target = arguments.Operand(1);
    const int32_t result = ProfGetFileW(job, nullptr, path.c_str(), PasswordOf(arguments), target.c_str());
    if (result == PROF_ERR_NOT_FOUND) Fail(path + L": " + ProfileErrorWords(result));
    RequireSuccess(target);
}

void ExtractFiles(HPROF job, const std::wstring& path, const Arguments& arguments) {
    const std::wstring& folder = arguments.Operand(1);
    HPROFLIST list = nullptr;
    if (!path.empty() && !(list = ProfGetListW(job, nullptr, path.c_str())))
        Fail(path + L": there is no such list");
    if (!ProfGetListW(job, list, L"File.Entry")) Fail(L"there are no embedded files in the list");
    const int32_t result = ProfExtractFilesW(job, list, folder.c_str(), PasswordOf(arguments));
    RequireSuccess(result == PROF_OK ? L"not all files could be written" : folder);
}

ExitCode RunExtract(const Arguments& arguments, Output&) {
    const std::wstring item = PathOption(arguments, L"item");
    const std::wstring list = PathOption(arguments, L"list");
    if (!item.empty() && !list.empty()) FailUsage(L"specify --item or --list, not both");
    const ProfileFile file = OpenForReading(arguments);
    if (item.empty())
        ExtractFiles(file.Job(), list, arguments);
    else
        ExtractItem(file.Job(), item, arguments);
    return kExitSuccess;
}

// The library does not report whether the clipboard has taken the profile: its number of changes does.
ExitCode RunCopy(const Arguments& arguments, Output&) {
    const uint32_t format = FormatOf(arguments);
    const ProfileFile file = OpenForReading(arguments);
    const DWORD changes = GetClipboardSequenceNumber();
    const int32_t result = ProfSaveToClipboard(file.Job(), nullptr, format);
    if (result != PROF_OK) Fail(arguments.Operand(0) + L": " + ProfileErrorWords(result));
    if (GetClipboardSequenceNumber() == changes) Fail(L"the clipboard is in use by another program");
    return kExitSuccess;
}

ExitCode RunPaste(const Arguments& arguments, Output&) {
    const uint32_t format = FormatOf(arguments);
    ProfileFile::FromClipboard().SaveAs(arguments.Operand(0), format);
    return kExitSuccess;
}

constexpr Option kPasswordOption = {L"password", L"TEXT", L"password of the contents"};

constexpr Option kCopyOptions[] = {kFormOption, kEncodingOption};
constexpr Option kEmbedOptions[] = {
    {L"list", L"LIST", L"add the files to this list; default: the root"},
    {L"item", L"PATH", L"store one file as the value of this item"},
    kPasswordOption,
    kSharedOption,
    kEncodingOption,
};
constexpr Option kExtractOptions[] = {
    {L"list", L"LIST", L"extract the files of this list; default: the root"},
    {L"item", L"PATH", L"write the value of this item to the file TARGET"},
    kPasswordOption,
    kEncodingOption,
};
constexpr Option kPasteOptions[] = {kFormOption, kPackedOption};

} // namespace

Command CopyCommand() {
    return {
        .name = L"copy",
        .summary = L"Copy a profile to the clipboard",
        .operands = L"FILE",
        .help = L"Other programs that use the library, and 'vlm profile paste', can read it there.",
        .options = kCopyOptions,
        .run = RunCopy,
    };
}

Command EmbedCommand() {
    return {
        .name = L"embed",
        .summary = L"Add files to a profile",
        .operands = L"FILE SOURCE",
        .help =
            L"SOURCE is a file, or a path with wildcards in its last part. The files are compressed. They "
            L"are\n"
            L"added with their names, after those that are there already; empty files are left out. With\n"
            L"--item, SOURCE is one file, which replaces the value of the item. The profile is created if "
            L"it\n"
            L"is missing, and left unchanged if a file cannot be read.",
        .options = kEmbedOptions,
        .run = RunEmbed,
    };
}

Command ExtractCommand() {
    return {
        .name = L"extract",
        .summary = L"Write the files of a profile to a folder",
        .operands = L"FILE TARGET",
        .help =
            L"TARGET is a folder, which is created if it is missing, or with --item a file. Existing files "
            L"are\n"
            L"replaced. Nothing is written outside the folder: files whose names lead out of it, or to a\n"
            L"device, are left out, with the exit code 1. A wrong password is not detected: the files are\n"
            L"empty then, or meaningless.",
        .options = kExtractOptions,
        .run = RunExtract,
    };
}

Command PasteCommand() {
    return {
        .name = L"paste",
        .summary = L"Save the profile on the clipboard to a file",
        .operands = L"OUT",
        .help = L"OUT is replaced if it exists.",
        .options = kPasteOptions,
        .run = RunPaste,
    };
}

} // namespace vlm
