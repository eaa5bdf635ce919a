// A fresh folder on disk for one test, removed with all that is in it.
#pragma once

#include "frame/string.h"

#include <string>

namespace vxut::test {

class FreshFolder {
public:
    FreshFolder();
    ~FreshFolder() { RemoveTree(path_); }
    FreshFolder(const FreshFolder&) = delete;
    FreshFolder& operator=(const FreshFolder&) = delete;

    // With a backslash at its end.
    String Path() const { return (path_ + L'\\').c_str(); }
    // The path of a name in the folder.
    String At(const wchar_t* name) const { return (path_ + L'\\' + name).c_str(); }
    // Puts a file there and gives its path.
    String Put(const wchar_t* name, const std::string& content) const;
    // The bytes of a file there, and whether it exists.
    std::string Get(const wchar_t* name) const;
    bool Has(const wchar_t* name) const;

private:
    static void RemoveTree(const std::wstring& path);

    std::wstring path_;
};

} // namespace vxut::test
