// Jobs on files in use and on streams that misbehave, and their lines on the debug channel.
#include "profile/job.h"

#include "profile/list_services.h"
#include "profile/save.h"
#include "tests/support/debug_listener.h"
#include "tests/support/fake_stream.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

namespace vxut {
namespace {

using test::FakeStream;
using test::FreshFolder;

constexpr scOpenArguments kToRead{kAccessRead, kDispositionOpenExisting, kShareRead};

int pauses = 0;
clsFile* holder = nullptr;

TEST(OpenPatientlyTest, OnlyASharingViolationIsTriedAgainUntilTheFileIsFree) {
    const FreshFolder folder;
    const String path = folder.Put(L"a", "x");
    clsFile exclusive(path, kAccessReadWrite, kDispositionOpenExisting, kShareNone);
    holder = &exclusive;
    const scPatience patience{50, [] {
                                  ++pauses;
                                  Sleep(5);
                              }};
    clsFile file;
    EXPECT_EQ(OpenPatiently(file, folder.At(L"none"), kToRead, patience), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(pauses, 0);
    EXPECT_EQ(OpenPatiently(file, path, kToRead, patience), ERROR_SHARING_VIOLATION);
    EXPECT_GT(pauses, 0);
    EXPECT_EQ(OpenPatiently(file, path, kToRead, {10000, [] { holder->Close(); }}), ERROR_SUCCESS);
    EXPECT_TRUE(file.IsOpen());
}

TEST(ProfJobTest, AFileThatStaysInUseIsBusy) {
    const FreshFolder folder;
    const String path = folder.Put(L"a", "[/]\na=1\n");
    const scPatience patience{20, [] { Sleep(1); }};
    ProfJob first;
    first.OpenExclusive(path.Text(), patience);
    EXPECT_EQ(first.LastError(), PROF_OK);
    ProfJob second;
    second.OpenExclusive(path.Text(), patience);
    EXPECT_EQ(second.LastError(), PROF_ERR_BUSY);
    EXPECT_FALSE(second.OwnsFile(nullptr));
    ProfJob shared;
    shared.OpenShared(path.Text(), patience);
    EXPECT_EQ(shared.LastError(), PROF_ERR_BUSY) << "it is open for writing";
}

class ProfStreamTest : public testing::Test {
protected:
    static constexpr std::wstring_view kText = L"\uFEFF[/]\r\n {\r\n a=1\r\n }\r\n";

    int32_t SaveTo(FakeStream& stream) {
        ProfJob job;
        job.Root().AppendItem(L"a", value_);
        return SaveProfileToStream(job, &stream, PROF_FORMAT_TEXT);
    }

    std::wstring value_ = L"1";
    const std::string bytes_{reinterpret_cast<const char*>(kText.data()), kText.size() * sizeof(wchar_t)};
    FakeStream stream_;
};

TEST_F(ProfStreamTest, AStreamThatTakesNothingOrNotAllIsAWriteError) {
    stream_.maxPiece = 20;
    EXPECT_EQ(SaveTo(stream_), PROF_ERR_WRITE);
    stream_.maxPiece = 60'000;
    value_ = std::wstring(200'000, L'x');
    EXPECT_EQ(SaveTo(stream_), PROF_ERR_WRITE);
    stream_.transferResult = STG_E_MEDIUMFULL;
    EXPECT_EQ(SaveTo(stream_), PROF_ERR_WRITE);
}

TEST_F(ProfStreamTest, StreamsThatCannotBeSizedOrMoveWhenSizedTakeTheBytes) {
    stream_.setSizeResult = E_NOTIMPL;
    EXPECT_EQ(SaveTo(stream_), PROF_OK);
    EXPECT_EQ(stream_.bytes, bytes_);
    FakeStream moving;
    moving.movesOnSetSize = true;
    EXPECT_EQ(SaveTo(moving), PROF_OK);
    EXPECT_EQ(moving.bytes, bytes_);
}

TEST_F(ProfStreamTest, AStreamIsHeldAndOneThatLiesAboutItsSizeGivesAnEmptyTree) {
    const struct {
        uint64_t claimed;
        int entries;
    } kCases[] = {{bytes_.size(), 1}, {1000, 0}, {uint64_t{1} << 40, 0}, {uint64_t{1} << 62, 0}};
    stream_.bytes = bytes_;
    for (const auto& row : kCases) {
        stream_.claimedSize = row.claimed;
        ProfJob job;
        job.OpenStream(&stream_, 0);
        EXPECT_EQ(job.Root().entries(), row.entries) << row.claimed;
        EXPECT_GT(stream_.references, 1u);
        EXPECT_TRUE(job.OwnsFile(L"(STREAM)"));
        EXPECT_FALSE(job.OwnsFile(L""));
    }
    EXPECT_EQ(stream_.references, 1u);
}

TEST(DebugWriteEntriesTest, OneIndentedLineForEachEntry) {
    ProfJob job;
    job.Root().AppendItem(L"a", L"1");
    job.Root().AppendList(L"l").AppendList(L"m").AppendItem(L"b", L"2");
    job.Root().AppendItem(L"c", L"3");
    const DebugListener listener;
    DebugWriteEntries(job.Root());
    const std::wstring kWanted[] = {L" a=1", L" [l]", L"  [m]", L"   b=2", L" c=3"};
    ASSERT_EQ(listener.Lines().size(), std::size(kWanted));
    for (size_t i = 0; i < std::size(kWanted); ++i)
        EXPECT_NE(listener.Lines()[i].find(kWanted[i]), std::wstring::npos) << listener.Lines()[i];
}

} // namespace
} // namespace vxut
