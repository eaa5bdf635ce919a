// A fresh folder on disk for one test, removed with all that is in it.
#pragma once

#include "frame/string.h"

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
        Remove();
        std::filesystem::create_directory(path_);
    }
    ~FreshFolder() { Remove(); }
    FreshFolder(const FreshFolder&) = delete;
    FreshFolder& operator=(const FreshFolder&) = delete;

    // With a backslash at its end.
    String Path() const { return At(L""); }
    // The path of a name in the folder.
    String At(const wchar_t* name) const { return (path_.wstring() + L'\\' + name).c_str(); }
    // Puts a file there and gives its path.
    String Put(const wchar_t* name, const std::string& content) const {
        std::ofstream(path_ / name, std::ios::binary) << content;
        return At(name);
    }
    // The bytes of a file there, and whether it exists.
    std::string Get(const wchar_t* name) const {
        std::ifstream file(path_ / name, std::ios::binary);
        if (!file) return "(no file)";
        return {std::istreambuf_iterator<char>(file), {}};
    }
    bool Has(const wchar_t* name) const { return std::filesystem::exists(path_ / name); }

private:
    void Remove() const {
        if (!std::filesystem::exists(path_)) return;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(path_))
            SetFileAttributesW(entry.path().c_str(), FILE_ATTRIBUTE_NORMAL); // a read-only file would stay
        std::filesystem::remove_all(path_);
    }

    std::filesystem::path path_;
};

} // namespace vxut::test
