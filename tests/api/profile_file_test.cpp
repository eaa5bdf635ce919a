// Jobs on files and on the clipboard: opening, sharing, saving, references.
#include "profile_support.h"

#include <gtest/gtest.h>

#include <cstring>

namespace vxut::test {
namespace {

const std::string kSaved = Utf16Marked(L"[/]\r\n {\r\n a=1\r\n }\r\n");
const std::string kLonger = Utf16Marked(L"[/]\na=0\n" + std::wstring(500, L'#'));

bool CanBeOpened(const wchar_t* path, DWORD share) {
    const HANDLE file = CreateFileW(path, GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr);
    return file != INVALID_HANDLE_VALUE && CloseHandle(file);
}

TEST(ProfileOpenTest, ErrorsByKindOfFile) {
    const struct {
        const char* bytes; // null: no such file
        int32_t shared;
        int32_t exclusive;
    } kCases[] = {{nullptr, PROF_ERR_OPEN, PROF_OK},
                  {"", PROF_OK, PROF_OK},
                  {"abc", PROF_ERR_BUSY, PROF_ERR_BUSY}, // too short to be recognised
                  {"abcd", PROF_OK, PROF_OK},
                  {"ZRzQ", PROF_ERR_BUSY, PROF_ERR_BUSY}, // a packed image without content
                  {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>", PROF_OK, PROF_OK},
                  {"<?xml\ntext", PROF_ERR_FORMAT, PROF_ERR_FORMAT}};
    for (const auto& row : kCases) {
        const FilePlace file;
        if (row.bytes) file.Put(row.bytes);
        const char* const label = row.bytes ? row.bytes : "(no file)";
        EXPECT_EQ(ProfGetError(Job(ProfJobOpenW(file))), row.shared) << label;
        EXPECT_EQ(file.Bytes(), label);
        {
            const Job exclusive(ProfJobOpenExclusiveW(file));
            EXPECT_EQ(ProfGetError(exclusive), row.exclusive) << label;
            ProfSetStringW(exclusive, nullptr, L"a", L"never saved");
        }
        EXPECT_EQ(file.Bytes(), row.bytes ? row.bytes : "");
    }
}

TEST(ProfileSaveTest, TheThreadsLastErrorIsTheReason) {
    const FilePlace file;
    const Job job;
    ProfSetStringW(job, nullptr, L"a", L"1");
    const struct {
        const wchar_t* path;
        uint32_t format;
        DWORD error;
    } kCases[] = {{file, PROF_FORMAT_TEXT, ERROR_SUCCESS},
                  {file, PROF_FORMAT_PACKED, ERROR_SUCCESS},
                  {L"no\\such\\folder.prf", PROF_FORMAT_TEXT, ERROR_PATH_NOT_FOUND},
                  {nullptr, PROF_FORMAT_TEXT, ERROR_INVALID_NAME}};
    for (const auto& row : kCases) {
        SetLastError(12345);
        const int32_t code = ProfSaveW(job, row.path, row.format);
        EXPECT_EQ(GetLastError(), row.error);
        EXPECT_EQ(code == PROF_OK, row.error == ERROR_SUCCESS);
    }
    SetLastError(12345);
    EXPECT_EQ(ProfSaveW(nullptr, file, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(GetLastError(), 12345u);
    FakeStream full;
    full.capacity = 10;
    EXPECT_EQ(ProfSaveToStream(job, &full, PROF_FORMAT_TEXT), PROF_ERR_WRITE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DISK_FULL));
}

TEST(ProfileOpenTest, NamesThatCannotBe) {
    for (const wchar_t* name : {L"", L"CON", L"a?b"}) {
        const Job exclusive(ProfJobOpenExclusiveW(name));
        EXPECT_EQ(ProfGetError(exclusive), PROF_ERR_OPEN) << name;
        EXPECT_EQ(ProfSaveW(exclusive, nullptr, PROF_FORMAT_TEXT), PROF_ERR_SAVE) << name;
    }
}

TEST(ProfileSaveTest, UnderTheOwnNameAndAnother) {
    const FilePlace file;
    const FilePlace other;
    file.Put(kLonger);
    other.Put(kLonger + kLonger);
    const Job job(ProfJobOpenW(file));
    ProfSetStringW(job, nullptr, L"a", L"1");
    EXPECT_EQ(ProfSaveW(job, other, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(other.Bytes(), kSaved);
    EXPECT_EQ(ProfSaveW(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(file.Bytes(), kSaved);
    ProfEmptyList(job, nullptr);
    EXPECT_EQ(ProfSaveW(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(file.Bytes(), "");
    EXPECT_EQ(ProfSaveA(job, "no\\such\\folder.prf", PROF_FORMAT_TEXT), PROF_ERR_SAVE);
}

TEST(ProfileExclusiveTest, KeepsItsFileAndSavesIntoItUntilTheLastReferenceIsClosed) {
    const FilePlace file;
    file.Put(kLonger);
    const HPROF job = ProfJobOpenExclusiveW(file);
    ProfJobAddRef(job);
    ProfJobClose(job);
    EXPECT_TRUE(CanBeOpened(file, FILE_SHARE_READ | FILE_SHARE_WRITE)) << "others may read";
    EXPECT_FALSE(CanBeOpened(file, FILE_SHARE_READ)) << "it is open for writing";
    ProfSetStringW(job, nullptr, L"a", L"1");
    std::wstring upper = static_cast<const wchar_t*>(file);
    CharUpperW(upper.data());
    EXPECT_EQ(ProfSaveW(job, upper.c_str(), PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(file.Bytes(), kSaved);
    ProfEmptyList(job, nullptr);
    EXPECT_EQ(ProfSaveToStream(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(file.Bytes(), "");
    ProfJobClose(job);
    EXPECT_TRUE(CanBeOpened(file, 0));
}

// The clipboard is the session's: one test, which leaves it empty.
TEST(ProfileClipboardTest, ATreeGoesThere) {
    const auto empty = [] { return OpenClipboard(nullptr) && EmptyClipboard() && CloseClipboard(); };
    const auto startsWith = [](UINT format, const std::string& bytes) {
        OpenClipboard(nullptr);
        const HANDLE block = GetClipboardData(format);
        const bool isSo = GlobalSize(block) >= bytes.size() &&
                          std::memcmp(GlobalLock(block), bytes.data(), bytes.size()) == 0;
        GlobalUnlock(block);
        return CloseClipboard() && isSo;
    };
    ASSERT_TRUE(empty());
    EXPECT_EQ(ProfGetError(Job(ProfJobOpenClipboard(nullptr))), PROF_ERR_OPEN);
    EXPECT_FALSE(ProfIsClipboardDataAvailable());
    const Job job;
    ProfSetStringW(job, nullptr, L"a", L"1");
    EXPECT_EQ(ProfSaveToClipboard(job, nullptr, PROF_FORMAT_TEXT | PROF_FORMAT_PACKED), PROF_OK);
    EXPECT_TRUE(ProfIsClipboardDataAvailable());
    EXPECT_TRUE(startsWith(RegisterClipboardFormatW(L"QzrProfCBFormat"), kSaved + '\0'));
    EXPECT_TRUE(startsWith(CF_TEXT, Utf16(L"PROF data available")));
    EXPECT_EQ(TreeOf(Job(ProfJobOpenClipboard(nullptr))), L"a=1;");
    EXPECT_EQ(ProfSaveToClipboard(Job(), nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(TreeOf(Job(ProfJobOpenClipboard(nullptr))), L"");
    EXPECT_TRUE(empty());
}

} // namespace
} // namespace vxut::test
