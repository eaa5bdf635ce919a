// Jobs on files and on the clipboard: opening, sharing, saving, references.
#include "profile_support.h"

#include <gtest/gtest.h>

#include <cstring>

namespace vxut::test {
namespace {

const std::string kSaved = Utf16Marked(L"[/]\r\n {\r\n a=1\r\n }\r\n");

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
                  {"ZRzQ", PROF_ERR_FORMAT, PROF_ERR_FORMAT}};
    for (const auto& row : kCases) {
        const FilePlace file;
        if (row.bytes) file.Put(row.bytes);
        const char* const label = row.bytes ? row.bytes : "none";
        EXPECT_EQ(ProfGetError(Job(ProfJobOpenW(file))), row.shared) << label;
        EXPECT_EQ(file.Exists(), row.bytes != nullptr);
        {
            const Job exclusive(ProfJobOpenExclusiveW(file));
            EXPECT_EQ(ProfGetError(exclusive), row.exclusive) << label;
            ProfSetStringW(exclusive, nullptr, L"a", L"never saved");
        }
        EXPECT_EQ(file.Bytes(), row.bytes ? row.bytes : "");
    }
}

TEST(ProfileOpenTest, NamesThatCannotBe) {
    for (const wchar_t* name : {L"", L"CON", L"a?b", L"C:\\"}) {
        EXPECT_EQ(ProfGetError(Job(ProfJobOpenW(name))), PROF_ERR_OPEN) << name;
        const Job exclusive(ProfJobOpenExclusiveW(name));
        EXPECT_EQ(ProfGetError(exclusive), PROF_ERR_OPEN) << name;
        EXPECT_EQ(ProfSaveW(exclusive, nullptr, PROF_FORMAT_TEXT), PROF_ERR_SAVE) << name;
    }
    EXPECT_EQ(ProfGetError(Job(ProfJobOpenExclusiveW(L"no\\such\\folder\\x.prf"))), PROF_ERR_SAVE);
    const Job nameless(ProfJobOpenExclusiveA(nullptr));
    EXPECT_EQ(ProfGetError(nameless), PROF_OK);
    EXPECT_EQ(ProfSaveW(nameless, nullptr, PROF_FORMAT_TEXT), PROF_ERR_SAVE);
}

TEST(ProfileSaveTest, UnderTheOwnNameAndAnother) {
    const FilePlace file;
    const FilePlace other;
    file.Put(Utf16Marked(L"[/]\na=0\n" + std::wstring(500, L'#')));
    const std::string unsaved = file.Bytes();
    other.Put(std::string(1000, 'x'));
    const Job job(ProfJobOpenA(file.Narrow().c_str()));
    ProfSetStringW(job, nullptr, L"a", L"1");
    EXPECT_EQ(ProfSaveA(job, other.Narrow().c_str(), PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(other.Bytes(), kSaved);
    EXPECT_EQ(file.Bytes(), unsaved);
    EXPECT_EQ(ProfSaveW(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(file.Bytes(), kSaved);
    ProfEmptyList(job, nullptr);
    EXPECT_EQ(ProfSaveW(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(file.Bytes(), "");
    for (const wchar_t* name : {L"NUL", L"no\\such\\folder.prf"})
        EXPECT_EQ(ProfSaveW(job, name, PROF_FORMAT_TEXT), PROF_ERR_SAVE);
}

TEST(ProfileExclusiveTest, KeepsItsFileAndSavesIntoItUntilTheLastReferenceIsClosed) {
    const FilePlace file;
    file.Put(Utf16Marked(L"[/]\na=0\n" + std::wstring(500, L'#')));
    const HPROF job = ProfJobOpenExclusiveA(file.Narrow().c_str());
    ProfJobAddRef(job);
    ProfJobClose(job);
    EXPECT_EQ(TreeOf(job), L"a=0;");
    EXPECT_TRUE(CanBeOpened(file, FILE_SHARE_READ | FILE_SHARE_WRITE)) << "others may read";
    EXPECT_FALSE(CanBeOpened(file, FILE_SHARE_READ)) << "it is open for writing";
    ProfSetStringW(job, nullptr, L"a", L"1");
    EXPECT_EQ(ProfSaveW(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(file.Bytes(), kSaved);
    std::wstring upper = static_cast<const wchar_t*>(file);
    CharUpperW(upper.data());
    ProfSetStringW(job, nullptr, L"a", std::wstring(5000, L'x').c_str());
    EXPECT_EQ(ProfSaveW(job, upper.c_str(), PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(file.Bytes().size(), kSaved.size() + 2 * 4999);
    ProfEmptyList(job, nullptr);
    EXPECT_EQ(ProfSaveToStream(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(file.Bytes(), "");
    ProfJobClose(job);
    EXPECT_TRUE(CanBeOpened(file, 0));
}

// The file could not be read, so the job does not hold it and saves as a shared one does.
TEST(ProfileExclusiveTest, AFailedOpenSavesByName) {
    const FilePlace file;
    file.Put("abc");
    const Job job(ProfJobOpenExclusiveW(file));
    EXPECT_EQ(ProfGetError(job), PROF_ERR_BUSY);
    EXPECT_TRUE(CanBeOpened(file, 0));
    ProfSetStringW(job, nullptr, L"a", L"1");
    EXPECT_EQ(ProfSaveToStream(job, nullptr, PROF_FORMAT_TEXT), PROF_ERR_SAVE);
    EXPECT_EQ(ProfSaveW(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(file.Bytes(), kSaved);
    EXPECT_TRUE(CanBeOpened(file, 0));
}

// The clipboard is the session's: one test, which leaves it empty.
class ClipboardScope {
public:
    ClipboardScope() { OpenClipboard(nullptr); }
    ~ClipboardScope() { CloseClipboard(); }
};

void EmptyTheClipboard() {
    const ClipboardScope scope;
    EmptyClipboard();
}

std::string ClipboardBytes(UINT format) {
    const ClipboardScope scope;
    const HANDLE block = GetClipboardData(format);
    if (!block) return {};
    std::string bytes(GlobalSize(block), '\0');
    memcpy(bytes.data(), GlobalLock(block), bytes.size());
    GlobalUnlock(block);
    return bytes;
}

TEST(ProfileClipboardTest, ATreeGoesThere) {
    const UINT format = RegisterClipboardFormatW(L"QzrProfCBFormat");
    EmptyTheClipboard();
    EXPECT_FALSE(ProfIsClipboardDataAvailable());
    EXPECT_EQ(ProfGetError(Job(ProfJobOpenClipboard(nullptr))), PROF_ERR_OPEN);
    EXPECT_EQ(ProfSaveToClipboard(nullptr, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_FALSE(ProfIsClipboardDataAvailable());

    const Job job;
    ProfSetStringW(job, nullptr, L"l/a", L"1");
    EXPECT_EQ(ProfSaveToClipboard(job, nullptr, PROF_FORMAT_TEXT | PROF_FORMAT_PACKED), PROF_OK);
    ASSERT_TRUE(ProfIsClipboardDataAvailable());
    const std::string image = Utf16Marked(L"[/]\r\n {\r\n [l]\r\n  {\r\n  a=1\r\n  }\r\n }\r\n") + '\0';
    EXPECT_EQ(ClipboardBytes(format).substr(0, image.size()), image);
    const std::wstring notice = L"PROF data available";
    EXPECT_EQ(ClipboardBytes(CF_TEXT).substr(0, Utf16(notice).size()), Utf16(notice));
    EXPECT_EQ(TreeOf(Job(ProfJobOpenClipboard(nullptr))), L"l{a=1;}");

    EmptyTheClipboard();
    EXPECT_EQ(ProfSaveToClipboard(Job(), nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(ClipboardBytes(format).substr(0, 1), std::string(1, '\0'));
    const Job fromEmpty(ProfJobOpenClipboard(nullptr));
    EXPECT_EQ(ProfGetError(fromEmpty), PROF_OK);
    EXPECT_EQ(TreeOf(fromEmpty), L"");
    EmptyTheClipboard();
}

} // namespace
} // namespace vxut::test
