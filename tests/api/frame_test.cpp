// The frame as a host sees it.
#include "../support/debug_strings.h"
#include "util.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

namespace {

// The version number in the resources of the DLL.
uint32_t ResourceVersion() {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(GetModuleHandleW(L"vxut21.dll"), path, MAX_PATH);
    std::vector<char> data(GetFileVersionInfoSizeW(path, nullptr));
    GetFileVersionInfoW(path, 0, static_cast<DWORD>(data.size()), data.data());
    VS_FIXEDFILEINFO* information = nullptr;
    UINT size = 0;
    return VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&information), &size)
               ? information->dwFileVersionMS
               : 0;
}

TEST(VersionTest, IsThatOfTheFile) {
    EXPECT_EQ(UtilGetVersion(0), ResourceVersion());
    EXPECT_EQ(UtilGetVersion(0), 0x150001u);
    EXPECT_EQ(UtilGetVersion(1), 21u);
    EXPECT_EQ(UtilGetVersion(2), 1u);
    EXPECT_EQ(UtilGetVersion(3), 0u);
    EXPECT_EQ(UtilGetVersion(4), 0xFFFFFFFFu);
}

TEST(FrameApiTest, NobodyListensAtFirst) {
    EXPECT_EQ(UtilGetFlags(), 0);
    UtilDebug(L"%s", reinterpret_cast<const wchar_t*>(1)); // is not formatted
}

TEST(FrameApiTest, OpensAndClosesJobs) {
    const HUTILJOB job = UtilJobOpen(L"API", 0);
    ASSERT_NE(job, nullptr);
    EXPECT_EQ(UtilJobOpen(L"API", 0), job);
    EXPECT_EQ(UtilJobClose(job), UTIL_OK);
    EXPECT_EQ(UtilJobClose(job), UTIL_OK);
}

TEST(FrameApiTest, ProbesPointers) {
    int value = 0;
    EXPECT_EQ(UtilIsWPtr(L"Test", &value, L"value", sizeof value), 1);
    EXPECT_EQ(UtilIsWPtr(L"Test", reinterpret_cast<void*>(16), L"value", sizeof value), 0);
    EXPECT_EQ(UtilSafeStrlen(L"Test", L"seven77"), 7);
}

// A second copy of the DLL, which the program does not hold.
class LoadTest : public testing::Test {
protected:
    void SetUp() override {
        wchar_t path[MAX_PATH];
        GetModuleFileNameW(GetModuleHandleW(L"vxut21.dll"), path, MAX_PATH);
        copy = std::wstring(path) + L"." + std::to_wstring(GetCurrentProcessId()) + L".dll";
        ASSERT_TRUE(CopyFileW(path, copy.c_str(), TRUE));
    }
    void TearDown() override { EXPECT_TRUE(DeleteFileW(copy.c_str())); }

    std::wstring copy;
};

TEST_F(LoadTest, ComesAndGoesWithoutTrouble) {
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
}

} // namespace
