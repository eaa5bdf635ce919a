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
