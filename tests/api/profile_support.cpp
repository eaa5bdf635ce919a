#include "profile_support.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace vxut::test {
namespace {

int CALLBACK AddEntry(HPROF job, const wchar_t* name, const wchar_t* value, HPROFLIST sublist, void* user) {
    auto& tree = *static_cast<std::wstring*>(user);
    tree += name;
    tree += sublist ? L"{" + TreeOf(job, sublist) + L"}" : L"=" + std::wstring(value) + L";";
    return 1;
}

} // namespace

std::wstring TreeOf(HPROF job, HPROFLIST list) {
    std::wstring tree;
    EXPECT_EQ(ProfEnumW(job, list, AddEntry, &tree), 1);
    return tree;
}

std::wstring ValueOf(HPROF job, const wchar_t* path, HPROFLIST list) {
    const int32_t length = ProfGetStringLengthW(job, list, path);
    if (length < 0) return L"<" + std::to_wstring(length) + L">";
    std::wstring value(static_cast<size_t>(length) + 1, L'\0');
    EXPECT_EQ(ProfGetStringW(job, list, path, value.data(), static_cast<uint32_t>(value.size()), nullptr),
              length);
    value.resize(static_cast<size_t>(length));
    return value;
}

MemoryStream::MemoryStream(const std::string& bytes) {
    CreateStreamOnHGlobal(nullptr, TRUE, &stream_);
    stream_->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
    Seek(0);
}

void MemoryStream::Seek(int64_t position) {
    LARGE_INTEGER offset;
    offset.QuadPart = position;
    stream_->Seek(offset, STREAM_SEEK_SET, nullptr);
}

std::string MemoryStream::Bytes() {
    STATSTG status{};
    stream_->Stat(&status, STATFLAG_NONAME);
    std::string bytes(status.cbSize.QuadPart, '\0');
    Seek(0);
    stream_->Read(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
    return bytes;
}

FilePlace::FilePlace() {
    static std::atomic<int> count{0};
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    path_ = std::wstring(folder) + L"profile-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
            std::to_wstring(++count) + L".prf";
    DeleteFileW(path_.c_str());
}

void FilePlace::Put(const std::string& bytes) const {
    std::ofstream(std::filesystem::path(path_), std::ios::binary) << bytes;
}

std::string FilePlace::Bytes() const {
    std::ifstream file(std::filesystem::path(path_), std::ios::binary);
    EXPECT_TRUE(file.is_open());
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string Utf16(const std::wstring& text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

std::string Utf16Marked(const std::wstring& text) { return "\xFF\xFE" + Utf16(text); }

std::wstring FromUtf16(const std::string& bytes) {
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
    return text;
}

} // namespace vxut::test
