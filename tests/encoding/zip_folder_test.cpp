// Folders that are larger or deeper than an archive can be.
#include "encoding/zip_file.h"
#include "tests/support/debug_listener.h"
#include "tests/support/fake_stream.h"
#include "tests/support/import_table.h"
#include "tests/support/temp_folder.h"
#include "tests/support/zip_reader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace vxut {
namespace {

using test::FakeStream;
using test::FreshFolder;
using test::ImportPatch;

// Makes the search of a folder find as many subfolders as wanted, without creating any.
class ManyFolders {
public:
    ManyFolders(const std::wstring& folder, int count) : patch_(GetModuleHandleW(nullptr)) {
        pattern = folder + L"\\*.*";
        left = count;
        findFirst = patch_.Replace("FindFirstFileW", &FindFirst);
        patch_.Replace("FindNextFileW", &FindNext);
    }

private:
    static void Fill(WIN32_FIND_DATAW* found) {
        *found = {};
        found->dwFileAttributes = FILE_ATTRIBUTE_DIRECTORY;
        _snwprintf(found->cFileName, MAX_PATH, L"%d", left--);
    }
    // Of other folders there is nothing to find.
    static HANDLE WINAPI FindFirst(LPCWSTR name, WIN32_FIND_DATAW* found) {
        if (name != pattern) return SetLastError(ERROR_FILE_NOT_FOUND), INVALID_HANDLE_VALUE;
        const HANDLE search = reinterpret_cast<decltype(&::FindFirstFileW)>(findFirst)(name, found);
        Fill(found);
        return search;
    }
    static BOOL WINAPI FindNext(HANDLE, WIN32_FIND_DATAW* found) {
        if (left == 0) return SetLastError(ERROR_NO_MORE_FILES), FALSE;
        Fill(found);
        return TRUE;
    }

    static inline std::wstring pattern;
    static inline int left = 0;
    static inline void* findFirst = nullptr;

    ImportPatch patch_;
};

// Programs that read such archives count the headers themselves: callers rely on there being no failure.
TEST(ZipFolderTest, CountsOfMoreEntriesThanTheyCanHoldWrap) {
    constexpr int kEntries = 65537;
    const DebugListener listener;
    const FreshFolder folder;
    const std::wstring base = folder.At(L"base").Text();
    std::filesystem::create_directory(base);
    FakeStream target;
    clsZIPFile zip;
    ASSERT_TRUE(zip.CreateOnStream(&target, String()));
    {
        const ManyFolders many(base, kEntries);
        zip.AppendFolder(base.c_str(), L"none", true);
    }
    EXPECT_EQ(zip.Close(), kZipOk);
    EXPECT_FALSE(listener.Heard(L"ERR"));
    ASSERT_GT(target.bytes.size(), size_t{kEntries} * (30 + 46 + 2 * 2));
    test::ZipCursor end(target.bytes, target.bytes.size() - 22 + 8);
    end.Expect(2, 1, "entries on the disk");
    end.Expect(2, 1, "entries in all");
    const uint32_t indexBytes = end.Number(4);
    EXPECT_EQ(indexBytes + end.Number(4) + 22, target.bytes.size());
    EXPECT_EQ(target.bytes.substr(target.bytes.size() - 24, 2), "1/");
}

// Runs commands in a folder until its entry "loop" is there, or is not. One of the system below cannot be
// waited for.
bool RunUntil(bool isThere, const std::wstring& folder, std::initializer_list<const wchar_t*> commands) {
    for (std::wstring line : commands) {
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION process{};
        if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                            folder.c_str(), &startup, &process))
            continue;
        clsAutoCloseHandle(process.hProcess).Reset();
        clsAutoCloseHandle(process.hThread).Reset();
        for (int attempt = 0; attempt < 200; ++attempt) {
            const DWORD attributes = GetFileAttributesW((folder + L"\\loop").c_str());
            if ((attributes != INVALID_FILE_ATTRIBUTES) == isThere) return true;
            Sleep(50);
        }
    }
    return false;
}

// A folder that leads to the one it is in.
class Loop {
public:
    explicit Loop(const String& folder)
        : folder_(folder.Text()),
          exists_(RunUntil(true, folder_, {L"Z:\\bin\\ln -s . loop", L"cmd.exe /c mklink /J loop ."})) {}
    ~Loop() {
        if (exists_) EXPECT_TRUE(RunUntil(false, folder_, {L"Z:\\bin\\rm loop", L"cmd.exe /c rmdir loop"}));
    }
    Loop(const Loop&) = delete;
    Loop& operator=(const Loop&) = delete;

    bool Exists() const { return exists_; }

private:
    const std::wstring folder_;
    const bool exists_;
};

TEST(ZipFolderTest, AFolderThatLeadsBackToItselfEnds) {
    const DebugListener listener;
    const FreshFolder folder;
    folder.Put(L"a.txt", "x");
    const Loop loop(folder.Path());
    if (!loop.Exists()) GTEST_SKIP() << "this system can link no folders";
    FakeStream target;
    clsZIPFile zip;
    ASSERT_TRUE(zip.CreateOnStream(&target, String()));
    zip.AppendFolder(folder.Path(), L"*.*", true);
    EXPECT_EQ(zip.Close(), kZipOk);
    std::vector<std::string> names;
    for (const test::ZipMember& member : test::ReadZip(target.bytes).members) names.push_back(member.name);
    EXPECT_EQ(names, (std::vector<std::string>{"a.txt", "loop/"}));
    EXPECT_TRUE(listener.Heard(L"WRN: folder 'loop' leads back to itself"));
}

} // namespace
} // namespace vxut
