#include "host/profile_file.h"

#include "host/command.h"
#include "host/text.h"
#include "host/text_file.h"

#include <windows.h>

#include <algorithm>
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
    {PROF_ERR_FORMAT, L"the profile is damaged, or this form is not available"},
    {PROF_ERR_MEMORY, L"memory ran out"},
    {PROF_ERR_VALUE, L"the value is not of this type"},
    {PROF_ERR_BUSY, L"the file stayed in use, or it is too short for a profile"},
};

constexpr wchar_t kRootLine[] = L"[/]";
constexpr size_t kHeadBytes = size_t{64} * 1024;

bool IsThere(const std::wstring& path) { return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

// The format that keeps the form of a file which begins with this text.
uint32_t FormatOf(const std::wstring& path, const std::wstring& head) {
    const size_t start = std::min(head.find_first_not_of(L" \t\r\n"), head.size());
    const std::wstring_view text = std::wstring_view(head).substr(start);
    if (text.starts_with(L'[') && !text.starts_with(kRootLine))
        Fail(path + L": a file of flat sections cannot be written back; convert it to a profile first");
    if (!text.starts_with(L"<?xml")) return PROF_FORMAT_TEXT | PROF_FORMAT_KEEP_PACKED;
    return text.find(L"<xfdf") == std::wstring_view::npos ? PROF_FORMAT_XML : PROF_FORMAT_XFDF;
}

bool IsEmptyFile(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    return GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) && !data.nFileSizeHigh &&
           !data.nFileSizeLow;
}

// Stops at the first entry, so that the enumeration gives 0 if there is one.
int CALLBACK StopAtOnce(HPROF, const wchar_t*, const wchar_t*, HPROFLIST, void*) noexcept { return 0; }

} // namespace

std::wstring ProfileErrorWords(int32_t code) {
    for (const ErrorWords& row : kErrorWords)
        if (row.code == code) return row.words;
    return L"result " + std::to_wstring(code);
}

clsProfileFile::clsProfileFile(std::wstring path, HPROF job, uint32_t format)
    : path_(std::move(path)), job_(job), format_(format) {
    if (!job) Fail(ProfileErrorWords(PROF_ERR_MEMORY));
    if (const int32_t error = ProfGetError(job)) Fail(path_ + L": " + ProfileErrorWords(error));
}

void clsProfileFile::Require(const std::wstring& path) {
    if (!IsThere(path)) Fail(path + L": " + SystemMessage(GetLastError()));
}

clsProfileFile clsProfileFile::ForReading(const std::wstring& path) {
    Require(path);
    return {path, ProfJobOpenW(path.c_str()), PROF_FORMAT_TEXT};
}

clsProfileFile clsProfileFile::ForChange(const std::wstring& path, bool isShared) {
    if (!IsThere(path))
        return {path, isShared ? ProfJobOpenW(nullptr) : ProfJobOpenExclusiveW(path.c_str()),
                PROF_FORMAT_TEXT};
    const std::wstring head = TextOf(ReadTextFile(path, kHeadBytes), ProfGetOption(PROF_OPTION_CODE_PAGE));
    const uint32_t format = FormatOf(path, head);
    clsProfileFile file(path, isShared ? ProfJobOpenW(path.c_str()) : ProfJobOpenExclusiveW(path.c_str()),
                        format);
    file.RequireItems();
    return file;
}

void clsProfileFile::RequireItems() const {
    if (ProfEnumW(Job(), nullptr, StopAtOnce, nullptr) && !IsEmptyFile(path_))
        Fail(path_ + L": holds no items of a profile, and what it holds would be lost");
}

void clsProfileFile::SaveAs(const std::wstring& path, uint32_t format) const {
    if (const int32_t error = ProfSaveW(Job(), path.c_str(), format))
        Fail(path + L": " + ProfileErrorWords(error));
}

} // namespace vlm
