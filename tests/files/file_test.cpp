#include "files/file.h"

#include "tests/support/debug_listener.h"
#include "tests/support/failing_calls.h"
#include "tests/support/fake_stream.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace vxut {
namespace {

using test::FakeStream;
using test::FreshFolder;

std::string ReadAll(clsFile& file) {
    char buffer[64];
    file.SetPosition(0);
    return std::string(buffer, static_cast<size_t>(file.Read(buffer, sizeof(buffer))));
}

int64_t WriteString(clsFile& file, const std::string& text, int64_t position = -1) {
    return file.Write(text.data(), static_cast<int64_t>(text.size()), position);
}

TEST(FileOpenTest, FailuresHaveAReasonATextAndTheSystemsError) {
    const FreshFolder folder;
    CreateDirectoryW(folder.At(L"folder").Text(), nullptr);
    const clsFileRW held(folder.At(L"held"), kAccessReadWrite, kDispositionCreateAlways, kShareNone);
    const std::tuple<const wchar_t*, FileReason, DWORD> kCases[] = {
        {L"none\\x", kReasonPathNotFound, ERROR_PATH_NOT_FOUND},
        {L"absent", kReasonOther, ERROR_FILE_NOT_FOUND},
        {L"folder", kReasonAccessDenied, ERROR_ACCESS_DENIED},
        {L"held", kReasonSharing, ERROR_SHARING_VIOLATION},
        {L"CON", kReasonNameReserved, ERROR_INVALID_NAME},
        {L"", kReasonNameReserved, ERROR_INVALID_NAME}};
    for (const auto& [name, reason, error] : kCases) {
        clsFile file;
        EXPECT_EQ(file.Open(folder.At(name), kAccessReadWrite, kDispositionOpenExisting, kShareRead), -1);
        EXPECT_EQ(GetLastError(), error) << name;
        EXPECT_EQ(file.Reason(), reason) << name;
        EXPECT_STREQ(file.ErrorText().Text(), reason == kReasonNameReserved
                                                  ? L"file name is reserved by Windows"
                                                  : String::FromError(error, 1024).Text());
    }
}

TEST(FileOpenTest, ShareArgumentDecidesWhoElseMayOpen) {
    const FreshFolder folder;
    const String name = folder.Put(L"a", "x");
    const std::pair<FileShare, std::string> kCases[] = {
        {kShareNone, ""}, {kShareNoneToo, ""}, {kShareRead, "r"}, {kShareReadWrite, "rw"}};
    for (const auto& [share, others] : kCases) {
        const clsFile holder(name, kAccessRead, kDispositionOpenExisting, share);
        std::string opened;
        if (clsFile(name, kAccessRead, kDispositionOpenExisting, kShareReadWrite).IsOpen()) opened += 'r';
        if (clsFile(name, kAccessWrite, kDispositionOpenExisting, kShareReadWrite).IsOpen()) opened += 'w';
        EXPECT_EQ(opened, others);
    }
}

TEST(FileCloseTest, DeletesOrLeavesOpenAsRequested) {
    const FreshFolder folder;
    clsFileRW file(folder.At(L"a"), kAccessReadWrite, kDispositionCreateAlways, kShareNone,
                   kFileModeDefault | kFileModeDeleteOnClose);
    EXPECT_EQ(clsFile(file.Handle(), false).Write("ab", 2), 2); // only borrowed
    EXPECT_EQ(WriteString(file, "c"), 1);
    file.Close();
    EXPECT_EQ(folder.Get(L"a"), "(no file)");
}

// What must hold on a handle and on a stream alike.
class FileOnBothTest : public testing::Test {
protected:
    const FreshFolder folder_;
    FakeStream stream_{"0123456789"};
    clsFileRW onDisk_{folder_.Put(L"a", "0123456789"), kAccessReadWrite, kDispositionOpenExisting,
                      kShareRead};
    clsFileRW onStream_{&stream_};
};

TEST_F(FileOnBothTest, MovesWritesAndCutsAsRequestedUntilItIsClosed) {
    for (clsFile* file : {&onDisk_, &onStream_}) {
        EXPECT_EQ(file->SetPosition(4), 4);
        EXPECT_EQ(file->MovePosition(3), 7);
        EXPECT_EQ(file->MovePosition(-100), 0); // refused
        EXPECT_EQ(WriteString(*file, "XY", 5), 2);
        EXPECT_EQ(WriteString(*file, "Z"), 1);
        EXPECT_EQ(WriteString(*file, "-", 0), 1);
        EXPECT_EQ(ReadAll(*file), "-1234XYZ89");
        file->SetPosition(7);
        EXPECT_EQ(file->WriteText(L"\x20AC"), 1);
        EXPECT_EQ(file->WriteText(L"CDE", 1), 1);
        EXPECT_EQ(ReadAll(*file), std::string("-1234XY\xAC C\0", 11));
        file->SetPosition(4);
        file->SetEOF();
        file->SetPosition(1);
        file->Extend(6);
        EXPECT_EQ(file->GetPosition(), 1);
        EXPECT_EQ(ReadAll(*file), std::string("-123\0\0\0", 7));
        file->Extend(INT64_MAX);
        EXPECT_EQ(file->GetSize(), 7);
        file->Close();
        for (const int64_t result : {file->SetPosition(0), file->GetSize(), file->WriteText(L"x")})
            EXPECT_EQ(result, -1);
    }
    EXPECT_EQ(stream_.references, 1u);
}

TEST_F(FileOnBothTest, HandleIsServedFirstAndTheStreamCounts) {
    EXPECT_EQ(onDisk_.OpenOnStream(&stream_), 0);
    stream_.bytes = "streamed";
    EXPECT_EQ(onDisk_.GetSize(), 10);
    char buffer[8] = {};
    EXPECT_EQ(onDisk_.Read(buffer, 6), 6);
    EXPECT_STREQ(buffer, "stream");
    EXPECT_EQ(WriteString(onDisk_, "X"), 1);
    EXPECT_EQ(folder_.Get(L"a"), "012345X789");
    EXPECT_EQ(stream_.bytes, "streamXd");
}

TEST(FileStreamCountTest, ShortWritesAreReportedAndBoastsNotBelieved) {
    const DebugListener listener;
    FakeStream stream;
    stream.maxPiece = 2;
    clsFile file(&stream);
    EXPECT_EQ(WriteString(file, "abc"), 2);
    EXPECT_TRUE(listener.Heard(L"clsFile((Stream))::Write(): write failure... 2/3 ("));
    EXPECT_EQ(WriteString(file, "abc", -7), 0); // not at the current position instead
    EXPECT_EQ(stream.bytes, "ab");
    stream.boast = 1000;
    char buffer[4] = {};
    EXPECT_EQ(file.Read(buffer, 3), 3);
    EXPECT_EQ(WriteString(file, "xy"), 2);
    stream.transferResult = E_FAIL;
    EXPECT_EQ(file.Read(buffer, 3), 0);
}

TEST(FileCopyTest, TheTargetEndsAfterWhatCouldBeCopied) {
    const FreshFolder folder;
    const auto copy = [&](const std::string& content, uint64_t claimedSize) {
        FakeStream stream(content);
        stream.claimedSize = claimedSize;
        clsFile source(&stream);
        clsFileRW target(folder.Put(L"a", "old content"), kAccessReadWrite, kDispositionOpenExisting,
                         kShareRead);
        target.SetPosition(2);
        const bool isCopied = target.CopyFrom(source);
        return folder.Get(L"a") + (isCopied ? "" : " (failed)");
    };
    EXPECT_EQ(copy("new", 3), "olnew");
    EXPECT_EQ(copy("", 0), "ol");
    EXPECT_EQ(copy("short", 1ull << 33), "olshort (failed)");
    EXPECT_EQ(copy("short", UINT64_MAX), "old content (failed)");
}

// A failure of any call is seen by the caller, and a target never keeps the space that was made for a copy.
TEST(FileCopyTest, AFailingCallIsNoSuccess) {
    const FreshFolder folder;
    for (unsigned number = 1;; ++number) {
        FakeStream stream("new content");
        clsFile source(&stream);
        clsFileRW target(folder.Put(L"a", "old"), kAccessReadWrite, kDispositionOpenExisting, kShareRead);
        bool isCopied = false, hasStruck = false;
        {
            const test::FailingCalls failing(number);
            isCopied = target.CopyFrom(source);
            hasStruck = test::FailingCalls::HasStruck();
        }
        EXPECT_EQ(isCopied, target.Failure() == ERROR_SUCCESS) << number;
        EXPECT_EQ(isCopied, !hasStruck) << number;
        target.Close();
        if (!hasStruck) break;
        ASSERT_LT(number, 100u);
    }
    EXPECT_EQ(folder.Get(L"a"), "new content");
}

TEST(FileHandleTest, MovedOntoItselfItStaysAndABorrowedOneIsNeverClosed) {
    const FreshFolder folder;
    clsAutoCloseFile opened(
        CreateFileW(folder.At(L"a").Text(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    clsFileHandle owner({opened.Detach(), true});
    clsFileHandle& same = owner;
    owner = std::move(same);
    DWORD flags = 0;
    EXPECT_TRUE(owner && GetHandleInformation(owner.Get().resource, &flags));
    clsFileHandle borrower({owner.Get().resource, false});
    borrower = clsFileHandle({owner.Get().resource, false});
    borrower.Reset();
    EXPECT_TRUE(!borrower && GetHandleInformation(owner.Get().resource, &flags));
}

TEST(FileLockTest, WhatWaitingDoesNotCureFailsAtOnce) {
    const FreshFolder folder;
    clsFileRW file(folder.Put(L"a", "x"), kAccessReadWrite, kDispositionOpenExisting, kShareReadWrite);
    FakeStream stream;
    stream.lockResult = STG_E_ACCESSDENIED;
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(clsFile(&stream).LockRange(0, 1), nullptr);
    EXPECT_EQ(stream.calls.size(), 3u);
    {
        const test::FailingCalls failing(1, true, ERROR_INVALID_FUNCTION);
        EXPECT_EQ(file.LockRange(0, 1), nullptr);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_FUNCTION));
    }
    EXPECT_LT(GetTickCount64() - start, 5000u);
}

TEST(FileLockTest, WaitsForTheOtherOwnerWhichUnlockingAndTheEndOfAFileFree) {
    const FreshFolder folder;
    const String name = folder.Put(L"a", "0123456789");
    clsFileRW first(name, kAccessReadWrite, kDispositionOpenExisting, kShareReadWrite);
    const DebugListener listener;
    std::thread locker;
    {
        clsFileRW second(name, kAccessReadWrite, kDispositionOpenExisting, kShareReadWrite);
        clsFileLock* const low = second.LockRange(0, 2);
        second.LockRange(2, 1);
        second.UnlockRange(low);
        EXPECT_TRUE(LockFile(first.Handle(), 0, 0, 2, 0) && !LockFile(first.Handle(), 2, 0, 1, 0));
        UnlockFile(first.Handle(), 0, 0, 2, 0);
        second.UnlockRange(low);
        EXPECT_TRUE(listener.Heard(L"tried to unlock a lock that has already been removed"));
        locker = std::thread([&] { EXPECT_NE(first.LockRange(0, 4), nullptr); });
        Sleep(250);
    }
    locker.join();
    EXPECT_TRUE(listener.Heard(L"are still locked. they will be unlocked automatically..."));
}

TEST(FileLockTest, AStreamWithoutLocksCountsAsLocked) {
    for (const HRESULT answer : {STG_E_INVALIDFUNCTION, E_NOTIMPL, S_OK}) {
        FakeStream stream;
        stream.lockResult = answer;
        EXPECT_NE(clsFile(&stream).LockRange(0, 1), nullptr);
        EXPECT_EQ(stream.calls, std::vector<std::string>({"LockRegion 2", "UnlockRegion"}));
    }
}

} // namespace
} // namespace vxut
