// Saving and loading on streams that misbehave.
#include "profile/save.h"

#include "profile/job.h"
#include "profile/load.h"
#include "tests/support/fake_stream.h"

#include <gtest/gtest.h>

namespace vxut {
namespace {

using test::FakeStream;

std::string BytesOf(const std::wstring& text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}
const std::string kText = BytesOf(L"\uFEFF[/]\r\n {\r\n a=1\r\n }\r\n");

void Fill(ProfJob& job) { job.Root().AppendItem(L"a", L"1"); }

TEST(SaveTest, AStreamThatTakesNothingOrNotAllIsAWriteError) {
    ProfJob job;
    Fill(job);
    FakeStream failing;
    failing.transferResult = STG_E_MEDIUMFULL;
    EXPECT_EQ(SaveProfileToStream(job, &failing, PROF_FORMAT_TEXT), PROF_ERR_WRITE);
    FakeStream shortening;
    shortening.maxPiece = 20;
    EXPECT_EQ(SaveProfileToStream(job, &shortening, PROF_FORMAT_TEXT), PROF_ERR_WRITE);
    job.Root().AppendItem(L"b", std::wstring(200'000, L'x'));
    FakeStream large;
    large.maxPiece = 60'000;
    EXPECT_EQ(SaveProfileToStream(job, &large, PROF_FORMAT_TEXT), PROF_ERR_WRITE);
}

TEST(SaveTest, StreamsThatCannotBeSizedOrMoveWhenSizedTakeTheBytes) {
    ProfJob job;
    Fill(job);
    FakeStream fixed;
    fixed.setSizeResult = E_NOTIMPL;
    EXPECT_EQ(SaveProfileToStream(job, &fixed, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(fixed.bytes, kText);
    FakeStream moving;
    moving.movesOnSetSize = true;
    EXPECT_EQ(SaveProfileToStream(job, &moving, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(moving.bytes, kText);
}

TEST(SaveTest, TheEstimateIsTheSize) {
    ProfJob job;
    job.Root().AppendItem(L"a=[]\n", L"\r\n\t");
    clsItemList* list = &job.Root();
    for (int i = 0; i < 300; ++i) list = &list->AppendList(L"l");
    list->AppendItem(L"n", std::wstring(1000, L'v'));
    clsProfOutput count;
    ASSERT_TRUE(ProfWriteList(job.Root(), 0, count, *FormOfFormat(PROF_FORMAT_TEXT).writer));
    FakeStream stream;
    ASSERT_EQ(SaveProfileToStream(job, &stream, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(count.Size() + 2, static_cast<int64_t>(stream.bytes.size()));
}

TEST(LoadTest, AStreamThatLiesAboutItsSizeGivesAnEmptyTree) {
    for (const uint64_t claimed : {uint64_t{1000}, uint64_t{1} << 40, uint64_t{1} << 62}) {
        FakeStream stream(kText);
        stream.claimedSize = claimed;
        ProfJob job;
        job.OpenStream(&stream, 0);
        EXPECT_TRUE(job.Root().isEmpty());
        EXPECT_NE(job.File(), nullptr);
    }
}

TEST(LoadTest, TheJobHoldsAReferenceToItsStream) {
    FakeStream stream(kText);
    {
        ProfJob job;
        job.OpenStream(&stream, 0);
        EXPECT_EQ(job.Root().entries(), 1);
        EXPECT_GT(stream.references, 1u);
        EXPECT_TRUE(job.OwnsFile(L"(STREAM)"));
        EXPECT_FALSE(job.OwnsFile(L""));
    }
    EXPECT_EQ(stream.references, 1u);
}

} // namespace
} // namespace vxut
