#include "files/file.h"

#include "files/global_lock.h"
#include "tests/support/debug_listener.h"
#include "tests/support/fake_stream.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace vxut {
namespace {

using test::FakeStream;
using test::FreshFolder;

std::string ReadAll(clsFile& file) {
    std::string content(static_cast<size_t>(file.GetSize()), '\0');
    file.SetPosition(0);
    content.resize(static_cast<size_t>(file.Read(content.data(), static_cast<int64_t>(content.size()))));
    return content;
}

int64_t WriteString(clsFile& file, const std::string& text, int64_t position = -1) {
    return file.Write(text.data(), static_cast<int64_t>(text.size()), position);
}

TEST(FileOpenTest, ReservedNamesAreNotEvenTried) {
    const FreshFolder folder;
    for (const wchar_t* name : {L"CON", L"LPT1.txt", L"a?b", L"ends.", L"ends ", L""}) {
        clsFile file;
        EXPECT_EQ(file.Open(folder.At(name), kAccessWrite, kDispositionCreateAlways, kShareNone), -1) << name;
        EXPECT_EQ(file.Reason(), kReasonNameReserved) << name;
        EXPECT_STREQ(file.ErrorText().Text(), L"file name is reserved by Windows");
        EXPECT_NE(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
        EXPECT_FALSE(file.IsOpen());
        EXPECT_STREQ(file.Name().Text(), folder.At(name).Text());
    }
}

TEST(FileOpenTest, FailuresHaveAReasonATextAndTheSystemsError) {
    const FreshFolder folder;
    CreateDirectoryW(folder.At(L"folder").Text(), nullptr);
    const struct {
        String name;
        FileReason reason;
        DWORD error;
    } kCases[] = {{folder.At(L"none\\x"), kReasonPathNotFound, ERROR_PATH_NOT_FOUND},
                  {folder.At(L"absent"), kReasonOther, ERROR_FILE_NOT_FOUND},
                  {folder.At(L"folder"), kReasonAccessDenied, ERROR_ACCESS_DENIED}};
    for (const auto& row : kCases) {
        clsFile file;
        EXPECT_EQ(file.Open(row.name, kAccessReadWrite, kDispositionOpenExisting, kShareRead), -1);
        EXPECT_EQ(GetLastError(), row.error);
        EXPECT_EQ(file.Reason(), row.reason) << row.name.Text();
        EXPECT_STREQ(file.ErrorText().Text(), String::FromError(row.error, 1024).Text());
        EXPECT_EQ(file.GetPosition(), -1);
    }
}

// Fails to open a number of times.
class StubbornFile : public clsFileRW {
public:
    int refusals = 0;
    int calls = 0;
    DWORD error = ERROR_SHARING_VIOLATION;

protected:
    clsAutoCloseFile OpenHandle(const String& name, DWORD access, DWORD share, DWORD disposition,
                                DWORD attributes) override {
        if (++calls > refusals) return clsFileRW::OpenHandle(name, access, share, disposition, attributes);
        SetLastError(error);
        return {};
    }
};

TEST(FileOpenTest, ThreeAttemptsAreMade) {
    const FreshFolder folder;
    StubbornFile file;
    file.refusals = 2;
    EXPECT_EQ(file.Open(folder.At(L"a"), kAccessWrite, kDispositionCreateAlways, kShareNone), 0);
    EXPECT_EQ(file.calls, 3);
    EXPECT_EQ(file.Reason(), kReasonNone);
    EXPECT_TRUE(file.ErrorText().IsEmpty());

    file.calls = 0;
    file.refusals = 3;
    EXPECT_EQ(file.Open(folder.At(L"a"), kAccessWrite, kDispositionCreateAlways, kShareNone), -1);
    EXPECT_EQ(file.calls, 3);
    EXPECT_EQ(file.Reason(), kReasonSharing);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
}

TEST(FileOpenTest, ShareArgumentDecidesWhoElseMayOpen) {
    const FreshFolder folder;
    const String name = folder.Put(L"a", "x");
    const struct {
        FileShare share;
        bool othersRead;
        bool othersWrite;
    } kCases[] = {{kShareNone, false, false},
                  {kShareNoneToo, false, false},
                  {kShareRead, true, false},
                  {kShareReadWrite, true, true}};
    for (const auto& row : kCases) {
        const clsFile holder(name, kAccessRead, kDispositionOpenExisting, row.share);
        ASSERT_TRUE(holder.IsOpen());
        EXPECT_EQ(clsFile(name, kAccessRead, kDispositionOpenExisting, kShareReadWrite).IsOpen(),
                  row.othersRead);
        EXPECT_EQ(clsFile(name, kAccessWrite, kDispositionOpenExisting, kShareReadWrite).IsOpen(),
                  row.othersWrite);
    }
}

TEST(FileCloseTest, DeleteOnCloseRemovesTheFile) {
    const FreshFolder folder;
    clsFileRW file(folder.At(L"a"), kAccessReadWrite, kDispositionCreateAlways, kShareNone,
                   kFileModeDefault | kFileModeDeleteOnClose);
    EXPECT_TRUE(folder.Has(L"a"));
    file.Close();
    EXPECT_FALSE(folder.Has(L"a"));
    EXPECT_FALSE(file.IsOpen());
}

TEST(FileCloseTest, BorrowedHandleStaysOpen) {
    const FreshFolder folder;
    const clsAutoCloseFile handle(
        CreateFileW(folder.At(L"a").Text(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    {
        clsFile borrower(handle.Get(), false);
        EXPECT_EQ(WriteString(borrower, "ab"), 2);
    }
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(handle.Get(), "c", 1, &written, nullptr));
    EXPECT_EQ(GetFileSize(handle.Get(), nullptr), 3u);
}

TEST(FileCloseTest, StorageElementIsMadeReadAndDestroyed) {
    clsAutoRelease<ILockBytes*> bytes;
    clsAutoRelease<IStorage*> storage;
    ASSERT_EQ(CreateILockBytesOnHGlobal(nullptr, TRUE, bytes.Receive()), S_OK);
    ASSERT_EQ(StgCreateDocfileOnILockBytes(bytes.Get(), STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE,
                                           0, storage.Receive()),
              S_OK);
    clsFileRW file;
    EXPECT_EQ(file.OpenInStorage(storage.Get(), L"part", kAccessReadWrite, kDispositionOpenExisting), -1);
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(file.OpenInStorage(storage.Get(), L"part", kAccessReadWrite, kDispositionOpenAlways), 0);
    EXPECT_EQ(WriteString(file, "content"), 7);
    const uint32_t mode = kFileModeDefault | kFileModeDeleteOnClose;
    EXPECT_EQ(file.OpenInStorage(storage.Get(), L"part", kAccessReadWrite, kDispositionOpenExisting, mode),
              0);
    EXPECT_EQ(ReadAll(file), "content");
    file.Close();
    EXPECT_EQ(file.OpenInStorage(storage.Get(), L"part", kAccessRead, kDispositionOpenExisting), -1);
    EXPECT_EQ(file.OpenInStorage(nullptr, L"part", kAccessRead, kDispositionOpenExisting), -1);
}

TEST(FilePositionTest, MovesAndFailuresHaveTheirOwnResults) {
    const FreshFolder folder;
    FakeStream stream("0123456789");
    clsFile onDisk(folder.Put(L"a", "0123456789"), kAccessRead, kDispositionOpenExisting, kShareRead);
    clsFile onStream(&stream);
    for (clsFile* file : {&onDisk, &onStream}) {
        EXPECT_EQ(file->SetPosition(4), 4);
        EXPECT_EQ(file->MovePosition(3), 7);
        EXPECT_EQ(file->MovePosition(-100), 0); // refused
        EXPECT_EQ(file->GetPosition(), 7);
        EXPECT_EQ(file->SetPosition(12), 12);
        EXPECT_EQ(file->GetSize(), 10);
        char unit = 0;
        EXPECT_EQ(file->Read(&unit, 1), 0);
        file->Close();
        EXPECT_EQ(file->SetPosition(0), -1);
        EXPECT_EQ(file->MovePosition(0), -1);
        EXPECT_EQ(file->GetPosition(), -1);
        EXPECT_EQ(file->GetSize(), -1);
        EXPECT_EQ(file->Read(&unit, 1), 0);
        EXPECT_EQ(file->WriteText(L"x"), -1);
    }
    EXPECT_EQ(stream.references, 1u);
}

TEST(FileWriteTest, GoesToThePositionGiven) {
    const FreshFolder folder;
    clsFileRW file(folder.At(L"a"), kAccessReadWrite, kDispositionCreateAlways, kShareNone);
    EXPECT_EQ(WriteString(file, "abcdef"), 6);
    EXPECT_EQ(WriteString(file, "XY", 2), 2);
    EXPECT_EQ(WriteString(file, "Z"), 1);
    EXPECT_EQ(WriteString(file, "-", 0), 1);
    EXPECT_EQ(ReadAll(file), "-bXYZf");
    file.SetPosition(0);
    EXPECT_EQ(file.WriteText(L"A\x20AC"
                             L"B"),
              3);
    EXPECT_EQ(file.WriteText(L"CDE", 1), 1);
    EXPECT_EQ(ReadAll(file), std::string("A\0\xAC\x20"
                                         "B\0C\0",
                                         8));
}

TEST(FileWriteTest, ShortWritesAreReported) {
    const FreshFolder folder;
    const DebugListener listener;
    clsFile readOnly(folder.Put(L"a", "x"), kAccessRead, kDispositionOpenExisting, kShareRead);
    EXPECT_EQ(WriteString(readOnly, "abc"), 0);
    EXPECT_NE(listener.Last().find(L"a)::Write(): write failure... 0/3 ("), std::wstring::npos);

    FakeStream stream;
    stream.maxPiece = 2;
    clsFile onStream(&stream);
    EXPECT_EQ(WriteString(onStream, "abc"), 2);
    EXPECT_TRUE(listener.Heard(L"clsFile((Stream))::Write(): write failure... 2/3 ("));
    EXPECT_EQ(WriteString(onStream, "abc", -7), 0); // not at the current position instead
    EXPECT_EQ(stream.bytes, "ab");
}

TEST(FileReadTest, CountsOfAStreamAreNotBelievedBeyondWhatWasAsked) {
    FakeStream stream("abcdef");
    stream.boast = 1000;
    clsFile file(&stream);
    char buffer[4] = {};
    EXPECT_EQ(file.Read(buffer, 3), 3);
    EXPECT_EQ(WriteString(file, "xy"), 2);
    stream.transferResult = E_FAIL;
    EXPECT_EQ(file.Read(buffer, 3), 0);
}

TEST(FileBothTest, HandleIsServedFirstAndTheStreamCounts) {
    const FreshFolder folder;
    FakeStream stream("streamed");
    clsFileRW file(folder.Put(L"a", "disk"), kAccessReadWrite, kDispositionOpenExisting, kShareRead);
    EXPECT_EQ(file.OpenOnStream(&stream), 0);
    EXPECT_EQ(file.GetSize(), 4);
    char buffer[8] = {};
    EXPECT_EQ(file.Read(buffer, 6), 6);
    EXPECT_STREQ(buffer, "stream");
    EXPECT_EQ(file.GetPosition(), 4);
    EXPECT_EQ(WriteString(file, "X"), 1);
    EXPECT_EQ(folder.Get(L"a"), "diskX");
    EXPECT_EQ(stream.bytes, "streamXd");
    stream.transferResult = E_FAIL;
    file.SetPosition(0);
    EXPECT_EQ(file.Read(buffer, 3), 3);
    EXPECT_EQ(file.OpenOnStream(nullptr), -1);
    EXPECT_NE(file.Stream(), nullptr);
    file.Close();
    EXPECT_EQ(stream.references, 1u);
    EXPECT_EQ(file.OpenOnStream(&stream), 0);
    EXPECT_STREQ(file.DisplayName(), L"(Stream)");
}

TEST(FileSizeTest, EofCutsAndExtendKeepsThePosition) {
    const FreshFolder folder;
    FakeStream stream("0123456789");
    clsFileRW onDisk(folder.Put(L"a", "0123456789"), kAccessReadWrite, kDispositionOpenExisting, kShareRead);
    clsFileRW onStream(&stream);
    for (clsFile* file : {static_cast<clsFile*>(&onDisk), static_cast<clsFile*>(&onStream)}) {
        file->SetPosition(4);
        file->SetEOF();
        EXPECT_EQ(ReadAll(*file), "0123");
        file->SetPosition(1);
        file->Extend(6);
        EXPECT_EQ(file->GetPosition(), 1);
        EXPECT_EQ(ReadAll(*file), std::string("0123\0\0\0", 7));
        file->Extend(INT64_MAX);
        EXPECT_EQ(file->GetSize(), 7);
    }
}

TEST(FileSizeTest, StreamThatMovesOnSetSizeIsPutRight) {
    const DebugListener listener;
    FakeStream stream("0123456789");
    stream.movesOnSetSize = true;
    clsFileRW file(&stream);
    file.SetPosition(3);
    file.Extend(20);
    EXPECT_EQ(stream.position, 3u);
    EXPECT_EQ(stream.bytes.size(), 23u);
    EXPECT_TRUE(listener.Heard(L"WRN: need to correct Outlook stream implementation error"));
    stream.setSizeResult = STG_E_MEDIUMFULL;
    file.Extend(50);
    EXPECT_TRUE(listener.Heard(L"ERR: Stream->SetSize(50+3) failed!"));
    file.SetEOF();
    EXPECT_TRUE(listener.Heard(L"ERR: Stream->SetEOF(3) failed!"));
}

class FileCopyTest : public testing::Test {
protected:
    const FreshFolder folder_;
    clsFileRW target_{folder_.Put(L"target", "old content"), kAccessReadWrite, kDispositionOpenExisting,
                      kShareRead};
};

TEST_F(FileCopyTest, ReplacesTheRestOfTheTarget) {
    FakeStream stream("new");
    clsFile source(&stream);
    target_.SetPosition(2);
    EXPECT_TRUE(target_.CopyFrom(source));
    EXPECT_EQ(folder_.Get(L"target"), "olnew");
}

TEST_F(FileCopyTest, NothingToCopyCutsTheTarget) {
    FakeStream empty;
    clsFile sources[] = {clsFile(&empty), clsFile()};
    for (clsFile& source : sources) {
        target_.SetPosition(target_.GetSize() - 3);
        EXPECT_TRUE(target_.CopyFrom(source));
    }
    EXPECT_EQ(folder_.Get(L"target"), "old c");
}

TEST_F(FileCopyTest, LyingSourceLeavesNoRoomBehind) {
    FakeStream stream("short");
    clsFile source(&stream);
    for (const uint64_t claim : {uint64_t{6}, uint64_t{1} << 33}) {
        stream.claimedSize = claim;
        source.SetPosition(0);
        target_.SetPosition(0);
        EXPECT_FALSE(target_.CopyFrom(source));
        EXPECT_EQ(folder_.Get(L"target"), "short");
    }
    stream.claimedSize = UINT64_MAX;
    EXPECT_FALSE(target_.CopyFrom(source));
}

TEST_F(FileCopyTest, ShortWriteFails) {
    FakeStream source("0123456789");
    FakeStream target;
    target.maxPiece = 4;
    clsFile from(&source);
    clsFileRW to(&target);
    EXPECT_FALSE(to.CopyFrom(from));
    EXPECT_EQ(target.bytes, "0123");
}

class FileLockTest : public testing::Test {
protected:
    const FreshFolder folder_;
    const String name_ = folder_.Put(L"a", "0123456789");
    clsFileRW first_{name_, kAccessReadWrite, kDispositionOpenExisting, kShareReadWrite};
    clsFileRW second_{name_, kAccessReadWrite, kDispositionOpenExisting, kShareReadWrite};

    bool IsLockedForOthers(DWORD offset) {
        if (!LockFile(second_.Handle(), offset, 0, 1, 0)) return true;
        UnlockFile(second_.Handle(), offset, 0, 1, 0);
        return false;
    }
};

TEST_F(FileLockTest, RangesAreLockedAndReleasedOneByOne) {
    clsFileLock* const low = first_.LockRange(0, 2);
    clsFileLock* const middle = first_.LockRange(4, 1);
    clsFileLock* const high = first_.LockRange(8, 2);
    ASSERT_TRUE(low && middle && high);
    EXPECT_TRUE(IsLockedForOthers(1) && IsLockedForOthers(4) && IsLockedForOthers(9));
    EXPECT_FALSE(IsLockedForOthers(2));
    first_.UnlockRange(middle);
    EXPECT_FALSE(IsLockedForOthers(4));
    EXPECT_TRUE(IsLockedForOthers(1) && IsLockedForOthers(9));
    first_.UnlockRange(high);
    first_.UnlockRange(low);
    EXPECT_FALSE(IsLockedForOthers(1) || IsLockedForOthers(9));
    first_.UnlockRange(nullptr);
}

TEST_F(FileLockTest, SecondUnlockIsReportedAndHarmless) {
    const DebugListener listener;
    clsFileLock* const lock = first_.LockRange(0, 1);
    first_.UnlockRange(lock);
    EXPECT_FALSE(listener.Heard(L"tried to unlock"));
    first_.UnlockRange(lock);
    EXPECT_TRUE(
        listener.Heard(L"tried to unlock a lock that has already been removed (or has never existed)"));
}

TEST_F(FileLockTest, WaitsForTheOtherOwner) {
    clsFileLock* const held = second_.LockRange(0, 1);
    std::thread releaser([&] {
        Sleep(250);
        second_.UnlockRange(held);
    });
    clsFileLock* const lock = first_.LockRange(0, 1);
    releaser.join();
    EXPECT_NE(lock, nullptr);
}

TEST_F(FileLockTest, EndOfTheFileReleasesWhatIsLeft) {
    const DebugListener listener;
    {
        clsFile borrower(first_.Handle(), false);
        EXPECT_NE(borrower.LockRange(0, 1), nullptr);
        EXPECT_NE(borrower.LockRange(3, 1), nullptr);
    }
    EXPECT_TRUE(listener.Heard(
        L"portions of the file '(Stream)' are still locked. they will be unlocked automatically..."));
    EXPECT_FALSE(IsLockedForOthers(0) || IsLockedForOthers(3));
}

TEST(FileStreamLockTest, StreamWithoutLocksCountsAsLocked) {
    for (const HRESULT answer : {STG_E_INVALIDFUNCTION, E_NOTIMPL, S_OK}) {
        FakeStream stream;
        stream.lockResult = answer;
        clsFile file(&stream);
        clsFileLock* const lock = file.LockRange(0, 1);
        EXPECT_NE(lock, nullptr);
        file.UnlockRange(lock);
        EXPECT_EQ(stream.calls, (std::vector<std::string>{"LockRegion 2", "UnlockRegion"}));
    }
    EXPECT_EQ(clsFile().LockRange(0, 1), nullptr);
}

TEST(FileStreamLockTest, RefusedLocksAreTriedAgain) {
    FakeStream stream;
    stream.lockRefusals = 5;
    clsFile file(&stream);
    EXPECT_NE(file.LockRange(0, 1), nullptr);
    EXPECT_EQ(stream.calls.size(), 6u);
}

TEST(GlobalLockTest, FreesAndReportsUnderItsOneName) {
    const DebugListener listener;
    {
        const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, 16);
        clsGlobalLock lock(memory);
        ASSERT_NE(lock.Pointer(), nullptr);
        EXPECT_EQ(GlobalFlags(memory) & GMEM_LOCKCOUNT, 1u);
        GlobalLock(memory);
        lock.Unlock();
        EXPECT_TRUE(listener.Heard(L"clsGlobalLock::Lock(): Failed to unlock handle, or it's still locked"));
        GlobalUnlock(memory);
        EXPECT_EQ(lock.Detach(), memory);
        EXPECT_EQ(GlobalSize(memory), 16u);
        const clsGlobalLock owner(memory, true);
    }
    const size_t lines = listener.Lines().size();
    const clsGlobalLock nothing(nullptr, true);
    EXPECT_EQ(nothing.Pointer(), nullptr);
    EXPECT_EQ(listener.Lines().size(), lines);
}

} // namespace
} // namespace vxut
