// The DLL exports exactly what its list says.
#include "exported_names.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <set>
#include <string>

namespace {

template <class T>
const T* At(const char* module, DWORD offset) {
    return reinterpret_cast<const T*>(module + offset);
}

std::set<std::string> NamesExportedBy(HMODULE loaded) {
    const char* module = reinterpret_cast<const char*>(loaded);
    const auto* headers =
        At<IMAGE_NT_HEADERS64>(module, static_cast<DWORD>(At<IMAGE_DOS_HEADER>(module, 0)->e_lfanew));
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    const auto* exports = At<IMAGE_EXPORT_DIRECTORY>(module, directory.VirtualAddress);
    const auto* names = At<DWORD>(module, exports->AddressOfNames);
    std::set<std::string> result;
    for (DWORD i = 0; i < exports->NumberOfNames; ++i) result.insert(At<char>(module, names[i]));
    return result;
}

TEST(ExportTableTest, HasTheListedNamesAndNoOthers) {
    const HMODULE library = GetModuleHandleW(L"vxut21.dll");
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(NamesExportedBy(library),
              std::set<std::string>(std::begin(kExportedNames), std::end(kExportedNames)));
}

} // namespace
