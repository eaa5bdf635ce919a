#include "profile_support.h"

#include <gtest/gtest.h>

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

std::wstring TreeOfBytes(const std::string& bytes) {
    FakeStream stream(bytes);
    const Job job(ProfJobOpenStream(&stream));
    EXPECT_EQ(ProfGetError(job), PROF_OK);
    return TreeOf(job);
}

std::wstring ValueOf(HPROF job, const wchar_t* path, HPROFLIST list) {
    const int32_t length = ProfGetStringLengthW(job, list, path);
    if (length < 0) return L"<" + std::to_wstring(length) + L">";
    std::wstring value(static_cast<size_t>(length) + 1, L'\0');
    const auto capacity = static_cast<uint32_t>(value.size());
    EXPECT_EQ(ProfGetStringW(job, list, path, value.data(), capacity, nullptr), length);
    value.pop_back();
    return value;
}

FilePlace::FilePlace() {
    static int made = 0;
    const auto name = std::to_string(GetCurrentProcessId()) + '-' + std::to_string(++made);
    path_ = std::filesystem::temp_directory_path() / ("profile-" + name + ".prf");
    DeleteFileW(path_.c_str());
}

void FilePlace::Put(const std::string& bytes) const { std::ofstream(path_, std::ios::binary) << bytes; }

std::string FilePlace::Bytes() const {
    std::ifstream file(path_, std::ios::binary);
    if (!file) return "(no file)";
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string Utf16(const std::wstring& text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

std::string Utf16Marked(const std::wstring& text) { return "\xFF\xFE" + Utf16(text); }

} // namespace vxut::test
