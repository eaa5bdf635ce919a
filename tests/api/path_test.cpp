// The path family as a host sees it.
#include "util/path.h"

#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which it needs:
#include <oleauto.h>

#include <cerrno>
#include <string>

namespace {

TEST(PathExports, SplitAndMergeAreInverse) {
    wchar_t drive[UTIL_DRIVE_UNITS], directory[UTIL_DIRECTORY_UNITS];
    wchar_t name[UTIL_NAME_UNITS], extension[UTIL_EXTENSION_UNITS];
    wchar_t merged[UTIL_PATH_UNITS];
    for (const wchar_t* path :
         {L"C:\\a\\b.c\\name.tar.gz", L"name", L"\\\\server\\share\\x.y", L".ext", L"D:", L"dir\\"}) {
        ASSERT_EQ(UtilSplitpath(path, drive, directory, name, extension), 0) << path;
        EXPECT_EQ(UtilMergepath(merged, drive, directory, name, extension), 0);
        EXPECT_STREQ(merged, path);
    }
    const std::wstring tooLong(300, L'n');
    EXPECT_EQ(UtilSplitpath((L"C:\\" + tooLong).c_str(), nullptr, nullptr, name, nullptr), ERANGE);
    EXPECT_STREQ(name, L"");
    EXPECT_EQ(UtilMergepath(merged, L"C:", tooLong.c_str(), L"name", L"txt"), ERANGE);
    EXPECT_STREQ(merged, L"");
    EXPECT_EQ(UtilSplitpath(nullptr, drive, directory, name, extension), EINVAL);
    EXPECT_EQ(UtilMergepath(nullptr, L"C:", L"", L"a", L""), EINVAL);
}

TEST(PathExports, AFullPathIsWholeOrEmpty) {
    wchar_t current[UTIL_PATH_UNITS];
    GetCurrentDirectoryW(UTIL_PATH_UNITS, current);
    const std::wstring here = current;
    const struct {
        const wchar_t* relative;
        uint32_t capacity;
        std::wstring full;
    } kRows[] = {
        {L"C:\\a\\..\\b\\.\\c.txt", UTIL_PATH_UNITS, L"C:\\b\\c.txt"},
        {L"x.txt", UTIL_PATH_UNITS, here + (here.back() == L'\\' ? L"" : L"\\") + L"x.txt"},
        {nullptr, UTIL_PATH_UNITS, here},
        {L"", UTIL_PATH_UNITS, here},
        {L"C:\\b\\c.txt", 11, L"C:\\b\\c.txt"},
        {L"C:\\b\\c.txt", 10, L""},
        {L"C:\\b\\c.txt", 1, L""},
        {nullptr, 2, L""},
        {L"C:\\b\\c.txt", 0, L"untouched"},
    };
    for (const auto& row : kRows) {
        wchar_t target[UTIL_PATH_UNITS] = L"untouched";
        UtilFullpath(target, row.relative, row.capacity);
        EXPECT_EQ(target, row.full) << (row.relative ? row.relative : L"null") << ' ' << row.capacity;
        if (row.capacity < 9) EXPECT_STREQ(target + 1, L"ntouched") << "no more is written than fits";
    }
    UtilFullpath(nullptr, L"a", UTIL_PATH_UNITS);
}

TEST(PathExports, VolumeInfoIsFilledForTheRightSizeOnly) {
    UtilFSInfo info = {24, 7, 7, 7, 7};
    EXPECT_EQ(UtilGetFSInfo(L"C:\\", &info), UTIL_FS_ERR_SIZE);
    EXPECT_EQ(info.maximumPath, 7u);
    info.size = sizeof info;
    EXPECT_EQ(UtilGetFSInfo(L"C:\\", &info), info.flags & UTIL_FS_CASE_SENSITIVE);
    EXPECT_TRUE(info.maximumPath == 260 && info.maximumDrive == 3 && info.maximumComponentLength == 255);
}

TEST(PathExports, TokensAreReturnedAsBSTR) {
    SetEnvironmentVariableW(L"VXUT_PATH_TEST", L"value");
    BSTR text = nullptr;
    ASSERT_EQ(UtilExpandDefaultTokensOfFolderPath(L"%VXUT_PATH_TEST%\\x", &text), 1);
    EXPECT_STREQ(text, L"value\\x");
    SysFreeString(text);

    text = reinterpret_cast<BSTR>(1); // must not be looked at
    EXPECT_EQ(UtilExpandDefaultTokensOfFolderPath(nullptr, &text), 0);
    EXPECT_EQ(text, nullptr);
}

} // namespace
