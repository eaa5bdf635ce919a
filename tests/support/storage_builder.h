// Structured storages and the property sets in them, made through the system.
#pragma once

#include "tests/support/document_builder.h"

#include <objbase.h>
#include <windows.h>

#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace vxut::test {

// A stream; its name may be that of a storage, a slash and a name in it.
using StorageStream = std::pair<std::wstring, std::string>;

inline void CheckResult(HRESULT result) {
    if (FAILED(result)) throw std::runtime_error("storage: " + std::to_string(result));
}

// Writes a file. Throws std::runtime_error.
inline void MakeStorage(const wchar_t* path, const std::vector<StorageStream>& streams) {
    constexpr DWORD kMode = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
    IStorage* root = nullptr;
    CheckResult(StgCreateDocfile(path, kMode, 0, &root));
    std::map<std::wstring, IStorage*> storages = {{L"", root}};
    for (const auto& [name, content] : streams) {
        const size_t slash = name.find(L'/');
        const std::wstring folder = slash == name.npos ? L"" : name.substr(0, slash);
        IStorage*& storage = storages[folder];
        if (!storage) CheckResult(root->CreateStorage(folder.c_str(), kMode, 0, 0, &storage));
        const std::wstring leaf = slash == name.npos ? name : name.substr(slash + 1);
        if (leaf.empty()) continue;
        IStream* stream = nullptr;
        CheckResult(storage->CreateStream(leaf.c_str(), kMode, 0, 0, &stream));
        CheckResult(stream->Write(content.data(), static_cast<ULONG>(content.size()), nullptr));
        stream->Release();
    }
    for (auto storage = storages.rbegin(); storage != storages.rend(); ++storage) storage->second->Release();
}

// A value of a property set with its type.
inline std::string NarrowValue(const std::string& text) {
    std::string value = Little32(VT_LPSTR) + Little32(text.size() + 1) + text + '\0';
    value.resize((value.size() + 3) / 4 * 4);
    return value;
}
inline std::string TimeValue(uint64_t time) { return Little32(VT_FILETIME) + Number(time, 8); }

inline constexpr wchar_t kSummaryName[] = L"\5SummaryInformation";

// A summary as a stream; its first property is the code page.
inline std::string SummarySet(std::vector<std::pair<uint32_t, std::string>> properties) {
    properties.insert(properties.begin(), {1, Little32(VT_I2) + Little32(1252)});
    std::string table;
    std::string values;
    for (const auto& [id, value] : properties) {
        table += Little32(id) + Little32(8 + 8 * properties.size() + values.size());
        values += value;
    }
    constexpr char kFormat[] = "\xE0\x85\x9F\xF2\xF9\x4F\x68\x10\xAB\x91\x08\x00\x2B\x27\xB3\xD9";
    const std::string section =
        Little32(8 + table.size() + values.size()) + Little32(properties.size()) + table + values;
    return Little16(0xFFFE) + Little16(0) + Little32(0x20005) + std::string(16, '\0') + Little32(1) +
           std::string(kFormat, 16) + Little32(48) + section;
}

} // namespace vxut::test
