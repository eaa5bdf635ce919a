// Jobs on files: opening, sharing, saving, references.
#include "profile_support.h"

#include <gtest/gtest.h>

namespace vxut::test {
namespace {

const std::string kSaved = Utf16Marked(L"[/]\r\n {\r\n a=1\r\n }\r\n");

// Holds a file open with a share mode.
class OpenHandle {
public:
    OpenHandle(const wchar_t* path, DWORD share)
        : handle_(CreateFileW(path, GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr)) {}
    ~OpenHandle() { CloseHandle(handle_); }
    bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }

private:
    HANDLE handle_;
};

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
        EXPECT_EQ(ProfGetError(Job(ProfJobOpenExclusiveW(file))), row.exclusive) << label;
        EXPECT_TRUE(file.Exists());
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

TEST(ProfileExclusiveTest, KeepsItsFileAndSavesIntoIt) {
    const FilePlace file;
    file.Put(Utf16Marked(L"[/]\na=0\n" + std::wstring(500, L'#')));
    {
        const Job job(ProfJobOpenExclusiveA(file.Narrow().c_str()));
        EXPECT_EQ(TreeOf(job), L"a=0;");
        EXPECT_TRUE(OpenHandle(file, FILE_SHARE_READ | FILE_SHARE_WRITE).IsOpen()) << "others may read";
        EXPECT_FALSE(OpenHandle(file, FILE_SHARE_READ).IsOpen()) << "it is open for writing";
        ProfSetStringW(job, nullptr, L"a", L"1");
        EXPECT_EQ(ProfSaveW(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
        EXPECT_EQ(file.Bytes(), kSaved);
        std::wstring upper = static_cast<const wchar_t*>(file);
        CharUpperW(upper.data());
        ProfSetStringW(job, nullptr, L"a", std::wstring(5000, L'x').c_str());
        EXPECT_EQ(ProfSaveW(job, upper.c_str(), PROF_FORMAT_TEXT), PROF_OK);
        EXPECT_EQ(file.Bytes().size(), kSaved.size() + 2 * 4999);
        ProfSetStringW(job, nullptr, L"a", L"1");
        EXPECT_EQ(ProfSaveToStream(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
        EXPECT_EQ(file.Bytes(), kSaved);
        ProfEmptyList(job, nullptr);
        EXPECT_EQ(ProfSaveToStream(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
        EXPECT_EQ(file.Bytes(), "");
    }
    EXPECT_TRUE(OpenHandle(file, FILE_SHARE_READ).IsOpen());
}

// The file could not be read, so the job does not hold it and saves as a shared one does.
TEST(ProfileExclusiveTest, AFailedOpenSavesByName) {
    const FilePlace file;
    file.Put("abc");
    const Job job(ProfJobOpenExclusiveW(file));
    EXPECT_EQ(ProfGetError(job), PROF_ERR_BUSY);
    EXPECT_TRUE(OpenHandle(file, 0).IsOpen());
    ProfSetStringW(job, nullptr, L"a", L"1");
    EXPECT_EQ(ProfSaveToStream(job, nullptr, PROF_FORMAT_TEXT), PROF_ERR_SAVE);
    EXPECT_EQ(ProfSaveW(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(file.Bytes(), kSaved);
    EXPECT_TRUE(OpenHandle(file, 0).IsOpen());
}

TEST(ProfileJobTest, TheLastReferenceClosesTheFile) {
    const FilePlace file;
    HPROF job = ProfJobOpenExclusiveW(file);
    ProfJobAddRef(job);
    ProfJobClose(job);
    ProfSetStringW(job, nullptr, L"a", L"1");
    EXPECT_EQ(ProfSaveW(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_FALSE(OpenHandle(file, 0).IsOpen());
    ProfJobClose(job);
    EXPECT_TRUE(OpenHandle(file, 0).IsOpen());
    EXPECT_EQ(file.Bytes(), kSaved);
}

} // namespace
} // namespace vxut::test
