#include "host/profile_file.h"

#include "host/binary_file.h"
#include "host/command.h"
#include "host/text.h"
#include "host/text_file.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

namespace vlm {

namespace {

struct ErrorWords {
    int32_t code;
    const wchar_t* words;
};
constexpr ErrorWords kErrorWords[] = {
    {PROF_ERR_OPEN, L"the file cannot be opened for reading, or its name is reserved"},
    {PROF_ERR_SAVE, L"the file cannot be opened for writing, or the save failed"},
    {PROF_ERR_WRITE, L"an entry could not be written, or its contents could not be decoded"},
    {PROF_ERR_JOB, L"there is no profile"},
    {PROF_ERR_NOT_FOUND, L"there is no such item, or its value is empty"},
    {PROF_ERR_FORMAT, L"the profile is damaged, or its form is not supported"},
    {PROF_ERR_MEMORY, L"out of memory"},
    {PROF_ERR_VALUE, L"the value is not of this type"},
    {PROF_ERR_BUSY, L"the file stayed in use, or it is too short for a profile"},
};

constexpr wchar_t kRootLine[] = L"[/]";
constexpr size_t kHeadBytes = size_t{64} * 1024;
constexpr std::string_view kPackedMagic = "ZRzQ";

// Fails with the meaning of a result code and the system's reason, if it has one.
[[noreturn]] void FailFile(const std::wstring& path, int32_t code, DWORD reason) {
    const bool isSystem = code == PROF_ERR_OPEN || code == PROF_ERR_SAVE || code == PROF_ERR_BUSY;
    Fail(path + L": " + ProfileErrorWords(code) +
         (isSystem && reason != ERROR_SUCCESS ? L" (" + SystemMessage(reason) + L")" : L""));
}

// The format that keeps the form of a file which begins with this text and is not packed.
uint32_t FormatOf(const std::wstring& path, const std::wstring& head) {
    const size_t start = std::min(head.find_first_not_of(L" \t\r\n"), head.size());
    const std::wstring_view text = std::wstring_view(head).substr(start);
    if (text.starts_with(L'[') && !text.starts_with(kRootLine))
        Fail(path + L": a file of flat sections cannot be written back; convert it to a profile first");
    const bool isXml = text.starts_with(L"<?xml");
    if (isXml && text.find(L"<xfdf ") < text.find(L"<profile>"))
        Fail(path + L": a file of form fields cannot be written back; convert it to a profile first");
    return isXml ? PROF_FORMAT_XML : PROF_FORMAT_TEXT;
}

bool IsEmptyFile(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    return GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) && !data.nFileSizeHigh &&
           !data.nFileSizeLow;
}

// Stops at the first entry, so that the enumeration returns 0 if there is one.
int CALLBACK StopAtOnce(HPROF, const wchar_t*, const wchar_t*, HPROFLIST, void*) noexcept { return 0; }

} // namespace

std::wstring ProfileErrorWords(int32_t code) {
    for (const ErrorWords& row : kErrorWords)
        if (row.code == code) return row.words;
    return L"result " + std::to_wstring(code);
}

ProfileFile::ProfileFile(std::wstring path, OpenFunction open)
    : path_(std::move(path)), job_(open(path_.c_str())), reason_(GetLastError()) {
    if (!job_) Fail(path_ + L": " + ProfileErrorWords(PROF_ERR_MEMORY));
}

void ProfileFile::RequireRead() const {
    if (const int32_t error = ProfGetError(Job())) FailFile(path_, error, reason_);
}

void ProfileFile::Require(const std::wstring& path) {
    if (GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES)
        Fail(path + L": " + SystemMessage(GetLastError()));
}

ProfileFile ProfileFile::ForReading(const std::wstring& path) {
    ProfileFile file(path, ProfJobOpenW);
    file.RequireRead();
    return file;
}

// The exclusive open makes a missing file itself, the shared one reports it.
ProfileFile ProfileFile::ForChange(const std::wstring& path, bool isShared) {
    ProfileFile file(path, isShared ? ProfJobOpenW : ProfJobOpenExclusiveW);
    if (isShared && ProfGetError(file.Job()) == PROF_ERR_OPEN && file.reason_ == ERROR_FILE_NOT_FOUND)
        return file;
    file.RequireRead();
    file.format_ = file.OwnFormat();
    file.RequireItems();
    return file;
}

ProfileFile ProfileFile::Empty() {
    return {L"the new profile", [](const wchar_t*) { return ProfJobOpenW(nullptr); }};
}

ProfileFile ProfileFile::FromClipboard() {
    if (!ProfIsClipboardDataAvailable()) Fail(L"the clipboard contains no profile");
    ProfileFile file(L"the clipboard", [](const wchar_t*) { return ProfJobOpenClipboard(nullptr); });
    file.RequireRead();
    return file;
}

// The library does not tell which form is inside a packed file. One that it has packed itself is packed to
// the same bytes again; of any other one the form is not known, and becomes the text form.
uint32_t ProfileFile::OwnFormat() const {
    // An absolute path: "-" is standard input.
    const TextFile head = ReadTextFile(std::filesystem::absolute(path_).wstring(), kHeadBytes);
    if (!head.bytes.starts_with(kPackedMagic))
        return FormatOf(path_, TextOf(head, ProfGetOption(PROF_OPTION_CODE_PAGE)));
    constexpr uint32_t kPackedXml = PROF_FORMAT_XML | PROF_FORMAT_PACKED;
    return IsSavedAs(kPackedXml) ? kPackedXml : PROF_FORMAT_TEXT | PROF_FORMAT_PACKED;
}

bool ProfileFile::IsSavedAs(uint32_t format) const {
    const std::wstring copy = (std::filesystem::temp_directory_path() /
                               (L"vlm-" + std::to_wstring(GetCurrentProcessId()) + L".tmp"))
                                  .wstring();
    const int32_t result = ProfSaveW(Job(), copy.c_str(), format);
    const bool isSame = result == PROF_OK && ReadBinaryFile(copy) == ReadBinaryFile(path_);
    DeleteFileW(copy.c_str());
    return isSame;
}

void ProfileFile::RequireItems() const {
    if (ProfEnumW(Job(), nullptr, StopAtOnce, nullptr) && !IsEmptyFile(path_))
        Fail(path_ + L": contains no items of a profile; its contents would be lost");
}

void ProfileFile::SaveAs(const std::wstring& path, uint32_t format) const {
    if (const int32_t error = ProfSaveW(Job(), path.c_str(), format)) FailFile(path, error, GetLastError());
}

} // namespace vlm
