// How a host tells a file that is not there from one that could not be read: by the job's error and the
// thread's last error after the open.
#include "profile_support.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace vxut::test {
namespace {

struct OpenResult {
    int32_t error;
    DWORD reason;

    bool operator==(const OpenResult&) const = default;
};

std::ostream& operator<<(std::ostream& out, const OpenResult& result) {
    return out << result.error << " with last error " << result.reason;
}

OpenResult Open(HPROF (*open)(const wchar_t*), const std::wstring& path) {
    const Job job(open(path.c_str()));
    const DWORD reason = GetLastError();
    return {ProfGetError(job), reason};
}

TEST(ProfileOpenResultTest, OnlyAMissingFileSaysSo) {
    const FilePlace place;
    const std::wstring path = static_cast<const wchar_t*>(place);
    const std::wstring folder = path.substr(0, path.rfind(L'\\'));
    EXPECT_EQ(Open(ProfJobOpenW, path), (OpenResult{PROF_ERR_OPEN, ERROR_FILE_NOT_FOUND}));
    EXPECT_EQ(Open(ProfJobOpenW, path + L"\\a.prf"), (OpenResult{PROF_ERR_OPEN, ERROR_PATH_NOT_FOUND}));
    EXPECT_EQ(Open(ProfJobOpenExclusiveW, path + L"\\a.prf"),
              (OpenResult{PROF_ERR_SAVE, ERROR_PATH_NOT_FOUND}));
    EXPECT_EQ(Open(ProfJobOpenW, folder), (OpenResult{PROF_ERR_OPEN, ERROR_ACCESS_DENIED}));
    EXPECT_EQ(Open(ProfJobOpenExclusiveW, folder), (OpenResult{PROF_ERR_SAVE, ERROR_ACCESS_DENIED}));
    EXPECT_EQ(ProfGetError(Job(ProfJobOpenA("none\\a.prf"))), PROF_ERR_OPEN);
    EXPECT_EQ(ProfGetError(Job(ProfJobOpenExclusiveA("none\\a.prf"))), PROF_ERR_SAVE);
}

TEST(ProfileOpenResultTest, AFilesContentDecides) {
    const struct {
        const char* bytes;
        OpenResult result;
    } cases[] = {{"[/]\na=1\n", {PROF_OK, ERROR_SUCCESS}},
                 {"", {PROF_OK, ERROR_SUCCESS}},
                 {"abc", {PROF_ERR_BUSY, ERROR_HANDLE_EOF}},
                 {"ZRzQ", {PROF_ERR_BUSY, ERROR_HANDLE_EOF}}};
    for (const auto& row : cases) {
        const FilePlace place;
        place.Put(row.bytes);
        for (const auto open : {ProfJobOpenW, ProfJobOpenExclusiveW}) {
            SetLastError(12345);
            EXPECT_EQ(Open(open, static_cast<const wchar_t*>(place)), row.result) << row.bytes;
        }
    }
}

// At once: none of these names is that of a file in use.
TEST(ProfileOpenResultTest, NamesThatNoFileHasAreInvalid) {
    const uint64_t start = GetTickCount64();
    for (const std::wstring& name : {std::wstring(L"CON"), std::wstring(L"nul"), std::wstring(L"a?b"),
                                     std::wstring(2044, L'\x4141'), L"folder\\" + std::wstring(256, L'n')}) {
        const bool isForbidden = name == L"CON" || name == L"a?b";
        EXPECT_EQ(Open(ProfJobOpenW, name), (OpenResult{PROF_ERR_OPEN, ERROR_INVALID_NAME})) << name;
        EXPECT_EQ(Open(ProfJobOpenExclusiveW, name),
                  (OpenResult{isForbidden ? PROF_ERR_OPEN : PROF_ERR_SAVE, ERROR_INVALID_NAME}))
            << name;
        EXPECT_EQ(ProfSaveW(Job(), name.c_str(), PROF_FORMAT_TEXT), PROF_ERR_SAVE) << name;
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_NAME)) << name;
    }
    EXPECT_LT(GetTickCount64() - start, 9000u); // less than one wait
}

TEST(ProfileOpenResultTest, StreamsHaveTheirReasonsToo) {
    const struct {
        HRESULT read;
        uint64_t claimedSize;
        OpenResult result;
    } cases[] = {{S_OK, 8, {PROF_OK, ERROR_SUCCESS}},
                 {S_OK, 100, {PROF_ERR_BUSY, ERROR_HANDLE_EOF}}, // it ends before its size
                 {STG_E_READFAULT, 8, {PROF_ERR_BUSY, ERROR_READ_FAULT}},
                 {E_OUTOFMEMORY, 8, {PROF_ERR_MEMORY, ERROR_NOT_ENOUGH_MEMORY}}};
    for (const auto& row : cases) {
        FakeStream stream("[/]\na=1\n");
        stream.readResult = row.read;
        stream.claimedSize = row.claimedSize;
        const Job job(ProfJobOpenStream(&stream));
        const DWORD reason = GetLastError();
        EXPECT_EQ((OpenResult{ProfGetError(job), reason}), row.result);
    }
}

// The other process keeps the file longer than an open waits.
TEST(ProfileOpenResultTest, AFileThatStaysInUseIsNotTakenForAMissingOne) {
    const FilePlace place;
    place.Put("[/]\na=1\n");
    const HANDLE other = CreateFileW(place, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(other, INVALID_HANDLE_VALUE);
    const OpenResult result = Open(ProfJobOpenW, static_cast<const wchar_t*>(place));
    CloseHandle(other);
    EXPECT_EQ(result, (OpenResult{PROF_ERR_BUSY, ERROR_SHARING_VIOLATION}));
}

} // namespace
} // namespace vxut::test
