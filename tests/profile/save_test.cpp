// Saves and loads whose system calls fail: files hold the old or the new content, and loads say so.
#include "profile/save.h"

#include "profile/job.h"
#include "profile/save_file.h"
#include "tests/support/failing_calls.h"
#include "tests/support/fake_stream.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>

namespace vxut {
namespace {

using test::FailingCalls;
using test::FakeStream;
using test::FreshFolder;

constexpr unsigned kEnough = 500; // calls; no load and no save makes as many

const std::string kOld = "[/]\na=" + std::string(300, 'o') + "\nb=2\n";

std::string NewContent() {
    FakeStream stream;
    ProfJob job;
    job.Root().AppendItem(L"new", std::wstring(90, L'n'));
    EXPECT_EQ(SaveProfileToStream(job, &stream, PROF_FORMAT_TEXT).code, PROF_OK);
    return stream.bytes;
}

int CountFiles(const FreshFolder& folder) {
    int count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.Path().Text()))
        ++count;
    return count;
}

void ReplaceTree(ProfJob& job) {
    job.Root().Empty();
    job.Root().AppendItem(L"new", std::wstring(90, L'n'));
}

enum class Target { kMissing, kByName, kKept, kKeptThroughStreamSave };

// Saves with each call failing in turn, and looks at file, folder and job.
void SaveWithFailures(Target kind, bool andAllLater, bool hasTwoNames) {
    const std::string newContent = NewContent();
    unsigned struck = 0;
    for (unsigned number = 1; number < kEnough; ++number) {
        const FreshFolder folder;
        const String path = folder.At(L"a");
        if (kind != Target::kMissing) folder.Put(L"a", kOld);
        if (hasTwoNames) {
            ASSERT_TRUE(CreateHardLinkW(folder.At(L"b").Text(), path.Text(), nullptr));
        }
        const std::string before = folder.Get(L"a");
        ProfJob job;
        const bool isKept = kind == Target::kKept || kind == Target::kKeptThroughStreamSave;
        if (isKept) job.OpenExclusive(path.Text());
        ReplaceTree(job);
        bool hasStruck = false;
        scOutcome result{};
        {
            const FailingCalls failing(number, andAllLater);
            result = kind == Target::kKeptThroughStreamSave
                         ? SaveProfileToStream(job, nullptr, PROF_FORMAT_TEXT)
                         : SaveProfile(job, isKept ? nullptr : path.Text(), PROF_FORMAT_TEXT);
            hasStruck = FailingCalls::HasStruck();
        }
        if (!hasStruck) {
            EXPECT_EQ(result.code, PROF_OK);
            break;
        }
        ++struck;
        EXPECT_EQ(result.code == PROF_OK, result.error == ERROR_SUCCESS);
        EXPECT_EQ(folder.Get(L"a"), result.code == PROF_OK ? newContent : before)
            << "call " << number << ", error " << result.error;
        EXPECT_EQ(CountFiles(folder), (before != "(no file)" || result.code == PROF_OK) + hasTwoNames)
            << number;
        EXPECT_EQ(SaveProfile(job, isKept ? nullptr : path.Text(), PROF_FORMAT_TEXT).code, PROF_OK);
        EXPECT_EQ(folder.Get(L"a"), newContent) << "the next save, after call " << number;
        if (isKept) {
            EXPECT_NE(clsFile(path, kAccessRead, kDispositionOpenExisting, kShareRead).Reason(), kReasonNone)
                << "is kept again";
        }
    }
    EXPECT_GT(struck, 8u);
    EXPECT_LT(struck, kEnough - 1);
}

TEST(SaveFailureTest, AFileHoldsTheOldOrTheNewContentWhateverCallFails) {
    for (const Target kind :
         {Target::kMissing, Target::kByName, Target::kKept, Target::kKeptThroughStreamSave}) {
        for (const bool andAllLater : {false, true}) {
            SCOPED_TRACE(testing::Message() << static_cast<int>(kind) << ' ' << andAllLater);
            SaveWithFailures(kind, andAllLater, false);
        }
    }
}

// A file with two names is overwritten in place, or they would part.
TEST(SaveFailureTest, AFileThatIsOverwrittenInPlaceIsPutBack) {
    for (const Target kind : {Target::kByName, Target::kKept}) SaveWithFailures(kind, false, true);
    const FreshFolder folder;
    folder.Put(L"a", kOld);
    CreateHardLinkW(folder.At(L"b").Text(), folder.At(L"a").Text(), nullptr);
    ProfJob job;
    ReplaceTree(job);
    EXPECT_EQ(SaveProfile(job, folder.At(L"a").Text(), PROF_FORMAT_TEXT).code, PROF_OK);
    EXPECT_EQ(folder.Get(L"b"), NewContent());
}

TEST(SaveFailureTest, WhatBelongsToTheFileStays) {
    const FreshFolder folder;
    const String path = folder.Put(L"a", kOld);
    const std::filesystem::path native(path.Text());
    SetFileAttributesW(path.Text(), FILE_ATTRIBUTE_HIDDEN);
    const auto permissions = std::filesystem::status(native).permissions();
    ProfJob job;
    ReplaceTree(job);
    EXPECT_EQ(SaveProfile(job, path.Text(), PROF_FORMAT_TEXT).code, PROF_OK);
    EXPECT_TRUE(GetFileAttributesW(path.Text()) & FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(std::filesystem::status(native).permissions(), permissions);
}

TEST(SaveFailureTest, LeftoversOfDeadProcessesGoAndThoseOfLivingOnesStay) {
    const FreshFolder folder;
    folder.Put(L"a", kOld);
    folder.Put(L"a~vx0123456789abcdef.tmp", "dead");
    folder.Put(L"a~vx0123456789abcdeX.tmp", "the user's");
    folder.Put(L"ab~vx0123456789abcdef.tmp", "of another file");
    const clsFile living(folder.At(L"a~vxfedcba9876543210.tmp"), kAccessReadWrite, kDispositionCreateAlways,
                         kShareRead);
    ProfJob job;
    ReplaceTree(job);
    EXPECT_EQ(SaveProfile(job, folder.At(L"a").Text(), PROF_FORMAT_TEXT).code, PROF_OK);
    EXPECT_EQ(folder.Get(L"a~vx0123456789abcdef.tmp"), "(no file)");
    EXPECT_EQ(CountFiles(folder), 4);
    folder.Put(L"a~vx0123456789abcdef.tmp", "dead");
    ProfJob kept;
    kept.OpenExclusive(folder.At(L"a").Text());
    EXPECT_EQ(kept.LastError(), PROF_OK);
    EXPECT_EQ(CountFiles(folder), 4);
}

TEST(SaveFailureTest, DevicesFailAtOnce) {
    const FreshFolder folder;
    ProfJob job;
    ReplaceTree(job);
    const ULONGLONG start = GetTickCount64();
    for (const wchar_t* name :
         {L"nul", L"NuL", L"aux.prf", L"AUX.prf", L"com1", L"Com1.prf", L"lpt1", L"con"}) {
        for (const String& path : {String(name), folder.At(name)}) {
            EXPECT_EQ(SaveProfile(job, path.Text(), PROF_FORMAT_TEXT).code, PROF_ERR_SAVE) << name;
            ProfJob opened;
            opened.OpenExclusive(path.Text());
            EXPECT_NE(opened.LastError(), PROF_OK) << name;
        }
    }
    EXPECT_LT(GetTickCount64() - start, 9000u);
    EXPECT_EQ(CountFiles(folder), 0);
}

// Another program reads the kept file, with all sharing allowed, and so prevents the rename.
TEST(SaveFailureTest, AKeptFileThatOthersReadIsSaved) {
    const FreshFolder folder;
    const String path = folder.Put(L"a", kOld);
    ProfJob job;
    job.OpenExclusive(path.Text());
    ReplaceTree(job);
    const clsFile reader(path, kAccessRead, kDispositionOpenExisting, kShareReadWrite);
    EXPECT_TRUE(reader.IsOpen());
    EXPECT_EQ(SaveProfile(job, nullptr, PROF_FORMAT_TEXT).code, PROF_OK);
    EXPECT_EQ(folder.Get(L"a"), NewContent());
    EXPECT_EQ(CountFiles(folder), 1);
}

// A kept file is found again although its name was relative and the current folder is another one now.
TEST(SaveFailureTest, AKeptFileWithARelativeNameStaysTheSameFile) {
    const FreshFolder folder, elsewhere;
    folder.Put(L"a", kOld);
    elsewhere.Put(L"a", "another file");
    wchar_t before[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, before);
    SetCurrentDirectoryW(folder.Path().Text());
    ProfJob job;
    job.OpenExclusive(L"a");
    SetCurrentDirectoryW(elsewhere.Path().Text());
    for (int round = 0; round < 2; ++round) {
        ReplaceTree(job);
        EXPECT_EQ(SaveProfile(job, L"A", PROF_FORMAT_TEXT).code, PROF_OK);
    }
    SetCurrentDirectoryW(before);
    EXPECT_EQ(folder.Get(L"a"), NewContent());
    EXPECT_EQ(elsewhere.Get(L"a"), "another file");
}

clsFile* intruder = nullptr;

TEST(SaveFailureTest, AKeptFileThatWasTakenInTheMomentOfTheRenameIsWaitedFor) {
    const FreshFolder folder;
    const String path = folder.Put(L"a", kOld);
    clsFile kept;
    clsFile other(path, kAccessReadWrite, kDispositionOpenExisting, kShareNone);
    intruder = &other;
    const std::string newContent = NewContent();
    clsMemoryImage image({newContent.data(), static_cast<int64_t>(newContent.size())});
    // The kept file has been lost to the intruder.
    kept.Open(path, kAccessReadWrite, kDispositionOpenExisting, kShareRead);
    EXPECT_EQ(SaveIntoKept(kept, image, {20, [] { Sleep(1); }}), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(SaveIntoKept(kept, image, {10000, [] { intruder->Close(); }}),
              static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_TRUE(kept.IsOpen());
    EXPECT_EQ(folder.Get(L"a"), newContent);
}

std::wstring FirstNames(ProfJob& job) {
    std::wstring names;
    for (const clsItem* item : job.Root()) names += item->Name();
    return names;
}

TEST(LoadFailureTest, AFailingCallOnAFileIsALastErrorAndNeverAnEmptyTree) {
    const FreshFolder folder;
    std::wstring wide = L"\xFEFF[/]\r\na=1\r\nb=2\r\n";
    const std::string contents[] = {
        kOld, "[/]\na=1\nb=2\n",
        std::string(reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(wchar_t))};
    for (const std::string& content : contents) {
        const String path = folder.Put(L"a", content);
        for (const bool isExclusive : {false, true}) {
            for (const bool andAllLater : {false, true}) {
                unsigned number = 1;
                for (bool hasStruck = true; hasStruck; ++number) {
                    ASSERT_LT(number, kEnough);
                    ProfJob job;
                    {
                        const FailingCalls failing(number, andAllLater);
                        isExclusive ? job.OpenExclusive(path.Text()) : job.OpenShared(path.Text());
                        hasStruck = FailingCalls::HasStruck();
                    }
                    EXPECT_EQ(job.LastError() == PROF_OK, FirstNames(job) == L"ab") << number;
                    EXPECT_EQ(job.LastError() == PROF_OK, job.SystemError() == ERROR_SUCCESS) << number;
                }
                EXPECT_GT(number, 8u);
            }
        }
    }
}

TEST(LoadFailureTest, AFailingCallOnAStreamIsALastErrorAndNeverAnEmptyTree) {
    for (const uint32_t level : {0u, 1u}) {
        for (const bool andAllLater : {false, true}) {
            unsigned number = 1;
            for (bool hasStruck = true; hasStruck; ++number) {
                ASSERT_LT(number, kEnough);
                const std::wstring text = L"\xFEFF[/]\r\na=1\r\nb=2\r\n" + std::wstring(200, L'#');
                FakeStream stream(
                    {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)});
                stream.position = level == 0 ? 0 : 12; // after "[/]"
                stream.FailCall(number, andAllLater);
                ProfJob job;
                job.OpenStream(&stream, level);
                hasStruck = stream.HasStruck();
                EXPECT_EQ(job.LastError() == PROF_OK, FirstNames(job) == L"ab")
                    << number << ' ' << level << ' ' << job.SystemError();
                if (job.LastError() != PROF_OK) EXPECT_EQ(job.LastError(), PROF_ERR_BUSY);
            }
            EXPECT_GT(number, 6u);
        }
    }
}

TEST(StreamSaveFailureTest, TheOldBytesAreBackAndNoReservedTailStays) {
    const std::string newContent = NewContent();
    for (const size_t oldSize : {size_t{0}, size_t{10}, newContent.size() + 100}) {
        const std::string old(oldSize, 'o');
        for (unsigned number = 1;; ++number) { // with all later calls failing too nothing can be put back
            ASSERT_LT(number, kEnough);
            FakeStream stream(old);
            ProfJob job;
            ReplaceTree(job);
            stream.FailCall(number, true);
            if (SaveProfileToStream(job, &stream, PROF_FORMAT_TEXT).code == PROF_OK)
                EXPECT_EQ(stream.bytes, newContent) << number;
            if (!stream.HasStruck()) break;
        }
        for (unsigned number = 1;; ++number) {
            ASSERT_LT(number, kEnough);
            FakeStream stream(old);
            ProfJob job;
            ReplaceTree(job);
            stream.FailCall(number, false);
            const scOutcome result = SaveProfileToStream(job, &stream, PROF_FORMAT_TEXT);
            EXPECT_EQ(stream.bytes, result.code == PROF_OK ? newContent : old) << number;
            EXPECT_TRUE(result.code == PROF_OK || result.code == PROF_ERR_WRITE);
            if (!stream.HasStruck()) break;
        }
    }
}

TEST(StreamSaveFailureTest, AFullStreamIsPutBackOrEndsWhereTheWritingStopped) {
    ProfJob job;
    ReplaceTree(job);
    const std::string newContent = NewContent();
    FakeStream readable("old");
    readable.capacity = 100;
    const scOutcome result = SaveProfileToStream(job, &readable, PROF_FORMAT_TEXT);
    EXPECT_EQ(result.code, PROF_ERR_WRITE);
    EXPECT_EQ(result.error, static_cast<DWORD>(ERROR_DISK_FULL));
    EXPECT_EQ(readable.bytes, "old");
    FakeStream writeOnly("old");
    writeOnly.capacity = 100;
    writeOnly.readResult = STG_E_ACCESSDENIED;
    EXPECT_EQ(SaveProfileToStream(job, &writeOnly, PROF_FORMAT_TEXT).code, PROF_ERR_WRITE);
    EXPECT_EQ(writeOnly.bytes, newContent.substr(0, 100));
    writeOnly.capacity = SIZE_MAX;
    EXPECT_EQ(SaveProfileToStream(job, &writeOnly, PROF_FORMAT_TEXT).code, PROF_OK);
    EXPECT_EQ(writeOnly.bytes, newContent);
}

} // namespace
} // namespace vxut
