#include "files/file.h"

#include "files/global_lock.h"
#include "tests/support/debug_listener.h"
#include "tests/support/fake_stream.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

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

TEST(FileOpenTest, FailuresHaveAReasonATextAndTheSystemsError) {
    const FreshFolder folder;
    CreateDirectoryW(folder.At(L"folder").Text(), nullptr);
    const struct {
        const wchar_t* name;
        FileReason reason;
        DWORD error;
    } kCases[] = {{L"none\\x", kReasonPathNotFound, ERROR_PATH_NOT_FOUND},
                  {L"absent", kReasonOther, ERROR_FILE_NOT_FOUND},
                  {L"folder", kReasonAccessDenied, ERROR_ACCESS_DENIED},
                  {L"CON", kReasonNameReserved, ERROR_INVALID_NAME},
                  {L"a?b", kReasonNameReserved, ERROR_INVALID_NAME},
                  {L"", kReasonNameReserved, ERROR_INVALID_NAME}};
    for (const auto& row : kCases) {
        clsFile file;
        EXPECT_EQ(file.Open(folder.At(row.name), kAccessReadWrite, kDispositionOpenExisting, kShareRead), -1);
        EXPECT_EQ(GetLastError(), row.error) << row.name;
        EXPECT_EQ(file.Reason(), row.reason) << row.name;
        const bool isReserved = row.reason == kReasonNameReserved;
        EXPECT_STREQ(file.ErrorText().Text(), isReserved ? L"file name is reserved by Windows"
                                                         : String::FromError(row.error, 1024).Text());
        EXPECT_FALSE(file.IsOpen());
    }
}

// Fails to open a number of times.
class StubbornFile : public clsFileRW {
public:
    int refusals = 0;
    int calls = 0;

protected:
    clsAutoCloseFile OpenHandle(const String& name, DWORD access, DWORD share, DWORD disposition,
                                DWORD attributes) override {
        if (++calls > refusals) return clsFileRW::OpenHandle(name, access, share, disposition, attributes);
        SetLastError(ERROR_SHARING_VIOLATION);
        return {};
    }
};

TEST(FileOpenTest, ThreeAttemptsAreMade) {
    const FreshFolder folder;
    for (const int refusals : {3, 2}) {
        const bool opens = refusals < 3;
        StubbornFile file;
        file.refusals = refusals;
        EXPECT_EQ(file.Open(folder.At(L"a"), kAccessWrite, kDispositionCreateAlways, kShareNone), opens - 1);
        EXPECT_EQ(file.calls, 3);
        EXPECT_EQ(file.Reason(), opens ? kReasonNone : kReasonSharing);
        EXPECT_EQ(file.ErrorText().IsEmpty(), opens);
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

TEST(FileCloseTest, DeletesOrLeavesOpenAsItWasTold) {
    const FreshFolder folder;
    clsFileRW file(folder.At(L"a"), kAccessReadWrite, kDispositionCreateAlways, kShareNone,
                   kFileModeDefault | kFileModeDeleteOnClose);
    { // a borrowed handle stays open
        clsFile borrower(file.Handle(), false);
        EXPECT_EQ(WriteString(borrower, "ab"), 2);
    }
    EXPECT_EQ(WriteString(file, "c"), 1);
    EXPECT_TRUE(folder.Has(L"a"));
    file.Close();
    EXPECT_FALSE(folder.Has(L"a"));
}

TEST(FileCloseTest, StorageElementIsMadeReadAndDestroyed) {
    clsAutoRelease<ILockBytes*> bytes;
    clsAutoRelease<IStorage*> storage;
    ASSERT_EQ(CreateILockBytesOnHGlobal(nullptr, TRUE, bytes.Receive()), S_OK);
    constexpr DWORD kMode = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
    ASSERT_EQ(StgCreateDocfileOnILockBytes(bytes.Get(), kMode, 0, storage.Receive()), S_OK);
    clsFileRW file;
    const auto open = [&](FileDisposition disposition, uint32_t mode = kFileModeDefault) {
        return file.OpenInStorage(storage.Get(), L"part", kAccessReadWrite, disposition, mode);
    };
    EXPECT_EQ(open(kDispositionOpenExisting), -1);
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(open(kDispositionOpenAlways), 0);
    EXPECT_EQ(WriteString(file, "content"), 7);
    EXPECT_EQ(open(kDispositionOpenExisting, kFileModeDefault | kFileModeDeleteOnClose), 0);
    EXPECT_EQ(ReadAll(file), "content");
    file.Close();
    EXPECT_EQ(open(kDispositionOpenExisting), -1);
    EXPECT_EQ(file.OpenInStorage(nullptr, L"part", kAccessRead, kDispositionOpenExisting), -1);
}

// What must hold on a handle and on a stream alike.
class FileOnBothTest : public testing::Test {
protected:
    const FreshFolder folder_;
    FakeStream stream_{"0123456789"};
    clsFileRW onDisk_{folder_.Put(L"a", "0123456789"), kAccessReadWrite, kDispositionOpenExisting,
                      kShareRead};
    clsFileRW onStream_{&stream_};
    clsFile* const files_[2] = {&onDisk_, &onStream_};
};

TEST_F(FileOnBothTest, MovesWritesAndCutsWhereItIsTold) {
    for (clsFile* file : files_) {
        EXPECT_EQ(file->SetPosition(4), 4);
        EXPECT_EQ(file->MovePosition(3), 7);
        EXPECT_EQ(file->MovePosition(-100), 0); // refused
        EXPECT_EQ(file->GetPosition(), 7);
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
    }
}

TEST_F(FileOnBothTest, ClosedFilesHaveResultsOfTheirOwn) {
    for (clsFile* file : files_) {
        char unit = 0;
        EXPECT_EQ(file->SetPosition(12), 12);
        EXPECT_EQ(file->Read(&unit, 1), 0);
        file->Close();
        for (const int64_t result : {file->SetPosition(0), file->MovePosition(0), file->GetPosition(),
                                     file->GetSize(), file->WriteText(L"x")})
            EXPECT_EQ(result, -1);
        EXPECT_EQ(file->Read(&unit, 1), 0);
    }
    EXPECT_EQ(stream_.references, 1u);
}

TEST_F(FileOnBothTest, HandleIsServedFirstAndTheStreamCounts) {
    EXPECT_EQ(onDisk_.OpenOnStream(&stream_), 0);
    stream_.bytes = "streamed";
    char buffer[8] = {};
    EXPECT_EQ(onDisk_.GetSize(), 10);
    EXPECT_EQ(onDisk_.Read(buffer, 6), 6);
    EXPECT_STREQ(buffer, "stream");
    EXPECT_EQ(WriteString(onDisk_, "X"), 1);
    EXPECT_EQ(folder_.Get(L"a"), "012345X789");
    EXPECT_EQ(stream_.bytes, "streamXd");
    stream_.transferResult = E_FAIL;
    EXPECT_EQ(onDisk_.Read(buffer, 3), 3);
    EXPECT_EQ(onDisk_.OpenOnStream(nullptr), -1);
    EXPECT_NE(onDisk_.Stream(), nullptr);
}

TEST(FileStreamCountTest, ShortWritesAreReportedAndBoastsNotBelieved) {
    const FreshFolder folder;
    const DebugListener listener;
    clsFile readOnly(folder.Put(L"a", "x"), kAccessRead, kDispositionOpenExisting, kShareRead);
    EXPECT_EQ(WriteString(readOnly, "abc"), 0);
    EXPECT_NE(listener.Last().find(L"a)::Write(): write failure... 0/3 ("), std::wstring::npos);

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

TEST(FileSizeTest, StreamThatMovesOnSetSizeIsPutRight) {
    const DebugListener listener;
    FakeStream stream("0123456789");
    stream.movesOnSetSize = true;
    clsFileRW file(&stream);
    file.SetPosition(3);
    file.Extend(20);
    EXPECT_EQ(stream.position, 3u);
    EXPECT_EQ(stream.bytes.size(), 23u);
    stream.setSizeResult = STG_E_MEDIUMFULL;
    file.Extend(50);
    file.SetEOF();
    for (const wchar_t* line : {L"WRN: need to correct Outlook stream implementation error",
                                L"ERR: Stream->SetSize(50+3) failed!", L"ERR: Stream->SetEOF(3) failed!"})
        EXPECT_TRUE(listener.Heard(line)) << line;
}

TEST(FileCopyTest, TheTargetEndsBehindWhatCouldBeCopied) {
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
    EXPECT_EQ(copy("short", 6), "olshort (failed)");
    EXPECT_EQ(copy("short", 1ull << 33), "olshort (failed)");
    EXPECT_EQ(copy("short", UINT64_MAX), "old content (failed)");
    FakeStream whole("0123456789");
    FakeStream refusing;
    refusing.maxPiece = 4;
    clsFile source(&whole);
    EXPECT_FALSE(clsFileRW(&refusing).CopyFrom(source));
    EXPECT_EQ(refusing.bytes, "0123");
}

class FileLockTest : public testing::Test {
protected:
    const FreshFolder folder_;
    const String name_ = folder_.Put(L"a", "0123456789");
    clsFileRW first_{name_, kAccessReadWrite, kDispositionOpenExisting, kShareReadWrite};
    clsFileRW second_{name_, kAccessReadWrite, kDispositionOpenExisting, kShareReadWrite};
    const DebugListener listener_;

    // A digit for each locked offset.
    std::string LockedForOthers() {
        std::string locked;
        for (DWORD offset = 0; offset < 10; ++offset) {
            if (!LockFile(second_.Handle(), offset, 0, 1, 0)) locked += std::to_string(offset);
            UnlockFile(second_.Handle(), offset, 0, 1, 0);
        }
        return locked;
    }
};

TEST_F(FileLockTest, RangesAreLockedAndReleasedOneByOne) {
    clsFileLock* const low = first_.LockRange(0, 2);
    clsFileLock* const middle = first_.LockRange(4, 1);
    clsFileLock* const high = first_.LockRange(8, 2);
    EXPECT_EQ(LockedForOthers(), "01489");
    first_.UnlockRange(middle);
    EXPECT_EQ(LockedForOthers(), "0189");
    first_.UnlockRange(high);
    first_.UnlockRange(low);
    first_.UnlockRange(nullptr);
    EXPECT_EQ(LockedForOthers(), "");
    EXPECT_TRUE(listener_.Lines().empty());
    first_.UnlockRange(low);
    EXPECT_TRUE(
        listener_.Heard(L"tried to unlock a lock that has already been removed (or has never existed)"));
}

TEST_F(FileLockTest, WaitsForTheOtherOwnerWhichTheEndOfAFileFrees) {
    std::thread locker;
    {
        clsFile borrower(second_.Handle(), false);
        borrower.LockRange(0, 1);
        borrower.LockRange(3, 1);
        locker = std::thread([&] { EXPECT_NE(first_.LockRange(0, 4), nullptr); });
        Sleep(250);
    }
    locker.join();
    EXPECT_TRUE(listener_.Heard(
        L"portions of the file '(Stream)' are still locked. they will be unlocked automatically..."));
}

TEST(FileStreamLockTest, RefusedLocksAreTriedAgainAndAStreamWithoutLocksCountsAsLocked) {
    for (const HRESULT answer : {STG_E_INVALIDFUNCTION, E_NOTIMPL, S_OK}) {
        FakeStream stream;
        stream.lockResult = answer;
        stream.lockRefusals = 2;
        clsFile file(&stream);
        clsFileLock* const lock = file.LockRange(0, 1);
        EXPECT_NE(lock, nullptr);
        file.UnlockRange(lock);
        const std::vector<std::string> wanted = {"LockRegion 2", "LockRegion 2", "LockRegion 2",
                                                 "UnlockRegion"};
        EXPECT_EQ(stream.calls, wanted);
    }
    EXPECT_EQ(clsFile().LockRange(0, 1), nullptr);
}

TEST(GlobalLockTest, ReportsUnderItsOneNameAndGivesUpWhatItDetaches) {
    const DebugListener listener;
    EXPECT_EQ(clsGlobalLock(nullptr, true).Pointer(), nullptr);
    EXPECT_TRUE(listener.Lines().empty());
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, 16);
    clsGlobalLock lock(memory, true);
    GlobalLock(memory);
    EXPECT_EQ(lock.Detach(), memory);
    EXPECT_TRUE(listener.Heard(L"clsGlobalLock::Lock(): Failed to unlock handle, or it's still locked"));
    GlobalUnlock(memory);
    EXPECT_EQ(GlobalSize(memory), 16u);
    GlobalFree(memory);
}

} // namespace
} // namespace vxut
