#include "docinfo/readers/readers.h"
#include "docinfo/readers/zip_member.h"
#include "tests/support/debug_listener.h"
#include "tests/support/document_builder.h"
#include "tests/support/document_text.h"

#include <gtest/gtest.h>
#include <zlib.h>

namespace vxut::test {
namespace {

constexpr char kCore[] = "docProps/core.xml";

std::string Deflated(const std::string& content) {
    z_stream stream{};
    deflateInit2(&stream, 9, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY);
    std::string packed(compressBound(static_cast<uLong>(content.size())) + 16, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
    stream.avail_in = static_cast<uInt>(content.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

std::wstring Read(const std::string& bytes) { return ReadAndDescribe(ReadZipPackage, bytes); }

TEST(ZipPackageTest, ReadsCoreProperties) {
    const std::string body =
        "<dc:creator>Zo\xC3\xAB</dc:creator><dc:title a=\"b\">T &amp; U</dc:title>"
        "<dcterms:created xsi:type=\"x\">2026-11-13T16:30:00+01:00</dcterms:created>"
        "<dcterms:modified>2026-11-13T16:30:00Z</dcterms:modified>"
        "<cp:lastModifiedBy>L</cp:lastModifiedBy><dc:subject>S</dc:subject>"
        "<cp:keywords></cp:keywords><dc:description>D\nE</dc:description>";
    const std::wstring expected =
        L"0 Title=T &amp; U|Subject=S|Author=Zo\xEB|LastAuthor=L|Keywords=|"
        L"Comments=D\nE|Created=2026-11-13 15:30:00|Modified=2026-11-13 16:30:00|";
    const std::string text = CoreProperties(body);
    EXPECT_EQ(Read(Package({{"[Content_Types].xml", "x"}, {kCore, text}})), expected);
    EXPECT_EQ(Read(Package({{"DOCPROPS/CORE.XML", Deflated(text), 8}})), expected);
    // As some office program writes it: a long extra field in the local header and sizes in the directory.
    EXPECT_EQ(Read(Package({{kCore, Deflated(text), 8, 8, 1, std::string(264, 'e'), "PK\7\10"}})), expected);
    EXPECT_EQ(Read(Package({{kCore, text + std::string(1, '\0') + "rest", 0, 0x80}})), expected);
}

TEST(ZipPackageTest, DecodesByTheDeclaredEncoding) {
    const auto title = [](const std::string& head, const std::string& bytes) {
        return Read(Package({{kCore, head + "<cp:coreProperties x>" + "<dc:title>" + bytes +
                                         "</dc:title></cp:coreProperties>"}}));
    };
    EXPECT_EQ(title("<?xml version=\"1.0\" encoding=\"utf-8\"?>", "\xC3\xA4"), L"0 Title=\xE4|");
    EXPECT_EQ(title("<?xml version=\"1.0\" encoding=\"x\"?>", "\xC3\xA4"), L"0 Title=\xC3\xA4|");
    EXPECT_EQ(title("", "\x80"), L"0 Title=\x20AC|"); // the default code page
    EXPECT_EQ(title("<?xml encoding=\"UTF-8\"?>", "\x80"), L"0 Title=invalid UTF-8 sequence found!|");
    // In front of megabytes of text, too.
    EXPECT_EQ(title("<?xml a encoding=\"UTF-8\"?><x>" + std::string(6'000'000, ' ') + "</x>", "\xC3\xA4"),
              L"0 Title=\xE4|");
}

TEST(ZipPackageTest, ReadsOpenDocument) {
    const std::string body =
        "<meta:initial-creator>A</meta:initial-creator><dc:creator>L</dc:creator>"
        "<meta:creation-date>2026-11-13</meta:creation-date><dc:title>T</dc:title>"
        "<dc:date>2026-11-14T01:02:03.5</dc:date><dc:description>D</dc:description>";
    const std::wstring rest = L"Comments=D|Created=2026-11-13 00:00:00|Modified=2026-11-14 01:02:03|";
    const std::string keywords = "<meta:keyword>a</meta:keyword> <meta:keyword>\xC3\xA4</meta:keyword>";
    const auto read = [&](const std::string& more) {
        return Read(Package({{"META.XML", Deflated(OpenDocumentMeta(body + more)), 8}}));
    };
    EXPECT_EQ(read(""), L"0 Title=T|Author=A|LastAuthor=L|" + rest);
    EXPECT_EQ(read(keywords), L"0 Title=T|Author=A|LastAuthor=L|Keywords=a, \xE4|" + rest);
    EXPECT_EQ(read("<meta:keywords>" + keywords + "</meta:keywords><meta:keyword>no</meta:keyword>"),
              L"0 Title=T|Author=A|LastAuthor=L|Keywords=a, \xE4|" + rest);
}

TEST(ZipPackageTest, TakesTheFirstMemberThatFits) {
    const PackageMember meta{"meta.xml", OpenDocumentMeta("<dc:title>M</dc:title>")};
    const PackageMember core{kCore, CoreProperties("<dc:title>C</dc:title>")};
    EXPECT_EQ(Read(Package({meta, core})), L"0 Title=M|");
    EXPECT_EQ(Read(Package({core, meta})), L"0 Title=C|");
    EXPECT_EQ(Read(Package({{"x", "y"}})), L"-1 ");
    EXPECT_EQ(Read(Package({})), L"-1 ");
    // A directory that is read in pieces.
    std::vector<PackageMember> many(2000, {std::string(255, 'n'), "", 0, 0, 1, "", "", 255});
    many.push_back(core);
    EXPECT_EQ(Read(Package(many)), L"0 Title=C|");
}

TEST(ZipPackageTest, ReportsWhatItDoesNotRead) {
    const PackageMember core{kCore, CoreProperties("<dc:title>C</dc:title>")};
    const auto with = [&](auto change) {
        PackageMember member = core;
        change(member);
        return Package({member});
    };
    std::string badLocal = Package({core});
    badLocal[0] = 'Q';
    std::string badOffset = Package({core});
    badOffset.replace(badOffset.size() - 6, 4, "\xFF\xFF\xFF\x7F");
    const std::string bomb = Deflated(std::string(2 * kMostMemberBytes, ' '));
    const struct {
        std::string file;
        std::wstring result;
        std::wstring report;
    } cases[] = {
        {"PK\5\6", L"-1 ", L"WRN: GetZIPFilenames: file has bad format (no finalizer)"},
        {Package({core}, "comment"), L"-1 ", L"WRN: GetZIPFilenames: read error (no finalizer found)"},
        {badOffset, L"-1 ", L"WRN: GetZIPFilenames: file has bad format"},
        {Package({{std::string(256, 'n'), ""}, core}), L"-1 ", L"WRN: GetZIPFilenames: file has bad format"},
        {badLocal, L"0 ", L"ERR: bad ZIP FILE ENTRY"},
        {with([](auto& member) { member.method = 9; }), L"0 ", L"unknown compression method 9"},
        {with([](auto& member) { member.flags = 0x80; }), L"0 Title=C|", L"bad finalizer!"},
        {with([&](auto& member) { member.method = 8, member.content = bomb; }), L"0 ", L""},
        {with([](auto& member) { member.method = 8, member.content = "\xFF\xFF"; }), L"0 ", L""},
        {with([](auto& member) { member.size = 0; }), L"0 ", L""},
    };
    for (const auto& test : cases) {
        const DebugListener listener;
        EXPECT_EQ(Read(test.file), test.result);
        EXPECT_TRUE(test.report.empty() || listener.Heard(test.report.c_str())) << test.report.c_str();
    }
}

} // namespace
} // namespace vxut::test
