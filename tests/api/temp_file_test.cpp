// The temp-file manager as a host sees it.
#include "util/temp_file.h"

#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which it needs:
#include <oleauto.h>

#include <string>

namespace {

class TempFileExports : public testing::Test {
protected:
    ~TempFileExports() override { SysFreeString(path_); }

    bool Create(const wchar_t* prefix, const wchar_t* extension) {
        return UtilTempFileMgrCreateFile(prefix, extension, 0, &path_) == 1 && IsThere();
    }
    bool IsThere() const { return GetFileAttributesW(path_) != INVALID_FILE_ATTRIBUTES; }

    BSTR path_ = nullptr;
};

TEST_F(TempFileExports, CreateFilesInTheSharedFolder) {
    EXPECT_EQ(UtilTempFileMgrCreateFile(nullptr, L"x", 0, &path_), 0);
    EXPECT_EQ(UtilTempFileMgrCreateFile(L"x", nullptr, 0, &path_), 0);
    EXPECT_EQ(UtilTempFileMgrCreateFile(L"x", L"x", 0, nullptr), 0);
    EXPECT_EQ(path_, nullptr);
    for (const wchar_t* prefix : {L"api", L"..\\..\\api"}) { // the second reallocates the text
        ASSERT_TRUE(Create(prefix, L".png"));
        const std::wstring path = path_;
        EXPECT_EQ(path.size(), SysStringLen(path_));
        EXPECT_NE(path.find(L"\\Velmora\\_21_api"), std::wstring::npos) << path;
        EXPECT_TRUE(path.ends_with(L".png") && !path.ends_with(L"..png")) << path;
        UtilTempFileMgrAdd(path_);
        EXPECT_FALSE(IsThere()) << "no manager is open";
    }
}

TEST_F(TempFileExports, FilesGoAtTheLastCloseAtTheLatest) {
    UtilTempFileMgrClose(); // nothing is open
    UtilTempFileMgrAdd(nullptr);
    UtilTempFileMgrOpen();
    UtilTempFileMgrOpen();
    ASSERT_TRUE(Create(L"close", L"tmp"));
    UtilTempFileMgrAdd(path_);
    UtilTempFileMgrClose();
    EXPECT_TRUE(IsThere());
    UtilTempFileMgrClose();
    EXPECT_FALSE(IsThere());
}

} // namespace
