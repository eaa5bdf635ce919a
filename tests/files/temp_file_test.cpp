#include "files/temp_file.h"

#include "files/path.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>

namespace vxut {
namespace {

using test::FreshFolder;

class TempFileTest : public testing::Test {
protected:
    // Makes a file from a template in the test's folder and gives its name without the folder.
    std::wstring Create(const wchar_t* base, const wchar_t* extension, uint32_t flags,
                        clsAutoCloseFile* holder = nullptr) {
        const String name = CreateTempFile(folder_.At(base), extension, flags, holder);
        EXPECT_STREQ(DirectoryPart(name).Text(), folder_.Path().Text());
        EXPECT_TRUE(folder_.Has(FilePart(name).Text()));
        return FilePart(name).Text();
    }
    // Dates a file back.
    void Age(const wchar_t* name, double days) {
        const clsFile file(folder_.At(name), kAccessWrite, kDispositionOpenExisting, kShareNone);
        FILETIME now;
        GetSystemTimeAsFileTime(&now);
        ULARGE_INTEGER ticks = {{now.dwLowDateTime, now.dwHighDateTime}};
        ticks.QuadPart -= static_cast<uint64_t>(static_cast<int64_t>(days * 864e9));
        const FILETIME then = {ticks.LowPart, ticks.HighPart};
        EXPECT_TRUE(SetFileTime(file.Handle(), nullptr, nullptr, &then));
    }

    const FreshFolder folder_;
};

TEST_F(TempFileTest, NamesFollowTheirPattern) {
    const struct {
        const wchar_t* base;
        const wchar_t* extension;
        uint32_t flags;
        const wchar_t* pattern;
    } kCases[] = {
        {L"abc.old", L"tmp", 0, L"_21_abc[0-9a-f]+\\.tmp"},
        {L"abc", L".tmp", kTempNoVersionPrefix, L"abc[0-9a-f]+\\.tmp"},
        {L"", L"x", kTempRandomAccess, L"_21_qzr[0-9a-f]+\\.x"},
        {L"bare", L"t", kTempBareNameFirst, L"_21_bare\\.t"},
        {L"bare", L"t", kTempBareNameFirst, L"_21_bare[0-9a-f]+\\.t"}, // taken by the one before
        {L"bare", L"t", kTempBareNameFirst | kTempNoVersionPrefix, L"bare\\.t"},
    };
    for (const auto& row : kCases) {
        const std::wstring name = Create(row.base, row.extension, row.flags);
        EXPECT_TRUE(std::regex_match(name, std::wregex(row.pattern))) << name;
    }
}

TEST_F(TempFileTest, OnlyLeftoversOfAWeekAreTakenOver) {
    constexpr uint32_t kFlags = kTempBareNameFirst | kTempNoVersionPrefix;
    const struct {
        double days;
        bool held;
        bool takenOver;
    } kCases[] = {{6.9, true, false}, {7.1, true, true}, {7.1, false, false}, {-30, true, false}};
    for (const auto& row : kCases) {
        folder_.Put(L"left.t", "remains");
        Age(L"left.t", row.days);
        clsAutoCloseFile holder;
        const std::wstring name = Create(L"left", L"t", kFlags, row.held ? &holder : nullptr);
        EXPECT_EQ(name == L"left.t", row.takenOver) << row.days;
        if (row.takenOver) EXPECT_EQ(GetFileSize(holder.Get(), nullptr), 0u);
        holder.Reset();
        EXPECT_EQ(folder_.Get(L"left.t"), row.takenOver ? "(no file)" : "remains");
    }
}

TEST_F(TempFileTest, LeftoverInUseIsLeftAlone) {
    folder_.Put(L"left.t", "remains");
    Age(L"left.t", 30);
    const clsFile user(folder_.At(L"left.t"), kAccessRead, kDispositionOpenExisting, kShareReadWrite);
    clsAutoCloseFile holder;
    EXPECT_NE(Create(L"left", L"t", kTempBareNameFirst | kTempNoVersionPrefix, &holder), L"left.t");
    EXPECT_EQ(folder_.Get(L"left.t"), "remains");
}

TEST_F(TempFileTest, NoFolderNoFile) {
    EXPECT_TRUE(CreateTempFile(folder_.At(L"absent\\x"), L"t", 0).IsEmpty());
    EXPECT_TRUE(CreateTempFile(folder_.At(L"b<d"), L"t", 0).IsEmpty());
}

TEST(TempFolderTest, ChainIsMadeOrGivenUp) {
    String chain = TempFolder(L"vxut-test-chain\\inner");
    EXPECT_STREQ(chain.Text(), (TempDirectory(true) + L"vxut-test-chain\\inner\\").Text());
    EXPECT_EQ(DeviceTest(chain), kPathDirectory);
    EXPECT_STREQ(TempFolder(L"vxut-test-chain\\inner").Text(), chain.Text());
    EXPECT_STREQ(TempFolder(L"vxut-test-chain\\b?d").Text(), TempDirectory(true).Text());
    RemoveDirectoryW(chain.Text());
    RemoveDirectoryW((TempDirectory(true) + L"vxut-test-chain").Text());
}

TEST(TempFileObjectTest, LivesInTheSharedFolderUntilClosed) {
    clsFileRWTemp file(L"PRF", L"prf");
    const String name = file.Name();
    EXPECT_TRUE(std::wstring(name.Text()).starts_with((TempDirectory(true) + L"Velmora\\_21_PRF").Text()));
    EXPECT_STREQ(Extension(name).Text(), L".prf");
    EXPECT_EQ(file.Write("abc", 3), 3);
    EXPECT_EQ(file.AsStream()->Write("d", 1, nullptr), S_OK);
    EXPECT_EQ(file.GetSize(), 4);
    EXPECT_EQ(file.Open(name, kAccessRead, kDispositionOpenExisting, kShareRead), -1) << "not on a name";
    EXPECT_EQ(GetFileAttributesW(name.Text()), INVALID_FILE_ATTRIBUTES);
    clsFileRWTemp unnamed;
    EXPECT_NE(Find(unnamed.Name().Text(), L"\\_21_qzr"), -1);
    EXPECT_STREQ(Extension(unnamed.Name()).Text(), L".tmp");
}

} // namespace
} // namespace vxut
