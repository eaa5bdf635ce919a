#include "files/path.h"

#include "tests/support/import_table.h"
#include "tests/support/registry_scope.h"
#include "tests/support/temp_folder.h"
#include "text/settings.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>
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
                                                  {L"C:\\", std::wstring(1000, L'n'), L""}};
    for (const auto& [directory, base, extension] : kParts) {
        const String path = (directory + base + extension).c_str();
        EXPECT_STREQ(DirectoryPart(path).Text(), directory.c_str());
        EXPECT_STREQ(BaseName(path).Text(), base.c_str());
        EXPECT_STREQ(Extension(path).Text(), extension.c_str());
        EXPECT_STREQ(FilePart(path).Text(), (base + extension).c_str());
    }
}

TEST(FullNameTest, IsAbsoluteWithoutDotsOrTheInput) {
    const std::wstring tooLong = L"C:\\" + std::wstring(300, L'n');
    const std::pair<std::wstring, std::wstring> kNames[] = {
        {L"C:\\a\\.\\b.txt", L"C:\\a\\b.txt"},
        {L"C:\\a\\..\\b", L"C:\\b"},
        {L"C:\\..\\..", L"C:\\"},
        {L"\\\\server\\share\\.\\x", L"\\\\server\\share\\x"},
        {L"C:/a/./b", L"C:\\a\\b"},
        {tooLong, tooLong},
        {L"", L""},
    };
    for (const auto& [path, full] : kNames) EXPECT_STREQ(FullName(path.c_str()).Text(), full.c_str());
    const std::wstring here = std::filesystem::current_path().wstring();
    EXPECT_STREQ(FullName(L".\\x.txt").Text(), (std::filesystem::path(here) / L"x.txt").c_str());
}

TEST(FullNameTest, LongNamesOfWhatIsMissingOrTooLongAreTheInput) {
    const FreshFolder folder;
    const String file = folder.Put(L"a long name.text", "x");
    wchar_t shortName[MAX_PATH];
    ASSERT_NE(GetShortPathNameW(file.Text(), shortName, MAX_PATH), 0u);
    EXPECT_TRUE(std::filesystem::equivalent(LongName(shortName).Text(), file.Text()));
    EXPECT_STREQ(FilePart(LongName(shortName)).Text(), L"a long name.text");
    for (const std::wstring& name : {L"Q:\\missing", folder.At(L"missing").Text()})
        EXPECT_STREQ(LongName(name.c_str()).Text(), name.c_str());
}

TEST(TempDirectoryTest, IsOneFolderForAllThreads) {
    std::wstring answers[8];
    std::vector<std::thread> threads;
    for (size_t i = 0; i < std::size(answers); ++i)
        threads.emplace_back([&answers, i] { answers[i] = TempDirectory(i % 2 != 0).Text(); });
    for (std::thread& thread : threads) thread.join();
    wchar_t shortForm[MAX_PATH];
    wchar_t longForm[MAX_PATH];
    ASSERT_NE(GetTempPathW(MAX_PATH, shortForm), 0u);
    ASSERT_NE(GetLongPathNameW(shortForm, longForm, MAX_PATH), 0u);
    for (size_t i = 0; i < std::size(answers); ++i) EXPECT_EQ(answers[i], i % 2 ? longForm : shortForm);
    EXPECT_STREQ(WithBackslash(L"").Text(), L"\\");
    EXPECT_STREQ(WithBackslash(L"a").Text(), L"a\\");
    EXPECT_STREQ(WithBackslash(L"a\\").Text(), L"a\\");
}

// Each test has a process of its own, so nothing is kept yet.
TEST(TempDirectoryTest, AFailureOfTheSystemIsNotKept) {
    {
        test::ImportPatch imports(GetModuleHandleW(nullptr));
        ASSERT_NE(imports.Replace("GetTempPathW", +[](DWORD, LPWSTR) WINAPI -> DWORD { return 0; }), nullptr);
        const String held = EnvironmentText(kEnvironmentTemp);
        SetEnvironmentVariableW(kEnvironmentTemp, L"X:\\elsewhere");
        TempDirectory(false);
        TempDirectory(true);
        SetEnvironmentVariableW(kEnvironmentTemp, held.Text());
    }
    wchar_t path[MAX_PATH];
    ASSERT_NE(GetTempPathW(MAX_PATH, path), 0u);
    EXPECT_STREQ(TempDirectory(false).Text(), path);
    EXPECT_STREQ(TempDirectory(true).Text(), LongName(path).Text());
}

TEST(FileNameTest, DeviceWordsAndForbiddenUnitsAreRefused) {
    for (const wchar_t* name : {L"a", L"name.tar.gz", L".profile", L"a b", L"COM0", L"COM10", L"XCON",
                                L"CON.tar.gz", L"con.txt"}) // only device words in upper case
        EXPECT_TRUE(IsFileNameAllowed(name)) << name;
    for (const wchar_t* name : {L"", L"a.", L"a ", L"CON", L"CON.txt", L"PRN", L"AUX.x", L"NUL", L"COM9.c",
                                L"LPT1.doc", L"a<b", L"a:b", L"a/b", L"*", L"a\x01z", L"a\x1F", L"CON\n"})
        EXPECT_FALSE(IsFileNameAllowed(name)) << '"' << name << '"';
}

TEST(PathKindTest, DistinguishesPortsFilesAndFoldersWithOrWithoutAPrefix) {
    const FreshFolder folder;
    const String file = folder.Put(L"x.txt", "x");
    const std::pair<PathKind, std::vector<String>> kCases[] = {
        {kPathPrinterPort, {L"lpt12:"}},
        {kPathSerialPort, {L"Com3:"}},
        {kPathUsbPort, {L"USB:anything"}},
        {kPathNothing, {L"LPT:", L"XLPT1:", folder.At(L"absent"), L""}},
        {kPathFile, {file, String(L"file:") + file}},
        {kPathDirectory, {folder.Path(), String(L"FILE:") + folder.Path()}}};
    for (const auto& [kind, paths] : kCases)
        for (String path : paths) EXPECT_EQ(DeviceTest(path), kind) << path.Text();
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
    for (const size_t length : {258u, 259u, 260u, 261u, 5000u})
        EXPECT_EQ(Expand(L"%WINDIR%" + std::wstring(length, L'x')), windir + std::wstring(length, L'x'));
}

} // namespace
} // namespace vxut
