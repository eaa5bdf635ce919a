// Embedded files under failing calls, and what is reported of them.
#include "profile/embedded_files.h"

#include "prof/codes.h"
#include "profile/embedded_data.h"
#include "profile/item_path.h"
#include "tests/support/debug_listener.h"
#include "tests/support/failing_calls.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace vxut {
namespace {

using test::FailingCalls;
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

// Each file call fails in turn: the file holds the old or the new content, and the new one without an error.
TEST(EmbeddedFilesTest, FailingCallsLeaveOldOrNewFiles) {
    const std::string content(3000, 'n');
    const FreshFolder folder;
    clsItemList list(L"/");
    const scPlace place{list, list};
    ASSERT_EQ(AppendFile(place, L"a", L"pw", folder.Put(L"source", content)), DWORD{ERROR_SUCCESS});
    const clsItem* const item = list.FindItem(L"a");
    int failures = 0;
    bool hasStruck = true;
    for (unsigned number = 1; hasStruck && number < 200; ++number) {
        const String target = folder.Put(L"target", "old");
        clsItemList read(L"/");
        DWORD readError = 0;
        scOutcome written{};
        {
            const FailingCalls failing(number);
            written = GetFile(item, L"pw", target);
            readError = AppendFile({read, read}, L"b", L"pw", folder.At(L"source"));
            hasStruck = FailingCalls::HasStruck();
        }
        EXPECT_EQ(written.code == PROF_OK, written.error == ERROR_SUCCESS);
        EXPECT_EQ(folder.Get(L"target"), written.code == PROF_OK ? content : "old") << number;
        EXPECT_EQ(read.FindItem(L"b")->Value(), readError == ERROR_SUCCESS ? item->Value() : L"") << number;
        if (written.code != PROF_OK || readError != ERROR_SUCCESS) ++failures;
    }
    EXPECT_GT(failures, 3);
}

} // namespace
} // namespace vxut
