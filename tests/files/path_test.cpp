#include "files/path.h"

#include "frame/validate.h"
#include "tests/support/debug_listener.h"
#include "tests/support/registry_scope.h"
#include "tests/support/temp_folder.h"
#include "util/path.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace vxut {
namespace {

using test::FreshFolder;

TEST(PathPartsTest, SplitsAtTheLastSeparatorAndDot) {
    const struct {
        const wchar_t* path;
        const wchar_t* directory;
        const wchar_t* base;
        const wchar_t* extension;
    } kCases[] = {
        {L"C:\\dir.x\\name.tar.gz", L"C:\\dir.x\\", L"name.tar", L".gz"},
        {L"C:name", L"C:", L"name", L""},
        {L"/unix/style.c", L"/unix/", L"style", L".c"},
        {L"dir.x\\name", L"dir.x\\", L"name", L""},
        {L".profile", L"", L"", L".profile"},
        {L"dir\\", L"dir\\", L"", L""},
        {L"ends.", L"", L"ends", L"."},
        {L"", L"", L"", L""},
    };
    for (const auto& row : kCases) {
        EXPECT_STREQ(DirectoryPart(row.path).Text(), row.directory);
        EXPECT_STREQ(BaseName(row.path).Text(), row.base);
        EXPECT_STREQ(Extension(row.path).Text(), row.extension);
        EXPECT_STREQ(FilePart(row.path).Text(), (std::wstring(row.base) + row.extension).c_str());
    }
    const std::wstring longName(1000, L'n');
    EXPECT_STREQ(FilePart((L"C:\\" + longName).c_str()).Text(), longName.c_str());
}

TEST(PathNamesTest, FullNameTakesTheDotsOut) {
    EXPECT_STREQ(FullName(L"C:\\a\\.\\b.txt").Text(), L"C:\\a\\b.txt");
    EXPECT_STREQ(FullName(L"C:\\a\\..\\b.txt").Text(), L"C:\\b.txt");
    const std::wstring tooLong = L"C:\\" + std::wstring(300, L'n') + L"\\.\\x";
    EXPECT_STREQ(FullName(tooLong.c_str()).Text(), tooLong.c_str());
}

TEST(PathNamesTest, TempDirectoryIsWhole) {
    for (const bool longForm : {false, true}) {
        const String path = TempDirectory(longForm);
        ASSERT_FALSE(path.IsEmpty());
        EXPECT_EQ(path[path.Length() - 1], L'\\');
        String tested = path;
        EXPECT_EQ(DeviceTest(tested), kPathDirectory);
        EXPECT_STREQ(TempDirectory(longForm).Text(), path.Text());
    }
    EXPECT_EQ(Find(TempDirectory(true).Text(), L"~"), -1);
    EXPECT_STREQ(LongName(L"C:\\no such\\name").Text(), L"C:\\no such\\name");
}

TEST(FileNameTest, DeviceWordsAndForbiddenUnitsAreRefused) {
    const struct {
        const wchar_t* name;
        bool allowed;
    } kCases[] = {
        {L"a", true},
        {L"name.tar.gz", true},
        {L".profile", true},
        {L"a b", true},
        {L"\x4E00", true},
        {L"", false},
        {L"a.", false},
        {L"a ", false},
        {L".", false},
        {L" ", false},
        {L"CON", false},
        {L"CON.txt", false},
        {L"CON.", false},
        {L"PRN", false},
        {L"AUX.x", false},
        {L"NUL", false},
        {L"COM1", false},
        {L"COM9.c", false},
        {L"LPT1.doc", false},
        {L"LPT5", false},
        {L"CONSOLE", true},
        {L"COM", true},
        {L"COM0", true},
        {L"COM10", true},
        {L"LPT", true},
        {L"con", true},
        {L"con.txt", true},
        {L"lpt1.txt", true}, // only exact device words
        {L"XCON", true},
        {L"CON.tar.gz", true},
        {L"a<b", false},
        {L"a>b", false},
        {L"a:b", false},
        {L"a\"b", false},
        {L"a/b", false},
        {L"a|b", false},
        {L"a?b", false},
        {L"*", false},
        {L"a\x01"
         L"b",
         false},
        {L"a\x1F", false},
        {L"a\n", false},
        {L"CON\n", false},
        {L"a\tb", false},
    };
    for (const auto& row : kCases)
        EXPECT_EQ(IsFileNameAllowed(row.name), row.allowed) << '"' << row.name << '"';
}

TEST(FileNameTest, ThreadsMayAskAtOnce) {
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int n = 0; n < 500; ++n)
                wrong += !IsFileNameAllowed(L"good.txt") + IsFileNameAllowed(L"LPT1.txt");
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST(PathKindTest, TellsPortsFilesAndFolders) {
    const FreshFolder folder;
    const String file = folder.Put(L"x.txt", "x");
    const struct {
        String path;
        PathKind kind;
        String left;
    } kCases[] = {
        {L"LPT1:", kPathPrinterPort, L"LPT1:"},
        {L"lpt12:", kPathPrinterPort, L"lpt12:"},
        {L"Com3:", kPathSerialPort, L"Com3:"},
        {L"USB:anything", kPathUsbPort, L"USB:anything"},
        {L"LPT:", kPathNothing, L"LPT:"},
        {L"XLPT1:", kPathNothing, L"XLPT1:"},
        {file, kPathFile, file},
        {String(L"file:") + file, kPathFile, file},
        {String(L"FILE:") + folder.Path(), kPathDirectory, folder.Path()},
        {folder.At(L"absent"), kPathNothing, folder.At(L"absent")},
        {L"", kPathNothing, L""},
    };
    for (const auto& row : kCases) {
        String path = row.path;
        EXPECT_EQ(DeviceTest(path), row.kind) << row.path.Text();
        EXPECT_STREQ(path.Text(), row.left.Text());
    }
}

class TokenTest : public testing::Test {
protected:
    static std::wstring Expand(const std::wstring& text) {
        String result;
        EXPECT_TRUE(ExpandTokens(text.c_str(), result));
        return result.Text();
    }
    static std::wstring Variable(const wchar_t* name) {
        wchar_t value[MAX_PATH] = L"";
        GetEnvironmentVariableW(name, value, MAX_PATH);
        return value;
    }
};

TEST_F(TokenTest, VariablesThenShellFoldersThenNothing) {
    wchar_t personal[MAX_PATH];
    DWORD bytes = sizeof personal;
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, kShellFoldersKey, L"Personal", RRF_RT_REG_SZ, nullptr, personal,
                           &bytes),
              0);

    EXPECT_EQ(Expand(L"%WINDIR%\\x"), Variable(L"WINDIR") + L"\\x");
    EXPECT_EQ(Expand(L"%PERSONAL%\\x"), personal + std::wstring(L"\\x"));
    EXPECT_EQ(Expand(L"a%personal%b%WINDIR%c"),
              L"a" + std::wstring(personal) + L"b" + Variable(L"WINDIR") + L"c");
    EXPECT_EQ(Expand(L"%NOSUCH%\\x"), L"%NOSUCH%\\x");
    EXPECT_EQ(Expand(L"50% of %NOSUCH% 100%"), L"50% of %NOSUCH% 100%");
    EXPECT_EQ(Expand(L"%%"), L"%%");
    EXPECT_EQ(Expand(L"no token"), L"no token");
}

TEST_F(TokenTest, MachineFoldersAreTheSecondChoice) {
    test::RegistryScope machine({SettingRoot::kMachine, kShellFoldersKey, L"VxutTest"});
    EXPECT_EQ(Expand(L"%VxutTest%\\x"), L"%VxutTest%\\x");
    machine.SetText(L"M:\\machine");
    EXPECT_EQ(Expand(L"%VxutTest%\\x"), L"M:\\machine\\x");
    test::RegistryScope user({SettingRoot::kCurrentUser, kShellFoldersKey, L"VxutTest"});
    user.SetText(L"U:\\user");
    EXPECT_EQ(Expand(L"%VxutTest%\\x"), L"U:\\user\\x");
}

TEST_F(TokenTest, LongTextsAreWhole) {
    for (const size_t length : {250u, 258u, 259u, 260u, 261u, 270u, 5000u}) {
        const std::wstring tail(length, L'x');
        EXPECT_EQ(Expand(L"%WINDIR%" + tail), Variable(L"WINDIR") + tail) << length;
    }
}

TEST(FullPathTest, BannerIsWrittenOnlyWhenParametersAreChecked) {
    wchar_t small[4];
    DebugListener listener;
    UtilFullpath(small, L"C:\\long\\path", 4);
    EXPECT_TRUE(listener.Lines().empty());
    parameterCheckSwitch = 1;
    UtilFullpath(small, L"C:\\long\\path", 4);
    parameterCheckSwitch = 0;
    EXPECT_TRUE(listener.Heard(L"VL32UTIL['']: error in 'UtilFullpath': Buffer too small"));
}

} // namespace
} // namespace vxut
