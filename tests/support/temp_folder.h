// A new folder on disk for one test, removed with its contents by the destructor.
#pragma once

#include "text/string.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace vxut::test {

class FreshFolder {
public:
    FreshFolder() {
        static int made = 0;
        const auto name = std::to_wstring(GetCurrentProcessId()) + L'-' + std::to_wstring(++made);
        path_ = std::filesystem::temp_directory_path() / (L"vxut-test-" + name);
        std::filesystem::remove_all(path_);
        std::filesystem::create_directory(path_);
    }
    ~FreshFolder() { std::filesystem::remove_all(path_); }

    // With a backslash at its end.
    String Path() const { return At(L""); }
    // The path of a name in the folder.
    String At(const wchar_t* name) const { return (path_.wstring() + L'\\' + name).c_str(); }
    // Writes a file and returns its path.
    String Put(const wchar_t* name, const std::string& content) const {
        std::ofstream(path_ / name, std::ios::binary) << content;
        return At(name);
    }
    // The bytes of a file of the folder, or "(no file)".
    std::string Get(const wchar_t* name) const {
        std::ifstream file(path_ / name, std::ios::binary);
        if (!file) return "(no file)";
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path path_;
};

} // namespace vxut::test
