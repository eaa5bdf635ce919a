// The path family as a host sees it.
#include "util/path.h"

#include <gtest/gtest.h>
#include <windows.h>
// Behind windows.h, which it needs:
#include <oleauto.h>

#include <cerrno>
#include <string>

namespace {

struct Parts {
    wchar_t drive[UTIL_DRIVE_UNITS];
    wchar_t directory[UTIL_DIRECTORY_UNITS];
    wchar_t name[UTIL_NAME_UNITS];
    wchar_t extension[UTIL_EXTENSION_UNITS];

    int32_t Split(const wchar_t* path) { return UtilSplitpath(path, drive, directory, name, extension); }
};

TEST(PathExports, SplitAndMergeAreInverse) {
    Parts parts;
    wchar_t merged[UTIL_PATH_UNITS];
    for (const wchar_t* path :
         {L"C:\\a\\b.c\\name.tar.gz", L"name", L"\\\\server\\share\\x.y", L".ext", L"D:", L"dir\\"}) {
        ASSERT_EQ(parts.Split(path), 0) << path;
        EXPECT_EQ(UtilMergepath(merged, parts.drive, parts.directory, parts.name, parts.extension), 0);
        EXPECT_STREQ(merged, path);
    }
    EXPECT_EQ(UtilSplitpath(L"C:\\data\\a.txt", nullptr, nullptr, parts.name, nullptr), 0);
    EXPECT_STREQ(parts.name, L"a");

    EXPECT_EQ(parts.Split((L"C:\\" + std::wstring(300, L'n')).c_str()), ERANGE);
    EXPECT_STREQ(parts.name, L"");
    EXPECT_EQ(parts.Split(nullptr), EINVAL);
    EXPECT_EQ(UtilMergepath(merged, L"C:", std::wstring(255, L'd').c_str(), L"name", L"txt"), ERANGE);
    EXPECT_STREQ(merged, L"");
    EXPECT_EQ(UtilMergepath(nullptr, L"C:", L"", L"a", L""), EINVAL);
}

TEST(PathExports, FullPathStaysWithinItsBuffer) {
    wchar_t target[UTIL_PATH_UNITS] = L"1234567";
    UtilFullpath(target, L"C:\\a\\..\\b", 4);
    EXPECT_EQ(target[4], L'5');
    UtilFullpath(target, L"C:\\a\\..\\b\\.\\c.txt", UTIL_PATH_UNITS);
    EXPECT_STREQ(target, L"C:\\b\\c.txt");
    UtilFullpath(nullptr, L"C:\\a", 0);
}

TEST(PathExports, VolumeInfoIsFilledForTheRightSizeOnly) {
    UtilFSInfo info = {24, 7, 7, 7, 7};
    EXPECT_EQ(UtilGetFSInfo(L"C:\\", &info), UTIL_FS_ERR_SIZE);
    EXPECT_EQ(info.maximumPath, 7u);
    EXPECT_EQ(UtilGetFSInfo(L"C:\\", nullptr), UTIL_FS_ERR_SIZE);
    info.size = sizeof info;
    EXPECT_EQ(UtilGetFSInfo(L"C:\\", &info), info.flags & UTIL_FS_CASE_SENSITIVE);
    EXPECT_TRUE(info.maximumPath == 260 && info.maximumDrive == 3 && info.maximumComponentLength == 255);
    EXPECT_NE(info.flags & UTIL_FS_LONG_NAMES, 0u);
    EXPECT_EQ(UtilGetFSInfo(L"?:\\", &info), 0u);
    EXPECT_TRUE(info.flags == 0 && info.maximumComponentLength == 0);
}

TEST(PathExports, TokensComeOutAsBSTR) {
    SetEnvironmentVariableW(L"VXUT_PATH_TEST", L"value");
    BSTR text = nullptr;
    ASSERT_EQ(UtilExpandDefaultTokensOfFolderPath(L"%VXUT_PATH_TEST%\\x", &text), 1);
    EXPECT_STREQ(text, L"value\\x");
    EXPECT_EQ(SysStringLen(text), 7u);
    SysFreeString(text);

    text = reinterpret_cast<BSTR>(1); // must not be looked at
    EXPECT_EQ(UtilExpandDefaultTokensOfFolderPath(nullptr, &text), 0);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(UtilExpandDefaultTokensOfFolderPath(L"x", nullptr), 0);
}

} // namespace
