#include "files/temp_file.h"

#include "files/path.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <regex>
#include <string>
#include <tuple>
#include <utility>

namespace vxut {
namespace {

using test::FreshFolder;

class TempFileTest : public testing::Test {
protected:
    // Creates a file from a template in the test's folder and returns its name without the folder.
    std::wstring Create(const wchar_t* base, const wchar_t* extension, uint32_t flags,
                        clsAutoCloseFile* holder = nullptr) {
        const String name = CreateTempFile(folder_.At(base), extension, flags, holder);
        EXPECT_STREQ(DirectoryPart(name).Text(), folder_.Path().Text());
        return FilePart(name).Text();
    }
    const FreshFolder folder_;
};

TEST_F(TempFileTest, NamesFollowTheirPattern) {
    const std::tuple<const wchar_t*, const wchar_t*, uint32_t, const wchar_t*> kCases[] = {
        {L"abc.old", L"tmp", 0, L"_21_abc[0-9a-f]+\\.tmp"},
        {L"abc", L".tmp", kTempNoVersionPrefix, L"abc[0-9a-f]+\\.tmp"},
        {L"", L"x", kTempRandomAccess, L"_21_qzr[0-9a-f]+\\.x"},
        {L"bare", L"t", kTempBareNameFirst, L"_21_bare\\.t"},
        {L"bare", L"t", kTempBareNameFirst, L"_21_bare[0-9a-f]+\\.t"}, // taken by the one before
    };
    for (const auto& [base, extension, flags, pattern] : kCases)
        EXPECT_TRUE(std::regex_match(Create(base, extension, flags), std::wregex(pattern))) << pattern;
}

TEST_F(TempFileTest, OnlyLeftoversOfAWeekAreTakenOver) {
    const std::pair<int, bool> kHoursAndResults[] = {{7 * 24 - 2, false}, {7 * 24 + 2, true}, {-720, false}};
    for (const auto& [hours, isTakenOver] : kHoursAndResults) {
        const std::filesystem::path path = folder_.Put(L"left.t", "remains").Text();
        last_write_time(path, std::filesystem::file_time_type::clock::now() - std::chrono::hours(hours));
        clsAutoCloseFile holder;
        const auto name = Create(L"left", L"t", kTempBareNameFirst | kTempNoVersionPrefix, &holder);
        EXPECT_EQ(name == L"left.t", isTakenOver) << hours;
        holder.Reset();
        EXPECT_EQ(folder_.Get(L"left.t"), isTakenOver ? "(no file)" : "remains");
    }
    EXPECT_TRUE(CreateTempFile(folder_.At(L"absent\\x"), L"t", 0).IsEmpty());
}

TEST(TempFileObjectTest, LivesInTheSharedFolderUntilClosed) {
    clsFileRWTemp file(L"PRF", L"prf");
    const String name = file.Name();
    EXPECT_TRUE(std::wstring(name.Text()).starts_with((TempDirectory(true) + L"Velmora\\_21_PRF").Text()));
    EXPECT_EQ(file.Write("abc", 3), 3);
    EXPECT_EQ(file.Open(name, kAccessRead, kDispositionOpenExisting, kShareRead), -1) << "not on a name";
    EXPECT_EQ(GetFileAttributesW(name.Text()), INVALID_FILE_ATTRIBUTES);
}

} // namespace
} // namespace vxut
