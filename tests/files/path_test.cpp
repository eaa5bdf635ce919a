#include "files/path.h"

#include "frame/validate.h"
#include "tests/support/debug_listener.h"
#include "tests/support/registry_scope.h"
#include "tests/support/temp_folder.h"
#include "util/path.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace vxut {
namespace {

using test::FreshFolder;

TEST(PathPartsTest, SplitsAtTheLastSeparatorAndDot) {
    const std::array<std::wstring, 3> kParts[] = {{L"C:\\dir.x\\", L"name.tar", L".gz"},
                                                  {L"C:", L"name", L""},
                                                  {L"/unix/", L"style", L".c"},
                                                  {L"dir.x\\", L"name", L""},
                                                  {L"", L"", L".profile"},
                                                  {L"dir\\", L"", L""},
                                                  {L"", L"ends", L"."},
                                                  {L"", L"", L""},
                                                  {L"C:\\", std::wstring(1000, L'n'), L""}};
    for (const auto& [directory, base, extension] : kParts) {
        const String path = (directory + base + extension).c_str();
        EXPECT_STREQ(DirectoryPart(path).Text(), directory.c_str());
        EXPECT_STREQ(BaseName(path).Text(), base.c_str());
        EXPECT_STREQ(Extension(path).Text(), extension.c_str());
        EXPECT_STREQ(FilePart(path).Text(), (base + extension).c_str());
    }
}

TEST(PathNamesTest, FullNameTakesTheDotsOut) {
    EXPECT_STREQ(FullName(L"C:\\a\\.\\b.txt").Text(), L"C:\\a\\b.txt");
    EXPECT_STREQ(FullName(L"C:\\a\\..\\b.txt").Text(), L"C:\\b.txt");
    const std::wstring tooLong = L"C:\\" + std::wstring(300, L'n') + L"\\.\\x";
    EXPECT_STREQ(FullName(tooLong.c_str()).Text(), tooLong.c_str());
}

TEST(PathNamesTest, TempDirectoryIsWhole) {
    for (const bool longForm : {false, true}) {
        String path = TempDirectory(longForm);
        ASSERT_FALSE(path.IsEmpty());
        EXPECT_EQ(path[path.Length() - 1], L'\\');
        EXPECT_EQ(DeviceTest(path), kPathDirectory);
    }
    EXPECT_EQ(Find(TempDirectory(true).Text(), L"~"), -1);
    EXPECT_STREQ(LongName(L"C:\\no such\\name").Text(), L"C:\\no such\\name");
}

TEST(FileNameTest, DeviceWordsAndForbiddenUnitsAreRefused) {
    for (const wchar_t* name :
         {L"a", L"name.tar.gz", L".profile", L"a b", L"\x4E00", L"CONSOLE", L"COM", L"COM0", L"COM10", L"LPT",
          L"XCON", L"CON.tar.gz", L"con", L"con.txt", L"lpt1.txt"}) // only device words in upper case
        EXPECT_TRUE(IsFileNameAllowed(name)) << name;
    for (const wchar_t* name :
         {L"",    L"a.",   L"a ",     L".",        L" ",     L"CON", L"CON.txt", L"CON.", L"PRN",  L"AUX.x",
          L"NUL", L"COM1", L"COM9.c", L"LPT1.doc", L"LPT5",  L"a<b", L"a>b",     L"a:b",  L"a\"b", L"a/b",
          L"a|b", L"a?b",  L"*",      L"a\x01z",   L"a\x1F", L"a\n", L"CON\n",   L"a\tb"})
        EXPECT_FALSE(IsFileNameAllowed(name)) << '"' << name << '"';
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

TEST(PathKindTest, TellsPortsFilesAndFoldersWithoutTheirPrefix) {
    const FreshFolder folder;
    const String file = folder.Put(L"x.txt", "x");
    const std::pair<PathKind, std::vector<String>> kCases[] = {
        {kPathPrinterPort, {L"lpt12:"}},
        {kPathSerialPort, {L"Com3:"}},
        {kPathUsbPort, {L"USB:anything"}},
        {kPathNothing, {L"LPT:", L"XLPT1:", folder.At(L"absent"), L""}},
        {kPathFile, {file, String(L"file:") + file}},
        {kPathDirectory, {folder.Path(), String(L"FILE:") + folder.Path()}}};
    for (const auto& [kind, paths] : kCases) {
        for (String path : paths) {
            EXPECT_EQ(DeviceTest(path), kind) << path.Text();
            if (kind == kPathFile || kind == kPathDirectory) EXPECT_EQ(path[1], L':') << path.Text();
        }
    }
}

std::wstring Expand(const std::wstring& text) {
    String result;
    EXPECT_TRUE(ExpandTokens(text.c_str(), result));
    return result.Text();
}

TEST(TokenTest, VariablesThenTheUsersShellFoldersThenTheMachines) {
    const std::wstring windir = _wgetenv(L"WINDIR");
    EXPECT_EQ(Expand(L"%WINDIR%\\x"), windir + L"\\x");
    for (const wchar_t* text : {L"%VxutTest%\\x", L"50% of %NOSUCH% 100%", L"%%", L"no token"})
        EXPECT_EQ(Expand(text), text);
    test::RegistryScope machine({SettingRoot::kMachine, kShellFoldersKey, L"VxutTest"});
    machine.SetText(L"M:\\machine");
    EXPECT_EQ(Expand(L"%VxutTest%\\x"), L"M:\\machine\\x");
    test::RegistryScope user({SettingRoot::kCurrentUser, kShellFoldersKey, L"VxutTest"});
    user.SetText(L"U:\\user");
    EXPECT_EQ(Expand(L"a%vxuttest%b%WINDIR%c"), L"aU:\\userb" + windir + L"c");
    for (const size_t length : {250u, 258u, 259u, 260u, 261u, 270u, 5000u}) {
        const std::wstring tail(length, L'x');
        EXPECT_EQ(Expand(L"%WINDIR%" + tail), windir + tail) << length;
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
