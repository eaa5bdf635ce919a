// The stream interface of clsFile.
#include "files/file.h"

#include "tests/support/fake_stream.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vxut {
namespace {

using test::FakeStream;
using test::FreshFolder;

TEST(FileFacesTest, LastReleaseDestroysOnlyWhatLivesByReferences) {
    FakeStream stream;
    auto counted = MakeCounted<clsFileRW>(&stream);
    void* face = nullptr;
    EXPECT_EQ(counted->QueryInterface(IID_IStorage, &face), static_cast<HRESULT>(0x80004002));
    EXPECT_EQ(counted->QueryInterface(IID_IStream, &face), S_OK);
    counted.Reset();
    EXPECT_EQ(stream.references, 2u);
    static_cast<IStream*>(face)->Release();
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

TEST_F(FileStreamTest, ReadsAndWritesReturnShortCountsAndOnlyWritableTypesWrite) {
    char buffer[16] = {};
    ULONG count = 0;
    EXPECT_EQ(face_->Read(buffer, 4, &count), S_OK);
    EXPECT_EQ(std::string(buffer, count), "0123");
    EXPECT_EQ(face_->Read(buffer, 16, &count), S_FALSE);
    EXPECT_EQ(count, 6u);
    EXPECT_EQ(face_->Write("abc", 3, nullptr), S_OK);
    EXPECT_EQ(face_->Read(nullptr, 1, nullptr), STG_E_INVALIDPOINTER);
    clsFileRO readOnly(file_.Name(), kAccessReadWrite, kDispositionOpenExisting, kShareReadWrite);
    EXPECT_EQ(readOnly.AsStream()->Write("x", 1, nullptr), static_cast<HRESULT>(0x80070005));
    EXPECT_EQ(readOnly.AsStream()->SetSize({.QuadPart = 1}), static_cast<HRESULT>(0x80070005));
    EXPECT_EQ(folder_.Get(L"a"), "0123456789abc");
}

TEST_F(FileStreamTest, SeekKnowsThreeOriginsAndSetSizeKeepsAPositionBelowTheNewEnd) {
    const auto seek = [&](int64_t offset, DWORD origin) {
        ULARGE_INTEGER reached{};
        const HRESULT result = face_->Seek({.QuadPart = offset}, origin, &reached);
        return FAILED(result) ? result : static_cast<int64_t>(reached.QuadPart);
    };
    EXPECT_EQ(seek(-1, STREAM_SEEK_END), 9);
    EXPECT_EQ(seek(-2, STREAM_SEEK_CUR), 7);
    EXPECT_EQ(seek(4, STREAM_SEEK_SET), 4);
    EXPECT_EQ(seek(0, 3), static_cast<HRESULT>(0x80070057));
    EXPECT_LT(seek(-1, STREAM_SEEK_SET), 0);
    EXPECT_EQ(face_->SetSize({.QuadPart = 6}), S_OK);
    EXPECT_EQ(file_.GetPosition(), 4);
    EXPECT_EQ(face_->SetSize({.QuadPart = 4}), S_OK);
    EXPECT_EQ(file_.GetPosition(), 0);
    EXPECT_TRUE(FAILED(face_->SetSize({.QuadPart = UINT64_MAX})));
    EXPECT_EQ(folder_.Get(L"a"), "0123");
}

TEST_F(FileStreamTest, StatReturnsSizeAndName) {
    STATSTG stat{};
    ASSERT_EQ(face_->Stat(&stat, STATFLAG_DEFAULT), S_OK);
    EXPECT_STREQ(stat.pwcsName, file_.Name().Text());
    CoTaskMemFree(stat.pwcsName);
    EXPECT_EQ(stat.cbSize.QuadPart, 10u);
    EXPECT_EQ(face_->Stat(nullptr, STATFLAG_NONAME), E_INVALIDARG);
    EXPECT_EQ(clsFile(file_.Handle(), false).AsStream()->Stat(&stat, STATFLAG_NONAME), 2);
}

// The lock method for unlocking too: callers rely on it.
TEST_F(FileStreamTest, RegionsOfAStreamAreOnlyEverLockedAndThoseOfAHandleUnlocked) {
    FakeStream stream;
    clsFileRW onStream(&stream);
    onStream.AsStream()->UnlockRegion({.QuadPart = 0}, {.QuadPart = 1}, LOCK_WRITE);
    EXPECT_EQ(stream.calls, std::vector<std::string>{"LockRegion 1"});
    EXPECT_EQ(face_->LockRegion({.QuadPart = 2}, {.QuadPart = 2}, LOCK_EXCLUSIVE), S_OK);
    EXPECT_EQ(face_->UnlockRegion({.QuadPart = 2}, {.QuadPart = 2}, LOCK_EXCLUSIVE), S_OK);
    EXPECT_EQ(face_->UnlockRegion({.QuadPart = 2}, {.QuadPart = 2}, LOCK_EXCLUSIVE), E_NOTIMPL);
}

} // namespace
} // namespace vxut
