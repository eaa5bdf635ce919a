#include "tests/support/temp_folder.h"

#include "frame/owners.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>

namespace vxut::test {
namespace {

std::atomic<int> foldersMade{0};

clsAutoCloseFile OpenFile(const String& path, DWORD access, DWORD disposition) {
    return clsAutoCloseFile(CreateFileW(path.Text(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                        disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

} // namespace

FreshFolder::FreshFolder() {
    wchar_t base[MAX_PATH];
    GetTempPathW(MAX_PATH, base);
    path_ = std::wstring(base) + L"vxut-test-" + std::to_wstring(GetCurrentProcessId()) + L'-' +
            std::to_wstring(++foldersMade);
    RemoveTree(path_);
    EXPECT_TRUE(CreateDirectoryW(path_.c_str(), nullptr));
}

String FreshFolder::Put(const wchar_t* name, const std::string& content) const {
    const clsAutoCloseFile file = OpenFile(At(name), GENERIC_WRITE, CREATE_ALWAYS);
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &written, nullptr));
    return At(name);
}

std::string FreshFolder::Get(const wchar_t* name) const {
    const clsAutoCloseFile file = OpenFile(At(name), GENERIC_READ, OPEN_EXISTING);
    if (!file) return "(no file)";
    std::string content(GetFileSize(file.Get(), nullptr), '\0');
    DWORD count = 0;
    EXPECT_TRUE(ReadFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &count, nullptr));
    return content;
}

bool FreshFolder::Has(const wchar_t* name) const {
    return GetFileAttributesW(At(name).Text()) != INVALID_FILE_ATTRIBUTES;
}

void FreshFolder::RemoveTree(const std::wstring& path) {
    WIN32_FIND_DATAW data;
    clsAutoCloseFind find(FindFirstFileW((path + L"\\*").c_str(), &data));
    if (!find) return;
    do {
        const std::wstring name = data.cFileName;
        if (name == L"." || name == L"..") continue;
        const std::wstring child = path + L'\\' + name;
        if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            RemoveTree(child);
        } else {
            SetFileAttributesW(child.c_str(), FILE_ATTRIBUTE_NORMAL);
            DeleteFileW(child.c_str());
        }
    } while (FindNextFileW(find.Get(), &data));
    find.Reset();
    RemoveDirectoryW(path.c_str());
}

} // namespace vxut::test
