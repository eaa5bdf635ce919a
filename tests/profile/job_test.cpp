// Jobs on files in use and on streams that misbehave.
#include "profile/job.h"

#include "profile/save.h"
#include "tests/support/fake_stream.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <string>

namespace vxut {
namespace {

using test::FakeStream;
using test::FreshFolder;

clsFile* holder = nullptr;

TEST(OpenPatientlyTest, AFileInUseIsTriedAgainUntilItIsFreeOrPatienceEnds) {
    const FreshFolder folder;
    const String path = folder.Put(L"a", "[/]\na=1\n");
    const scOpenArguments toRead{kAccessRead, kDispositionOpenExisting, kShareRead};
    const scPatience patience{20, [] { Sleep(1); }};
    clsFile exclusive(path, kAccessReadWrite, kDispositionOpenExisting, kShareNone);
    holder = &exclusive;
    clsFile file;
    EXPECT_EQ(OpenPatiently(file, folder.At(L"none"), toRead, {10000, [] { FAIL(); }}), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(OpenPatiently(file, path, toRead, patience), ERROR_SHARING_VIOLATION);
    ProfJob job;
    job.OpenExclusive(path.Text(), patience);
    EXPECT_EQ(job.LastError(), PROF_ERR_BUSY);
    EXPECT_FALSE(job.OwnsFile(nullptr));
    EXPECT_EQ(OpenPatiently(file, path, toRead, {10000, [] { holder->Close(); }}), ERROR_SUCCESS);
    EXPECT_TRUE(file.IsOpen());
}

int32_t SaveTo(FakeStream& stream, size_t length) {
    ProfJob job;
    job.Root().AppendItem(L"a", std::wstring(length, L'x'));
    return SaveProfileToStream(job, &stream, PROF_FORMAT_TEXT).code;
}

TEST(ProfStreamTest, AStreamThatTakesNothingOrNotAllIsAWriteError) {
    FakeStream stream;
    stream.maxPiece = 60'000;
    EXPECT_EQ(SaveTo(stream, 1), PROF_OK);
    EXPECT_EQ(SaveTo(stream, 200'000), PROF_ERR_WRITE);
    stream.transferResult = STG_E_MEDIUMFULL;
    EXPECT_EQ(SaveTo(stream, 1), PROF_ERR_WRITE);
}

TEST(ProfStreamTest, OneThatCannotBeSizedOrMovesWhenSizedTakesTheBytesAndOneThatLiesGivesAnEmptyTree) {
    FakeStream plain, unsized, moving;
    unsized.setSizeResult = E_NOTIMPL;
    moving.movesOnSetSize = true;
    for (FakeStream* stream : {&plain, &unsized, &moving}) {
        EXPECT_EQ(SaveTo(*stream, 1), PROF_OK);
        EXPECT_EQ(stream->bytes, plain.bytes);
    }
    const uint64_t size = plain.bytes.size();
    for (const uint64_t claimed : {size, uint64_t{1000}, uint64_t{1} << 40, uint64_t{1} << 62}) {
        plain.claimedSize = claimed;
        ProfJob job;
        job.OpenStream(&plain, 0);
        EXPECT_EQ(job.Root().entries(), claimed == size) << claimed;
        EXPECT_TRUE(plain.references > 1 && job.OwnsFile(L"(STREAM)") && !job.OwnsFile(L""));
    }
    EXPECT_EQ(plain.references, 1u);
}

} // namespace
} // namespace vxut
