#include "host/binary_file.h"

#include "host/command.h"
#include "host/owners.h"
#include "host/text.h"

#include <windows.h>

#include <algorithm>

namespace vlm {

namespace {

constexpr size_t kPiece = size_t{1024} * 1024;

[[noreturn]] void FailFile(const std::wstring& path, DWORD error) {
    Fail(path + L": " + SystemMessage(error));
}

DWORD WriteAll(HANDLE file, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto piece = static_cast<DWORD>(std::min(bytes.size(), kPiece));
        DWORD written = 0;
        if (!::WriteFile(file, bytes.data(), piece, &written, nullptr)) return GetLastError();
        if (written == 0) return ERROR_DISK_FULL;
        bytes.remove_prefix(written);
    }
    return FlushFileBuffers(file) ? static_cast<DWORD>(ERROR_SUCCESS) : GetLastError();
}

// A pipe ends with an error, once its writer has closed it.
std::string ReadAll(HANDLE file, const std::wstring& name, size_t maximumBytes) {
    std::string bytes;
    char chunk[64 * 1024];
    DWORD count = 0;
    while (bytes.size() < maximumBytes) {
        if (!ReadFile(file, chunk, sizeof chunk, &count, nullptr)) {
            if (GetLastError() == ERROR_BROKEN_PIPE) break;
            FailFile(name, GetLastError());
        }
        if (count == 0) break;
        bytes.append(chunk, count);
    }
    return bytes;
}

DWORD WriteNew(const std::wstring& path, std::string_view bytes) {
    const HandleOwner file =
        Own(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    return file ? WriteAll(file.get(), bytes) : GetLastError();
}

} // namespace

std::string ReadBinaryFile(const std::wstring& path, size_t maximumBytes) {
    const HandleOwner file = Own(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                             nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) FailFile(path, GetLastError());
    return ReadAll(file.get(), path, maximumBytes);
}

std::string ReadInput(const std::wstring& path, size_t maximumBytes) {
    if (path != L"-") return ReadBinaryFile(path, maximumBytes);
    return ReadAll(GetStdHandle(STD_INPUT_HANDLE), L"standard input", maximumBytes);
}

void WriteBinaryFile(const std::wstring& path, std::string_view bytes) {
    const std::wstring sibling = path + L"." + std::to_wstring(GetCurrentProcessId()) + L".new";
    DWORD error = WriteNew(sibling, bytes);
    if (error == ERROR_SUCCESS && !MoveFileExW(sibling.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING))
        error = GetLastError();
    if (error == ERROR_SUCCESS) return;
    if (error != ERROR_FILE_EXISTS) DeleteFileW(sibling.c_str());
    FailFile(path, error);
}

} // namespace vlm
