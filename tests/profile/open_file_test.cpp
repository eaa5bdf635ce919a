#include "profile/open_file.h"

#include "profile/job.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace vxut {
namespace {

using test::FreshFolder;

constexpr scOpenArguments kToRead{kAccessRead, kDispositionOpenExisting, kShareRead};

int pauses = 0;
clsFile* holder = nullptr;

TEST(OpenPatientlyTest, OnlyASharingViolationIsTriedAgain) {
    const FreshFolder folder;
    const String path = folder.Put(L"a", "x");
    const scPatience patience{50, [] {
                                  ++pauses;
                                  Sleep(5);
                              }};
    pauses = 0;
    clsFile file;
    EXPECT_EQ(OpenPatiently(file, folder.At(L"none"), kToRead, patience), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(pauses, 0);
    const clsFile exclusive(path, kAccessReadWrite, kDispositionOpenExisting, kShareNone);
    EXPECT_EQ(OpenPatiently(file, path, kToRead, patience), ERROR_SHARING_VIOLATION);
    EXPECT_GT(pauses, 0);
    EXPECT_FALSE(file.IsOpen());
}

TEST(OpenPatientlyTest, TakesTheFileWhenItBecomesFree) {
    const FreshFolder folder;
    const String path = folder.Put(L"a", "x");
    clsFile exclusive(path, kAccessReadWrite, kDispositionOpenExisting, kShareNone);
    holder = &exclusive;
    clsFile file;
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
    EXPECT_EQ(second.File(), nullptr);
    EXPECT_FALSE(second.OwnsFile(nullptr));
    ProfJob shared;
    shared.OpenShared(path.Text(), patience);
    EXPECT_EQ(shared.LastError(), PROF_ERR_BUSY) << "it is open for writing";
}

} // namespace
} // namespace vxut
