#include "files/path.h"

#include "tests/support/registry_scope.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <string>
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

TEST(FileNameTest, DeviceWordsAndForbiddenUnitsAreRefused) {
    for (const wchar_t* name : {L"a", L"name.tar.gz", L".profile", L"a b", L"COM0", L"COM10", L"XCON",
                                L"CON.tar.gz", L"con.txt"}) // only device words in upper case
        EXPECT_TRUE(IsFileNameAllowed(name)) << name;
    for (const wchar_t* name : {L"", L"a.", L"a ", L"CON", L"CON.txt", L"PRN", L"AUX.x", L"NUL", L"COM9.c",
                                L"LPT1.doc", L"a<b", L"a:b", L"a/b", L"*", L"a\x01z", L"a\x1F", L"CON\n"})
        EXPECT_FALSE(IsFileNameAllowed(name)) << '"' << name << '"';
}

TEST(PathKindTest, TellsPortsFilesAndFoldersWithOrWithoutAPrefix) {
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
