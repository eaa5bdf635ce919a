#include "encoding/zip_file.h"

#include "encoding/zip_text.h"
#include "tests/support/debug_listener.h"
#include "tests/support/failing_calls.h"
#include "tests/support/fake_stream.h"
#include "tests/support/temp_folder.h"
#include "tests/support/zip_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <random>
#include <string>
#include <utility>

namespace vxut {
namespace {

using test::FailingCalls;
using test::FakeStream;
using test::FreshFolder;
using test::ReadZip;
using test::ZipArchive;
using test::ZipMember;

constexpr int64_t kFourGB = 0x100000000;

class ZipTest : public testing::Test {
protected:
    // Closes the archive and reads its file.
    ZipArchive Finish(clsZIPFile& zip) const {
        EXPECT_EQ(zip.Close(), kZipOk);
        return ReadZip(folder_.Get(L"a.zip"));
    }
    bool Create(clsZIPFile& zip, const String& comment = String()) const {
        return zip.Create(folder_.At(L"a.zip"), comment);
    }
    static std::vector<std::string> Names(const ZipArchive& archive) {
        std::vector<std::string> names;
        for (const ZipMember& member : archive.members) names.push_back(member.name);
        return names;
    }

    const FreshFolder folder_;
    const DebugListener listener_;
};

void SetWritten(const String& path, const SYSTEMTIME& utc) {
    clsFile file(path, kAccessReadWrite, kDispositionOpenExisting, kShareNone);
    FILETIME time;
    ASSERT_TRUE(SystemTimeToFileTime(&utc, &time) && SetFileTime(file.Handle(), nullptr, nullptr, &time));
}

TEST_F(ZipTest, AnArchiveWithoutEntriesIsItsEndRecord) {
    clsZIPFile zip;
    folder_.Put(L"a.zip", "what was there before");
    ASSERT_TRUE(Create(zip, L"note"));
    EXPECT_EQ(std::filesystem::file_size(folder_.At(L"a.zip").Text()), 0u) << "until it is closed";
    EXPECT_EQ(zip.Close(), kZipOk);
    EXPECT_EQ(folder_.Get(L"a.zip"), std::string("PK\5\6\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\4\0note", 26));
}

TEST_F(ZipTest, TheBytesOfAnArchiveAreExact) {
    const String source = folder_.Put(L"hello.txt", "hello");
    SetWritten(source, {2020, 2, 0, 3, 4, 5, 6, 0});
    clsZIPFile zip;
    ASSERT_TRUE(Create(zip));
    EXPECT_EQ(zip.AppendFile(source, L"hi", L"x\\hello.txt"), kZipOk);
    EXPECT_EQ(zip.Close(), kZipOk);
    const std::string common("\x14\0\0\0\x08\0\xA3\x20\x43\x50\x86\xA6\x10\x36\x07\0\0\0\x05\0\0\0\x0B\0\0\0",
                             26);
    const std::string data("\xCB\x48\xCD\xC9\xC9\x07\0", 7);
    const auto bytes = [](uint32_t number) { return std::string(reinterpret_cast<char*>(&number), 4); };
    EXPECT_EQ(folder_.Get(L"a.zip"),
              "PK\3\4" + common + "x/hello.txt" + data + "PK\1\2\x14\x0A" + common +
                  std::string("\2\0\0\0\0\0", 6) + bytes(GetFileAttributesW(source.Text())) + bytes(0) +
                  "x/hello.txthi" + std::string("PK\5\6\0\0\0\0\1\0\1\0\x3B\0\0\0\x30\0\0\0\0\0", 22));
}

TEST_F(ZipTest, NamesLoseDriveOrServer) {
    const std::array<const wchar_t*, 3> kRows[] = {
        // given, source, stored
        {L"", L"C:\\dir\\a.txt", L"/dir/a.txt"},
        {L"", L"c:a.txt", L"a.txt"},
        {L"in\\a.txt", L"C:\\b", L"in/a.txt"},
        {L"D:\\in\\a", L"", L"/in/a"},
        {L"", L"\\\\srv\\share\\a", L"/share/a"},
        {L"", L"\\\\?\\C:\\a", L"/C:/a"},
        {L"", L"..\\a", L"../a"},
        {L"", L"", L""},
        {L"", L"\\\\srv", L"//srv"},
        {L"", L"CC:\\a", L"CC:/a"},
    };
    for (const auto& [given, source, stored] : kRows)
        EXPECT_STREQ(ZipName(given, source).Text(), stored) << source;
}

TEST_F(ZipTest, OneCharacterOutsideTheCodePageMakesNameAndCommentUtf8) {
    const struct {
        const wchar_t* name;
        const wchar_t* comment;
        std::string storedName;
        std::string storedComment;
        uint16_t flags;
    } kRows[] = {
        {L"\u00E4\u03A9", L"\u00E9", "\x84\xEA", "\x82", 0},
        {L"\u65E5", L"\u00E9", "\xE6\x97\xA5", "\xC3\xA9", 0x0800},
        {L"\u00E4", L"\u65E5", "\xC3\xA4", "\xE6\x97\xA5", 0x0800},
        {L"\u0100", L"", "\xC4\x80", "", 0x0800}, // looks like "A", but is not
        {L"\xD800", L"", "\xEF\xBF\xBD", "", 0x0800},
    };
    clsZIPFile zip;
    ASSERT_TRUE(Create(zip));
    const String source = folder_.Put(L"f", "");
    for (const auto& row : kRows) EXPECT_EQ(zip.AppendFile(source, row.comment, row.name), kZipOk);
    const ZipArchive archive = Finish(zip);
    ASSERT_EQ(archive.members.size(), std::size(kRows));
    for (size_t i = 0; i < std::size(kRows); ++i) {
        EXPECT_EQ(archive.members[i].name, kRows[i].storedName);
        EXPECT_EQ(archive.members[i].comment, kRows[i].storedComment);
        EXPECT_EQ(archive.members[i].flags, kRows[i].flags);
    }
}

TEST_F(ZipTest, SubfoldersTakeAllFilesWhateverThePattern) {
    const std::filesystem::path base = folder_.At(L"base").Text();
    create_directories(base / L"sub" / L"deep");
    create_directories(base / L"\u65E5");
    for (const wchar_t* name : {L"one.txt", L"two.log", L"sub\\three.log", L"sub\\deep\\four"})
        folder_.Put((std::wstring(L"base\\") + name).c_str(), std::string(3000000, 'z'));
    const std::pair<bool, std::vector<std::string>> kRows[] = {
        {false, {"one.txt"}},
        {true, {"one.txt", "sub/", "sub/deep/", "sub/deep/four", "sub/three.log", "\xE6\x97\xA5/"}}};
    for (const auto& [isRecursive, wanted] : kRows) {
        clsZIPFile zip;
        ASSERT_TRUE(Create(zip));
        zip.AppendFolder(base.c_str(), L"*.txt", isRecursive);
        const ZipArchive archive = Finish(zip);
        std::vector<std::string> names = Names(archive);
        EXPECT_EQ(names.front(), "one.txt");
        EXPECT_TRUE(!isRecursive ||
                    std::ranges::find(names, "sub/") < std::ranges::find(names, "sub/three.log"));
        std::ranges::sort(names);
        EXPECT_EQ(names, wanted);
        for (const ZipMember& member : archive.members) {
            const bool isFolder = member.name.ends_with('/');
            EXPECT_EQ(member.method, isFolder ? 0 : 8);
            EXPECT_EQ(member.content.size(), isFolder ? 0u : 3000000u);
            EXPECT_EQ((member.attributes & FILE_ATTRIBUTE_DIRECTORY) != 0, isFolder);
            EXPECT_EQ(member.date >> 9, std::max(0, [] {
                          SYSTEMTIME now;
                          GetLocalTime(&now);
                          return now.wYear - 1980;
                      }()));
        }
    }
    clsZIPFile zip;
    ASSERT_TRUE(Create(zip));
    zip.AppendFolder(folder_.At(L"absent"), L"*.*", true);
    EXPECT_TRUE(Finish(zip).members.empty());
}

TEST_F(ZipTest, AStreamHasThePresentTimeInSwappedFields) {
    FakeStream stream("..content");
    stream.position = 2;
    clsZIPFile zip;
    ASSERT_TRUE(Create(zip));
    clsFile source(&stream);
    SYSTEMTIME now;
    GetLocalTime(&now);
    EXPECT_EQ(zip.Append(source, String(), L"s"), kZipOk);
    const ZipMember member = Finish(zip).members.at(0);
    EXPECT_EQ(member.time >> 9, now.wYear - 1980) << "the date is where the time belongs";
    EXPECT_EQ(member.content, "content");
    EXPECT_EQ(member.attributes, 0u);
}

TEST_F(ZipTest, TimesThatDosCannotExpressAreTheFirstOfAll) {
    const String source = folder_.Put(L"old", "");
    SetWritten(source, {1975, 1, 0, 1, 0, 0, 0, 0});
    clsZIPFile zip;
    ASSERT_TRUE(Create(zip));
    EXPECT_EQ(zip.AppendFile(source, String(), L"old"), kZipOk);
    const ZipMember member = Finish(zip).members.at(0);
    EXPECT_EQ(member.date, 0x0021);
    EXPECT_EQ(member.time, 0);
}

// Each source is refused, with a line on the debug channel, and is not listed.
TEST_F(ZipTest, ARefusedSourceLeavesTheArchiveAsItWas) {
    clsZIPFile zip;
    ASSERT_TRUE(Create(zip));
    const String file = folder_.Put(L"f", "x");
    EXPECT_EQ(zip.AppendFile(folder_.At(L"absent"), String(), String()), kZipNoSource);
    EXPECT_EQ(zip.AppendFile(folder_.Path(), String(), String()), kZipNoSource);
    EXPECT_EQ(zip.AppendFile(folder_.At(L"a.zip"), String(), String()), kZipNoSource) << "the archive itself";
    EXPECT_EQ(zip.AppendFile(file, String(), String(L'n', 0x10000)), kZipNoEntry);
    EXPECT_EQ(zip.AppendFile(file, String(0x65E5, 0x5556), L"n"), kZipNoEntry) << "65538 bytes in UTF-8";

    const std::tuple<uint64_t, HRESULT, const wchar_t*> kStreams[] = {
        {kFourGB, S_OK, L"ERR: source size > 4GB"},
        {4, S_OK, L"ERR while compressing file '(Stream)': -3"}, // shorter than it says
        {3, STG_E_READFAULT, L"ERR while compressing file '(Stream)': -3"},
    };
    for (const auto& [claimedSize, readResult, line] : kStreams) {
        FakeStream stream("abc");
        stream.claimedSize = claimedSize;
        stream.readResult = readResult;
        clsFile source(&stream);
        EXPECT_EQ(zip.Append(source, String(), L"s"), kZipNoEntry);
        EXPECT_TRUE(listener_.Heard(line)) << line;
    }
    EXPECT_EQ(zip.AppendFile(file, String(0x65E5, 0x5555), L"n"), kZipOk);
    EXPECT_EQ(Names(Finish(zip)), std::vector<std::string>{"n"});

    clsZIPFile other;
    EXPECT_FALSE(Create(other, String(L'c', 0x10000)));
    EXPECT_NE(folder_.Get(L"a.zip"), "") << "is left alone";
}

TEST_F(ZipTest, ASourceThatGrowsEndsWhereItsSizeSaid) {
    FakeStream stream("abcdef");
    stream.claimedSize = 4;
    clsFile source(&stream);
    clsZIPFile zip;
    ASSERT_TRUE(Create(zip));
    EXPECT_EQ(zip.Append(source, String(), L"s"), kZipOk);
    EXPECT_EQ(Finish(zip).members.at(0).content, "abcd");
}

// An archive of one entry has 31 bytes of local header, 5 of data, 47 of index and 23 at its end.
TEST_F(ZipTest, AFullDiskIsReportedWithThePartThatDidNotFit) {
    const std::pair<size_t, const wchar_t*> kRows[] = {
        {20, L"ERR: write error file '(Stream)' (1)"},
        {33, L"ERR: write error file '(Stream)' (2)"},
        {50, L"ERR: write error file '(Stream)' (4)"},
        {90, L"ERR: write error file '(Stream)' (5)"},
        {SIZE_MAX, nullptr},
    };
    for (const auto& [capacity, line] : kRows) {
        FakeStream target;
        target.capacity = capacity;
        clsZIPFile zip;
        ASSERT_TRUE(zip.CreateOnStream(&target, L"c"));
        EXPECT_EQ(zip.AppendFile(folder_.Put(L"f", "abc"), String(), L"n"), kZipOk);
        EXPECT_EQ(zip.Close(), line ? kZipWriteFailed : kZipOk);
        if (line) EXPECT_TRUE(listener_.Heard(line)) << line;
        if (!line) EXPECT_EQ(Names(ReadZip(target.bytes)), std::vector<std::string>{"n"});
    }
}

TEST_F(ZipTest, AnArchiveOfMoreThanFourGigabytesFails) {
    FakeStream target;
    clsZIPFile zip;
    ASSERT_TRUE(zip.CreateOnStream(&target, String()));
    target.claimedSize = kFourGB;
    EXPECT_EQ(zip.Close(), kZipWriteFailed);
    EXPECT_TRUE(listener_.Heard(L"ERR: ZIP file size > 4GB"));
}

// Whatever call fails, an archive that is reported as complete is.
TEST_F(ZipTest, NoFailingCallPassesUnnoticed) {
    const String source = folder_.Put(L"f", std::string(100000, 'x'));
    bool hasStruck = true;
    int refused = 0;
    for (int number = 1; hasStruck; ++number) {
        ZipResult added = kZipNoSource;
        ZipResult closed = kZipWriteFailed;
        {
            const FailingCalls failing(number);
            clsZIPFile zip;
            if (Create(zip)) {
                added = zip.AppendFile(source, String(), L"n");
                closed = zip.Close();
            }
            hasStruck = FailingCalls::HasStruck();
        }
        if (closed != kZipOk || added != kZipOk) ++refused;
        if (closed != kZipOk) continue;
        const ZipArchive archive = ReadZip(folder_.Get(L"a.zip"));
        ASSERT_EQ(archive.members.size(), added == kZipOk ? 1u : 0u) << number;
        if (added == kZipOk) EXPECT_EQ(archive.members[0].content, std::string(100000, 'x'));
    }
    EXPECT_GT(refused, 10);
}

TEST_F(ZipTest, IncompressibleDataOfSeveralPiecesSurvives) {
    std::string noise(2500000, '\0');
    std::mt19937 random(7);
    for (char& byte : noise) byte = static_cast<char>(random());
    clsZIPFile zip;
    ASSERT_TRUE(Create(zip));
    EXPECT_EQ(zip.AppendFile(folder_.Put(L"noise", noise), String(), L"noise"), kZipOk);
    EXPECT_EQ(zip.AppendFile(folder_.Put(L"none", ""), String(), L"none"), kZipOk);
    const ZipArchive archive = Finish(zip);
    EXPECT_TRUE(archive.members.at(0).content == noise);
    EXPECT_EQ(archive.members.at(1).content, "");
}

} // namespace
} // namespace vxut
