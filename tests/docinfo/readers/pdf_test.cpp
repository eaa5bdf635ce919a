#include "docinfo/readers/pdf_date.h"
#include "docinfo/readers/pdf_dictionary.h"
#include "docinfo/readers/pdf_xref.h"
#include "docinfo/readers/reader_exception.h"
#include "tests/support/document_reading.h"
#include "tests/support/pdf_builder.h"

#include <gtest/gtest.h>

#include <string_view>

namespace vxut {
namespace {

using namespace test;
using namespace std::string_literals;

constexpr wchar_t kUnset[] = L"(unset)";

std::wstring TitleOf(const std::string& bytes) { return TextOrUnset(ReadDocument(ReadPdf, bytes)->Title); }

TEST(PdfTest, ReadsTheInfoDictionary) {
    int result = -1;
    const Document document = ReadDocument(
        ReadPdf,
        PdfWithInfo("<</Title(T)/Au#74hor(A) /Subject <</Title(no) /X[1]>> /Keywords(first)/Keywords true\n"
                    "/CreationDate(D:2007) % )\n/ModDate(D:20070102030405+01'00')>>"),
        &result);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(TextOrUnset(document->Title), L"T");
    EXPECT_EQ(TextOrUnset(document->Author), L"A");
    EXPECT_EQ(TextOrUnset(document->Subject), L"<dummy:Dict>");
    EXPECT_EQ(TextOrUnset(document->Keywords), L"-1");
    EXPECT_EQ(TimeText(document->Created), "2007-01-01 00:00:00");
    EXPECT_EQ(TimeText(document->Modified), "2007-01-02 02:40:05");
}

TEST(PdfTest, ReadsValues) {
    const struct {
        std::string value;
        const wchar_t* text;
    } kRows[] = {
        {"(a(b)c)", L"a(b)c"},
        {"(\\(\\)\\\\\\n\\101\\7\\x)", L"()\\\nA\a\\x"},
        {"(\\376\\377\\000A\\000B)", L"AB"},
        {"(\xFE\xFF\0A\0\xE4)"s, L"A\xE4"},
        {"(\xFF\xFE"
         "A\0B\0)"s,
         L"AB"},
        {"(\xFE\xFF\x20\xAC)", L"\x2AC"}, // the high byte counts 16 times
        {"<4 1\r\n4>", L"A@"},
        {"<FEFF004120AC>", L"A\x20AC"},
        {"<fffe4100>", L"A"},
        {"<EFBBBFC3A4>", L"\xE4"},
        {"<E4410042>",
         L"\xE4"
         L"A"},
        {"/Na#6Dx", L"Namx"},
        {"/Na#6de",
         L"Na\xDE"
         L"e"}, // the low byte of all digits
        {"[(x) %c\n/y]", L"(x) \n/y"},
        {"12", L"12"},
        {"-1", L"4294967295"},
        {"1.5", L"1"},
        {".5", L"0"},
        {"12 0 R", L""}, // an array, which has no text
        {"(a)(b)", L""},
        {"null", L"Y"}, // no value, so the next name is
        {"false", L"0"},
    };
    for (const auto& [value, text] : kRows) {
        EXPECT_EQ(TitleOf(PdfWithInfo("<</X 1/Title " + value + "/Y 2>>")), text) << value;
    }
}

TEST(PdfTest, UsesWhatPrecedesAFault) {
    const struct {
        const char* info;
        const wchar_t* title;
    } kRows[] = {
        {"<</Title(T)/Author(unclosed>>", L"T"},
        {"<</Title(T)/Author<41", L"T"},
        {"<</Title(T)/Author tru", L"T"},
        {"<</Title(T)/Author<</X", L"T"},
        {"<</Title(T)", L"T"},
        {"<</Title(T) % no end", L"T"},
        {"<</Title(T)X", L"T"},
        {"<<>>", kUnset},
        {"no dictionary", kUnset},
    };
    for (const auto& [info, title] : kRows)
        EXPECT_EQ(TitleOf(PdfBuilder().Object("").Object(info).Object("").Section("/Info 2 0 R").Finish()),
                  title)
            << info;
}

TEST(PdfTest, FollowsTheSections) {
    const auto withUpdate = [](const char* trailer) {
        return PdfBuilder()
            .Object("<</Title(old)>>")
            .Object("<</Title(other)>>")
            .Object("")
            .Section("/Info 1 0 R")
            .From(1)
            .Object("<</Title(new)>>")
            .Section(trailer);
    };
    EXPECT_EQ(TitleOf(withUpdate("").Finish()), L"new");
    EXPECT_EQ(TitleOf(withUpdate("/Info 2 0 R").Finish()), L"new"); // the oldest trailer counts
    // A fault in an older section leaves what the newer ones have.
    std::string bytes = withUpdate("/Info 2 0 R").Finish();
    bytes.replace(bytes.find("xref\n0 4"), 8, "xref\n0 5");
    EXPECT_EQ(TitleOf(bytes), L"other"); // the older trailer is behind the fault
    // The object with the highest number is not found.
    EXPECT_EQ(TitleOf(PdfBuilder().Object("").Object("<</Title(T)>>").Section("/Info 2 0 R").Finish()),
              kUnset);
    // A section that is its own predecessor.
    EXPECT_EQ(TitleOf(PdfBuilder()
                          .Object("<</Title(T)>>")
                          .Object("")
                          .Section("/Info 1 0 R/Prev " + std::to_string(9 + 33 + 18))
                          .Finish()),
              L"T");
}

TEST(PdfTest, NeedsAStart) {
    const std::string sound = PdfWithInfo("<</Title(T)>>");
    EXPECT_EQ(TitleOf(sound + std::string(20, '\0')), L"T");
    EXPECT_EQ(TitleOf(sound + std::string(40, ' ')), kUnset); // beyond the last 50 bytes
    const std::string kStarts[] = {"",         "startxref\n5", "startxref 0", "startxref 99", "startxref -1",
                                   "startxref"};
    for (const std::string& bytes : kStarts) EXPECT_EQ(TitleOf(bytes), kUnset) << bytes;
}

TEST(PdfTest, FaultsOfSections) {
    const struct {
        std::string text;
        const wchar_t* message;
    } kRows[] = {
        {"xref 0 1 0 0 f trailer<</A 1>>", L""},
        {"xref 5 2 1 0 n 2 0 n trailer<</A 1>>", L""},
        {"xref 0 1 0 0 f 4 1 9 0 n trailer<<>>", L"bad xref count"},
        {"xref 0 2 0 0 f trailer<<>>", L"bad xref count"},
        {"xref ", L"premature end of xref"},
        {"xref 0 1 0 0 f ", L"premature end of xref"},
        {"xref 0 1 0 0 f x", L"no object"},
        {"xref 0 1 0 0 f trailer", L"object is not a dictionary"},
        {"xref 0 1 0 0 f trailer<</A 1", L"premature end of dictionary"},
        {"xref 0 1 0 0 f trailer<</A>", L"expected end of dictionary"},
        {"xref 0 1 0 0 f trailer<</A<1", L"premature end of object"},
        {"xref 0 1 0 0 f trailer<</A foo", L"unexpected token"},
        {"hello", L"no object"},
        {"1 0 obj<</Type/X/Filter/F/Length 1>>", L"no xref"},
        {"1 0 obj<</Type/XRef/Length 1>>stream\n", L"no xref"},
        {"1 0 obj<</Type/XRef/Filter/F/Length 1>>streem\n", L"no xref stream"},
        {"1 0 obj<</Type/XRef/Filter/F/Length 1>>stream\r", L"no xref"},
        {"1 0 obj<</Type/XRef/Filter/F/Length 999>>stream\nx endstream", L"no xref"},
        {"1 0 obj<</Type/XRef/Filter/FlateDecode/Length 2>>stream\r\n\0x endstream"s,
         L"no xref compressed(FlateDecode)"},
    };
    for (const auto& [text, message] : kRows) {
        clsPdfPosition position(text.c_str(), text.size());
        clsPdfObjects objects;
        clsPdfDictionary trailer;
        String caught;
        try {
            PdfXrefSection(position, objects, trailer);
        } catch (const clsException& fault) {
            caught = fault.Message();
        }
        EXPECT_STREQ(caught.Text(), message) << text;
    }
}

TEST(PdfTest, Dates) {
    const struct {
        const wchar_t* text;
        const char* time;
    } kRows[] = {
        {L"", "(empty)"},
        {L"D", "(empty)"},
        {L"D:", "0000-01-01 00:00:00"},
        {L"D:2007", "2007-01-01 00:00:00"},
        {L"D:20070102030405", "2007-01-02 03:04:05"},
        {L"D:20070102030405Z", "2007-01-02 03:04:05"},
        {L"D:20070102030405+01'00", "2007-01-02 02:40:05"},
        {L"D:20070102030405-01'30'", "2007-01-02 03:40:05"},
        {L"D:20070102030405701'00'", "2007-01-02 02:40:05"}, // any sign from "+" to "Z"
        {L"D:20071302030405+01'00'", "(empty)"},             // no such month
        {L"2007-01-02", "(empty)"},
        {L"D:20070102030405Z00'00' and more", "2007-01-02 03:04:05"},
    };
    for (const auto& [text, time] : kRows) EXPECT_EQ(TimeText(PdfDate(text)), time) << text;
}

TEST(PdfTest, HostileFilesTakeLittleTime) {
    // Nested deeper than any stack, and still read.
    EXPECT_EQ(TitleOf(PdfWithInfo("<<" + Repeated("/a<<", 9000) + Repeated(">>", 9000) + "/Title(T)>>")),
              L"T");
    const std::string kInfos[] = {"<<" + Repeated("/a<<", 15000), "<</a" + Repeated("<", 60000),
                                  "<</Title " + Repeated("1 ", 30000) + ">>", "<</a(" + Repeated("(", 60000)};
    for (const std::string& info : kInfos)
        EXPECT_LT(ProcessorTime(ReadPdf, PdfWithInfo(info)), 1000) << info.substr(0, 20);
    // A chain of full sections through a large file.
    std::string chain = "%PDF";
    size_t previous = 0;
    while (chain.size() < 50'000'000) {
        const std::string link = "trailer<</Prev " + std::to_string(previous) + ">>";
        previous = chain.size();
        chain += "xref\n0 6000\n" + Repeated("9 9 n ", 6000) + link;
    }
    EXPECT_LT(ProcessorTime(ReadPdf, chain + "startxref " + std::to_string(previous)), 1000);
}

} // namespace
} // namespace vxut
