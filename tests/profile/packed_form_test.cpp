// The packed form: what is written, and what images of any origin do to a load.
#include "profile/forms/packed_form.h"

#include "encoding/deflate.h"
#include "encoding/pack_file.h"
#include "files/temp_file.h"
#include "profile/job.h"
#include "profile/save.h"
#include "tests/support/failing_calls.h"
#include "tests/support/fake_stream.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <string>

namespace vxut {
namespace {

using test::FailingCalls;
using test::FakeStream;
using test::FreshFolder;

// A packed image of bytes, as any other program could make it.
std::string Packed(const std::string& bytes) {
    FakeStream from(bytes), to("ZRzQ");
    clsFile source(&from), target(&to);
    target.SetPosition(4);
    EXPECT_EQ(UtilPackFile(target, source, kDeflateFast, nullptr, kToEnd), Z_OK);
    return to.bytes;
}

struct Loaded {
    int32_t code;
    DWORD error;
    int64_t items;
    std::wstring first; // its value
};

Loaded Load(const std::string& bytes) {
    const FreshFolder folder;
    ProfJob job;
    job.OpenShared(folder.Put(L"a.prf", bytes).Text());
    const bool isEmpty = job.Root().isEmpty();
    return {job.LastError(), job.SystemError(), static_cast<int64_t>(job.Root().entries()),
            std::wstring(isEmpty ? L"" : (*job.Root().begin())->Value())};
}

// Files of other tests that run now do not stay for long.
bool LeavesNoTempFile() {
    const String pattern = TempFolder(kSharedTempFolder) + L"*PRF*.prf";
    for (int attempt = 0; attempt < 200; ++attempt) {
        WIN32_FIND_DATAW data;
        if (!clsAutoCloseFind(FindFirstFileW(pattern.Text(), &data))) return true;
        Sleep(50);
    }
    return false;
}

constexpr char kProfile[] = "[/]\n{\na=1\nb=2\n}\n";

TEST(PackedFormTest, ImagesOfAllFormsAndImagesInImagesLoad) {
    const std::string sections = "[one]\nx=1\n[two]\n";
    EXPECT_EQ(Load(Packed(kProfile)).items, 2);
    EXPECT_EQ(Load(Packed(sections)).first, L"1");
    std::string image = kProfile;
    for (int nesting = 1; nesting <= 8; ++nesting) {
        image = Packed(image);
        const Loaded loaded = Load(image);
        EXPECT_EQ(loaded.code, PROF_OK) << nesting;
        EXPECT_EQ(loaded.items, 2) << nesting;
    }
    const Loaded tooDeep = Load(Packed(image));
    EXPECT_EQ(tooDeep.code, PROF_ERR_FORMAT);
    EXPECT_EQ(tooDeep.error, static_cast<DWORD>(ERROR_FILE_TOO_LARGE));
    EXPECT_TRUE(LeavesNoTempFile());
}

TEST(PackedFormTest, OneImageMayExpandAsFarAsItCanAndNestedOnesNoFarther) {
    std::string profile = kProfile;
    profile.insert(profile.find("b=2"), "c=" + std::string(20'000'000, 'x') + "\n");
    const std::string image = Packed(profile);
    ASSERT_LT(image.size(), size_t{100'000});
    EXPECT_EQ(Load(image).items, 3);

    const std::string bomb = Packed(image);
    ASSERT_LT(bomb.size(), size_t{2'000});
    const Loaded loaded = Load(bomb);
    EXPECT_EQ(loaded.code, PROF_ERR_FORMAT);
    EXPECT_EQ(loaded.error, static_cast<DWORD>(ERROR_FILE_TOO_LARGE));
    EXPECT_EQ(loaded.items, 0);
    EXPECT_TRUE(LeavesNoTempFile());
}

TEST(PackedFormTest, WhatDamagedStreamsExpandToIsRead) {
    std::string profile = "[/]\n{\n";
    for (int i = 0; i < 2000; ++i)
        profile += "Item" + std::to_string(i) + "=" + std::to_string(i * 7919) + "\n";
    const std::string image = Packed(profile + "}\n");
    const Loaded cut = Load(image.substr(0, image.size() / 2));
    EXPECT_EQ(cut.first, L"0");
    EXPECT_GT(cut.items, 500);
    EXPECT_LT(cut.items, 2000);

    for (const char* nothing : {"ZRzQ", "ZRzQ\xFF\xFF\xFF"}) {
        const Loaded loaded = Load(nothing);
        EXPECT_EQ(loaded.code, PROF_ERR_BUSY);
        EXPECT_EQ(loaded.items, 0);
    }
}

TEST(PackedFormTest, FilesReceiveTheProfileAndStreamsAnEmptyImage) {
    const FreshFolder folder;
    const String path = folder.At(L"a.prf");
    ProfJob job;
    job.Root().AppendItem(L"name", L"value");
    EXPECT_EQ(SaveProfile(job, path.Text(), PROF_FORMAT_TEXT | PROF_FORMAT_KEEP_PACKED).code, PROF_OK);
    const std::string plain = folder.Get(L"a.prf");
    EXPECT_EQ(plain.substr(0, 2), "\xFF\xFE"); // the job was not loaded from packed form
    EXPECT_EQ(SaveProfile(job, path.Text(), PROF_FORMAT_TEXT | PROF_FORMAT_PACKED).code, PROF_OK);

    const std::string packed = folder.Get(L"a.prf");
    EXPECT_EQ(packed.substr(0, 4), "ZRzQ");
    FakeStream image(packed), inside;
    clsFile source(&image), target(&inside);
    source.SetPosition(4);
    EXPECT_EQ(UtilUnpackFile(target, source, 0, kToEnd), Z_STREAM_END);
    EXPECT_EQ(inside.bytes, plain);

    ProfJob again;
    again.OpenExclusive(path.Text());
    EXPECT_TRUE(again.IsLoadedPacked());
    EXPECT_EQ(SaveProfile(again, nullptr, PROF_FORMAT_TEXT | PROF_FORMAT_KEEP_PACKED).code, PROF_OK);
    EXPECT_EQ(folder.Get(L"a.prf"), packed);
    EXPECT_EQ(SaveProfile(again, nullptr, PROF_FORMAT_TEXT).code, PROF_OK);
    EXPECT_EQ(folder.Get(L"a.prf"), plain);

    FakeStream stream("old and longer");
    EXPECT_EQ(SaveProfileToStream(job, &stream, PROF_FORMAT_TEXT | PROF_FORMAT_PACKED).code, PROF_OK);
    EXPECT_EQ(stream.bytes, std::string("ZRzQ\x03\0", 6));
    ProfJob empty;
    empty.OpenStream(&stream, 0);
    EXPECT_EQ(empty.LastError(), PROF_OK);
    EXPECT_TRUE(empty.Root().isEmpty());
}

// Each file call fails in turn. What loads without a code is the profile.
TEST(PackedFormTest, LoadsWithFailingCallsSaySo) {
    const FreshFolder folder;
    const String path = folder.Put(L"a.prf", Packed(Packed(kProfile)));
    for (int number = 1;; ++number) {
        ProfJob job;
        bool hasStruck = false;
        {
            const FailingCalls failing(number);
            job.OpenShared(path.Text());
            hasStruck = FailingCalls::HasStruck();
        }
        if (job.LastError() == PROF_OK) {
            EXPECT_EQ(job.Root().entries(), 2) << number;
        }
        if (!hasStruck) break;
        ASSERT_LT(number, 500);
    }
    EXPECT_TRUE(LeavesNoTempFile());
}

} // namespace
} // namespace vxut
