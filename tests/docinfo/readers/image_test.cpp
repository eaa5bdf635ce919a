#include "docinfo/readers/readers.h"
#include "tests/support/debug_listener.h"
#include "tests/support/document_builder.h"
#include "tests/support/document_text.h"

#include <gtest/gtest.h>

namespace vxut::test {
namespace {

int ReadPlainTiff(clsDocu& document, clsDocFile& file) { return ReadTiff(document, file, 0); }

std::wstring ReadImage(const std::string& bytes) { return ReadAndDescribe(ReadPlainTiff, bytes); }
std::wstring ReadPhoto(const std::string& bytes) { return ReadAndDescribe(ReadJpeg, bytes); }

TEST(ImageTest, ReadsBothByteOrders) {
    for (const bool isBig : {false, true}) {
        ImageBuilder image(isBig);
        image.Short(256, 640).Long(257, 480).Text(269, "Name").Text(270, "abc").Text(271, "Canon");
        image.Text(272, "X").Text(306, std::string("2026:11:13 16:30:59\0", 20)).Text(33432, "\xA9 me");
        image.Fraction(33434, 4, 1000).Fraction(33437, 28, 10).Fraction(37382, 12345, 1000).End();
        EXPECT_EQ(ReadImage(image.File()),
                  L"0 Title=Name|Subject=abc|Author=Canon, X|"
                  L"Comments=\xA9 me, t=1/250 s, f=3, d=12.3 m, (640 * 480 px)|Created=2026-11-13 16:30:59|");
    }
}

TEST(ImageTest, ReadsEveryKindOfValue) {
    const struct {
        std::wstring expected;
        ImageBuilder image;
    } cases[] = {
        {L"(640 * 480 px)", ImageBuilder().Short(256, 640).Short(257, 480)},
        {L"(9 * 65536 px)", ImageBuilder(true).Add(256, 1, 1, "\x9").Long(257, 65536)},
        {L"t=2 s", ImageBuilder().Fraction(33434, 4, 2)},
        {L"", ImageBuilder().Fraction(33434, 4, 0)},
        {L"", ImageBuilder().Fraction(37382, 4, 2, 10)}, // half of the one number
        {L"d=2 m", ImageBuilder().Fraction(37382, 4, 2, 10, 2)},
        {L"", ImageBuilder().Fraction(37382, 0xFFFFFFFC, 2, 10, 2)},
        {L"", ImageBuilder().Long(37382, 4)}, // no fraction
    };
    for (const auto& test : cases) {
        ImageBuilder image = test.image;
        image.End();
        EXPECT_EQ(ReadImage(image.File()),
                  test.expected.empty() ? L"0 " : L"0 Comments=" + test.expected + L"|");
    }
    ImageBuilder texts;
    texts.Text(271, "a").Short(272, 1).Text(315, "b").Add(269, 2, 1000, "12345678").Text(37510, "c").End();
    EXPECT_EQ(ReadImage(texts.File()), L"0 Title=|Subject=c|Author=b|");
}

TEST(ImageTest, FollowsDirectoriesOnce) {
    ImageBuilder image;
    image.Short(256, 1).Short(257, 2).Text(269, "one");
    const uint32_t first = image.End();
    image.Short(256, 3).Text(269, "two").End();
    EXPECT_EQ(ReadImage(image.LinkTo(first).File()), L"0 Title=two|Comments=(1 * 2 px)|");
    // A plain image does not lead to the camera's directory.
    ImageBuilder plain;
    plain.Long(34665, plain.Text(269, "camera").EndApart()).End();
    EXPECT_EQ(ReadImage(plain.File()), L"0 ");
}

TEST(ImageTest, ReportsFaults) {
    ImageBuilder image;
    image.Text(269, "a").Text(270, "b").End();
    std::string cut = image.File();
    cut.resize(cut.size() - 10);
    const struct {
        std::string bytes;
        std::wstring result;
        const wchar_t* report;
    } cases[] = {
        {"II*", L"-1 ", L"error reading header"},
        {std::string("XX*\0\0\0\0\0", 8), L"-1 ", L"Not a TIFF file, bad magic number 22616 (0x5858)"},
        {std::string("II+\0\0\0\0\0", 8), L"-1 ", L"Not a TIFF file, bad version number 18761 (0x4949)"},
        {std::string("MM\0*\0\0\0\x9", 8), L"0 ", L"read error directory count"},
        {cut, L"0 Title=a|", L"Could only read 1 of 2 entries in directory at offset 0x8"},
    };
    for (const auto& test : cases) {
        const DebugListener listener;
        EXPECT_EQ(ReadImage(test.bytes), test.result);
        EXPECT_TRUE(listener.Heard(test.report)) << test.report;
    }
}

TEST(ImageTest, ReadsPhotos) {
    ImageBuilder image;
    image.Text(36867, "2026:01:02 03:04:05").Fraction(33437, 4, 1);
    const uint32_t camera = image.EndApart();
    image.Text(271, "Make").Text(306, "2025:01:02 03:04:05").Long(34665, camera).Text(272, "Model");
    image.LinkTo(image.End());
    const std::string photo = Photo(image.File());
    const std::wstring expected = L"0 Author=Make, Model|Comments=f=4|Created=2026-01-02 03:04:05|";
    EXPECT_EQ(ReadPhoto(photo), expected);
    // A directory that leads to itself.
    ImageBuilder ring;
    ring.Text(271, "a").Long(34665, 8).End();
    EXPECT_EQ(ReadPhoto(Photo(ring.File())), L"0 Author=a|");

    std::string other = photo;
    other.replace(other.find("Exif"), 4, "http");
    for (const std::string& bytes :
         {std::string(), std::string("\xFF\xD8\xFF\xD9"), std::string("\xFF\xD8\x12\x34"), other,
          std::string("\xFF\xD8\xFF\xDB\0\0", 6), photo.substr(0, 16), std::string(2'000'000, '\xFF')})
        EXPECT_EQ(ReadPhoto(bytes), L"-1 ") << bytes.size();
}

} // namespace
} // namespace vxut::test
