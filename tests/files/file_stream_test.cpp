// The stream face of clsFile.
#include "files/file.h"

#include "files/file_trace.h"
#include "tests/support/debug_listener.h"
#include "tests/support/fake_stream.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vxut {
namespace {

using test::FakeStream;
using test::FreshFolder;

ULARGE_INTEGER Unsigned(uint64_t value) {
    ULARGE_INTEGER result;
    result.QuadPart = value;
    return result;
}

LARGE_INTEGER Signed(int64_t value) {
    LARGE_INTEGER result;
    result.QuadPart = value;
    return result;
}

TEST(FileFacesTest, EachInterfaceGivesItsFace) {
    clsFile file;
    void* object = nullptr;
    EXPECT_EQ(file.QueryInterface(IID_IUnknown, &object), S_OK);
    EXPECT_EQ(object, static_cast<void*>(static_cast<clsIUnknownImpl*>(&file)));
    EXPECT_EQ(file.QueryInterface(IID_IStream, &object), S_OK);
    EXPECT_EQ(object, static_cast<void*>(file.AsStream()));
    EXPECT_EQ(file.QueryInterface(IID_IStorage, &object), static_cast<HRESULT>(0x80004002));
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(file.Release(), 2u);
}

TEST(FileFacesTest, LastReleaseDestroysOnlyWhatLivesByReferences) {
    FakeStream stream;
    auto counted = MakeCounted<clsFileRW>(&stream);
    IStream* const face = counted->AsStream();
    face->AddRef();
    counted.Reset();
    EXPECT_EQ(stream.references, 2u);
    face->Release();
    EXPECT_EQ(stream.references, 1u);

    clsFileRW onStack(&stream);
    onStack.AsStream()->Release(); // one too many
    EXPECT_TRUE(onStack.IsOpen());
}

class FileStreamTest : public testing::Test {
protected:
    const FreshFolder folder_;
    clsFileRW file_{folder_.Put(L"a", "0123456789"), kAccessReadWrite, kDispositionOpenExisting,
                    kShareReadWrite};
    IStream* const face_ = file_.AsStream();
};

TEST_F(FileStreamTest, ReadsAndWritesTellShortCounts) {
    char buffer[16] = {};
    ULONG count = 0;
    EXPECT_EQ(face_->Read(buffer, 4, &count), S_OK);
    EXPECT_EQ(std::string(buffer, count), "0123");
    EXPECT_EQ(face_->Read(buffer, 16, &count), S_FALSE);
    EXPECT_EQ(count, 6u);
    EXPECT_EQ(face_->Write("abc", 3, nullptr), S_OK);
    EXPECT_EQ(folder_.Get(L"a"), "0123456789abc");
    EXPECT_EQ(face_->Read(nullptr, 1, nullptr), STG_E_INVALIDPOINTER);
}

TEST_F(FileStreamTest, OnlyWritableTypesWrite) {
    clsFileRO readOnly(file_.Name(), kAccessReadWrite, kDispositionOpenExisting, kShareReadWrite);
    EXPECT_EQ(readOnly.AsStream()->Write("x", 1, nullptr), static_cast<HRESULT>(0x80070005));
    EXPECT_EQ(readOnly.AsStream()->SetSize(Unsigned(1)), static_cast<HRESULT>(0x80070005));
    EXPECT_EQ(folder_.Get(L"a"), "0123456789");
    FakeStream stream; // which decides for itself
    EXPECT_EQ(clsFileRO(&stream).AsStream()->Write("x", 1, nullptr), S_OK);
}

TEST_F(FileStreamTest, SeekKnowsThreeOriginsAndSetSizeKeepsAPositionBelowTheNewEnd) {
    ULARGE_INTEGER reached{};
    EXPECT_EQ(face_->Seek(Signed(-1), STREAM_SEEK_END, nullptr), S_OK);
    EXPECT_EQ(face_->Seek(Signed(-2), STREAM_SEEK_CUR, &reached), S_OK);
    EXPECT_EQ(reached.QuadPart, 7u);
    EXPECT_EQ(face_->Seek(Signed(4), STREAM_SEEK_SET, &reached), S_OK);
    EXPECT_EQ(reached.QuadPart, 4u);
    EXPECT_EQ(face_->Seek(Signed(0), 3, &reached), static_cast<HRESULT>(0x80070057));
    EXPECT_TRUE(FAILED(face_->Seek(Signed(-1), STREAM_SEEK_SET, &reached)));
    EXPECT_EQ(clsFile().AsStream()->Seek(Signed(0), STREAM_SEEK_SET, nullptr),
              static_cast<HRESULT>(0x80070006));

    EXPECT_EQ(face_->SetSize(Unsigned(6)), S_OK);
    EXPECT_EQ(file_.GetPosition(), 4);
    EXPECT_EQ(face_->SetSize(Unsigned(4)), S_OK);
    EXPECT_EQ(file_.GetPosition(), 0);
    EXPECT_TRUE(FAILED(face_->SetSize(Unsigned(UINT64_MAX))));
    EXPECT_EQ(folder_.Get(L"a"), "0123");
}

TEST_F(FileStreamTest, RegionsAreLockedAgainstOthers) {
    clsFileRW other(file_.Name(), kAccessReadWrite, kDispositionOpenExisting, kShareReadWrite);
    EXPECT_EQ(face_->LockRegion(Unsigned(2), Unsigned(2), LOCK_EXCLUSIVE), S_OK);
    EXPECT_EQ(other.AsStream()->LockRegion(Unsigned(3), Unsigned(1), LOCK_EXCLUSIVE), E_NOTIMPL);
    EXPECT_EQ(face_->UnlockRegion(Unsigned(2), Unsigned(2), LOCK_EXCLUSIVE), S_OK);
    EXPECT_EQ(face_->UnlockRegion(Unsigned(2), Unsigned(2), LOCK_EXCLUSIVE), E_NOTIMPL);
    EXPECT_EQ(other.AsStream()->LockRegion(Unsigned(3), Unsigned(1), LOCK_EXCLUSIVE), S_OK);
}

TEST_F(FileStreamTest, StatTellsSizeTimesAndName) {
    STATSTG stat{};
    ASSERT_EQ(face_->Stat(&stat, STATFLAG_DEFAULT), S_OK);
    EXPECT_STREQ(stat.pwcsName, file_.Name().Text());
    CoTaskMemFree(stat.pwcsName);
    EXPECT_EQ(stat.cbSize.QuadPart, 10u);
    EXPECT_EQ(stat.type, static_cast<DWORD>(STGTY_STREAM));
    FILETIME written{};
    GetFileTime(file_.Handle(), nullptr, nullptr, &written);
    EXPECT_EQ(CompareFileTime(&stat.mtime, &written), 0);
    EXPECT_EQ(face_->Stat(nullptr, STATFLAG_NONAME), E_INVALIDARG);
    EXPECT_EQ(clsFile(file_.Handle(), false).AsStream()->Stat(&stat, STATFLAG_NONAME), 2);
}

TEST_F(FileStreamTest, WhatAHandleDoesNotHaveGoesToTheStreamUnderneath) {
    const struct {
        HRESULT (*call)(IStream* face);
        const char* expected;
    } kCases[] = {
        {[](IStream* face) { return face->CopyTo(nullptr, Unsigned(0), nullptr, nullptr); }, "CopyTo"},
        {[](IStream* face) { return face->Commit(0); }, "Commit"},
        {[](IStream* face) { return face->Revert(); }, "Revert"},
        {[](IStream* face) { return face->Clone(nullptr); }, "Clone"},
        {[](IStream* face) { return face->LockRegion(Unsigned(0), Unsigned(1), LOCK_WRITE); },
         "LockRegion 1"},
        // Its lock method again: callers rely on it.
        {[](IStream* face) { return face->UnlockRegion(Unsigned(0), Unsigned(1), LOCK_WRITE); },
         "LockRegion 1"},
    };
    for (const auto& row : kCases) {
        FakeStream stream;
        stream.lockResult = S_OK;
        EXPECT_EQ(row.call(clsFileRW(&stream).AsStream()), S_OK);
        EXPECT_EQ(stream.calls, std::vector<std::string>{row.expected});
        EXPECT_EQ(row.call(clsFileRW().AsStream()), E_NOTIMPL);
    }
}

TEST_F(FileStreamTest, TraceWritesCallAndResultOnlyWhenSwitchedOn) {
    const DebugListener listener;
    char buffer[16];
    face_->Seek(Signed(1), STREAM_SEEK_SET, nullptr);
    EXPECT_TRUE(listener.Lines().empty());
    streamTraceOn = true;
    face_->Read(buffer, 16, nullptr);
    streamTraceOn = false;
    EXPECT_TRUE(listener.Heard(L"clsFile::Stream::Read(16)"));
    EXPECT_TRUE(listener.Heard(L"<clsFile::Stream::Read(16) (S_FALSE)"));
}

} // namespace
} // namespace vxut
