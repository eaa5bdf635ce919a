// The library as a host loads it: its names, its version, its frame.
#include "../support/debug_strings.h"
#include "exported_names.h"
#include "util.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <set>
#include <string>
#include <vector>

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

std::wstring LibraryPath() {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(GetModuleHandleW(L"vxut21.dll"), path, MAX_PATH);
    return path;
}

// The version number in the resources of the DLL.
uint32_t ResourceVersion() {
    const std::wstring path = LibraryPath();
    std::vector<char> data(GetFileVersionInfoSizeW(path.c_str(), nullptr));
    GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(data.size()), data.data());
    VS_FIXEDFILEINFO* information = nullptr;
    UINT size = 0;
    return VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&information), &size)
               ? information->dwFileVersionMS
               : 0;
}

TEST(VersionTest, IsThatOfTheFile) {
    EXPECT_EQ(UtilGetVersion(0), ResourceVersion());
    const uint32_t versions[] = {0x150001, 21, 1, 0, 0xFFFFFFFF};
    for (uint32_t selector = 0; selector < 5; ++selector)
        EXPECT_EQ(UtilGetVersion(selector), versions[selector]);
}

TEST(FrameApiTest, DoorsOpen) {
    EXPECT_EQ(UtilGetFlags(), 0) << "nobody listens at first";
    UtilDebug(L"%s", reinterpret_cast<const wchar_t*>(1)); // is not formatted
    const HUTILJOB job = UtilJobOpen(L"API", 0);
    ASSERT_NE(job, nullptr);
    EXPECT_EQ(UtilJobOpen(L"API", 0), job);
    EXPECT_EQ(UtilJobClose(job), UTIL_OK);
    EXPECT_EQ(UtilJobClose(job), UTIL_OK);
    EXPECT_EQ(UtilIsWPtr(L"Test", reinterpret_cast<void*>(16), L"value", 4), 0);
    EXPECT_EQ(UtilSafeStrlen(L"Test", L"seven77"), 7);
}

// A second copy of the DLL, which the program does not hold.
TEST(LoadTest, ComesAndGoesWithoutTrouble) {
    const std::wstring path = LibraryPath();
    const std::wstring copy = path + L"." + std::to_wstring(GetCurrentProcessId()) + L".dll";
    ASSERT_TRUE(CopyFileW(path.c_str(), copy.c_str(), TRUE));
    for (int i = 0; i < 2; ++i) {
        const vxut::test::DebugStrings warnings;
        const HMODULE library = LoadLibraryW(copy.c_str());
        ASSERT_NE(library, nullptr);
        const auto getVersion = reinterpret_cast<decltype(&UtilGetVersion)>(
            reinterpret_cast<void*>(GetProcAddress(library, "UtilGetVersion")));
        EXPECT_EQ(getVersion(1), 21u);
        EXPECT_TRUE(FreeLibrary(library));
        EXPECT_EQ(GetModuleHandleW(copy.c_str()), nullptr);
        EXPECT_FALSE(warnings.Heard("hActCtx")); // the manifest is found in the resources
        EXPECT_FALSE(warnings.Heard("WARNING")) << warnings.Text();
    }
    EXPECT_TRUE(DeleteFileW(copy.c_str()));
}

} // namespace
