// The library as a host loads it: its names, its version, its load steps.
#include "../support/debug_strings.h"
#include "exported_names.h"
#include "prof.h"
#include "util.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <set>
#include <string>

namespace {

const char* Module() { return reinterpret_cast<const char*>(GetModuleHandleW(L"vxut21.dll")); }

const IMAGE_NT_HEADERS64* Headers() {
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(Module());
    return reinterpret_cast<const IMAGE_NT_HEADERS64*>(Module() + dos->e_lfanew);
}

TEST(ExportTableTest, HasTheListedNamesAndNoOthers) {
    const char* const module = Module();
    const DWORD directory =
        Headers()->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress;
    const auto* exports = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(module + directory);
    const auto* offsets = reinterpret_cast<const DWORD*>(module + exports->AddressOfNames);
    std::set<std::string> names;
    for (DWORD i = 0; i < exports->NumberOfNames; ++i) names.insert(module + offsets[i]);
    EXPECT_EQ(names, std::set<std::string>(std::begin(kExportedNames), std::end(kExportedNames)));
}

TEST(VersionTest, EachFamilyReturnsItsOwn) {
    const uint32_t versions[][2] = {
        {0x150001, 0x1501}, {21, 21}, {1, 1}, {0, 0xFFFFFFFF}, {0xFFFFFFFF, 0xFFFFFFFF}};
    for (uint32_t selector = 0; selector < 5; ++selector) {
        EXPECT_EQ(UtilGetVersion(selector), versions[selector][0]);
        EXPECT_EQ(ProfGetVersion(selector), versions[selector][1]);
    }
}

// Debug data of the compiler's run-time would make up an eighth of the file.
TEST(ImageTest, HasNoForeignDebugSections) {
    const auto* section = IMAGE_FIRST_SECTION(Headers());
    for (WORD i = 0; i < Headers()->FileHeader.NumberOfSections; ++i)
        EXPECT_FALSE(section[i].Characteristics & IMAGE_SCN_MEM_DISCARDABLE && section[i].Name[0] == '/')
            << i;
}

// A second copy of the DLL, which the program does not import.
TEST(LoadTest, LoadsAndUnloadsWithoutWarnings) {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(GetModuleHandleW(L"vxut21.dll"), path, MAX_PATH);
    const std::wstring copy = path + std::to_wstring(GetCurrentProcessId()) + L".dll";
    ASSERT_TRUE(CopyFileW(path, copy.c_str(), TRUE));
    for (int i = 0; i < 2; ++i) {
        const vxut::test::DebugStrings warnings;
        const HMODULE library = LoadLibraryW(copy.c_str());
        ASSERT_NE(library, nullptr);
        const auto getVersion = reinterpret_cast<decltype(&UtilGetVersion)>(
            reinterpret_cast<void*>(GetProcAddress(library, "UtilGetVersion")));
        EXPECT_EQ(getVersion(1), 21u);
        EXPECT_TRUE(FreeLibrary(library));
        EXPECT_EQ(GetModuleHandleW(copy.c_str()), nullptr);
        EXPECT_FALSE(warnings.Heard("WARNING")) << warnings.Text();
    }
    EXPECT_TRUE(DeleteFileW(copy.c_str()));
}

} // namespace
