// What is reported of embedded files, and links among their targets.
#include "profile/embedded_files.h"

#include "prof/codes.h"
#include "tests/support/debug_listener.h"
#include "tests/support/import_table.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <string>

namespace vxut {
namespace {

using test::FreshFolder;
using test::ImportPatch;

void AddEntry(clsItemList& list, const wchar_t* name, const wchar_t* contents) {
    clsItemList& entry = list.AppendList(L"File.Entry");
    entry.AppendItem(L"Name", name);
    entry.AppendItem(L"Contents", contents);
}

TEST(EmbeddedFilesTest, WhatIsPassedOverIsReported) {
    const DebugListener listener;
    const FreshFolder folder;
    clsItemList list(L"/");
    list.AppendList(L"File.Entry");
    AddEntry(list, L"..\\x", L"YQ==");
    EXPECT_EQ(ExtractFiles(list, folder.Path(), String()).code, PROF_OK);
    EXPECT_TRUE(listener.Heard(L"ProfExtractFiles:\"Filename=\" not found"));
    EXPECT_TRUE(listener.Heard(
        (L"'" + std::wstring(folder.At(L"..\\x").Text()) + L"' could not be created").c_str()));
    const String none = folder.At(L"no\\out");
    EXPECT_EQ(ExtractFiles(list, none, String()).code, PROF_ERR_WRITE);
    EXPECT_TRUE(listener.Heard((L"problem creating directory '" + std::wstring(none.Text()) + L"'").c_str()));
}

// Links of other systems do not show as such here: the search is made to say so.
void* findFirstFile = nullptr;
HANDLE WINAPI FindLink(LPCWSTR name, WIN32_FIND_DATAW* found) {
    const HANDLE search = reinterpret_cast<decltype(&::FindFirstFileW)>(findFirstFile)(name, found);
    found->dwFileAttributes = FILE_ATTRIBUTE_REPARSE_POINT;
    found->dwReserved0 = IO_REPARSE_TAG_SYMLINK;
    return search;
}

TEST(EmbeddedFilesTest, LinksAreNotFollowed) {
    const FreshFolder folder;
    folder.Put(L"link", "old");
    clsItemList list(L"/");
    AddEntry(list, L"link", L"YQ==");
    ImportPatch patch(GetModuleHandleW(nullptr));
    findFirstFile = patch.Replace("FindFirstFileW", &FindLink);
    ASSERT_NE(findFirstFile, nullptr);
    const scOutcome outcome = ExtractFiles(list, folder.Path(), String());
    patch.Restore();
    EXPECT_EQ(outcome.error, DWORD{ERROR_CANT_ACCESS_FILE});
    EXPECT_EQ(folder.Get(L"link"), "old");
    EXPECT_EQ(ExtractFiles(list, folder.Path(), String()).error, DWORD{ERROR_SUCCESS});
    EXPECT_EQ(folder.Get(L"link"), "a");
}

} // namespace
} // namespace vxut
