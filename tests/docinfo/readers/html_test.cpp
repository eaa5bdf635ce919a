#include "docinfo/readers/html_references.h"
#include "tests/support/document_reading.h"

#include <gtest/gtest.h>

namespace vxut {
namespace {

using namespace test;

TEST(HtmlReaderTest, DecodesReferences) {
    const struct {
        const wchar_t* text;
        const wchar_t* numbers; // with the numbers decoded
        const wchar_t* names;   // with the names, too
    } kRows[] = {
        {L"", L"", L""},
        {L"&auml;&AUML;&yuml;&nbsp;", L"&auml;&AUML;&yuml;&nbsp;", L"\xE4&AUML;\xFF\xA0"},
        {L"&amp;&lt;&euro;&unknown;", L"&amp;&lt;&euro;&unknown;", L"&amp;&lt;&euro;&unknown;"},
        {L"a&#228;&#xE4;&#XE4;b",
         L"a\xE4\xE4\xE4"
         L"b",
         L"a\xE4\xE4\xE4"
         L"b"},
        {L"&#x4;&#x12345;&#;&#x;", L"&#x4;&#x12345;&#;&#x;", L"&#x4;&#x12345;&#;&#x;"},
        {L"a&#0;b&#65536;c&#65601;", L"abcA", L"abcA"},
        {L"&#38;#228;", L"\xE4", L"\xE4"}, // the ampersand begins another reference
        {L"&#38;auml;", L"&auml;", L"&auml;"},
        {L"&#3&#56;;", L"&", L"&"},
        {L"&#2\r\n28;", L"\xE4", L"\xE4"},
        {L"&au\nml;", L"&auml;", L"&auml;"}, // line ends are removed after the names
    };
    for (const auto& [text, numbers, names] : kRows) {
        String decoded = text;
        DecodeHtmlEntities(decoded, false);
        EXPECT_STREQ(decoded.Text(), numbers) << text;
        decoded = text;
        DecodeHtmlEntities(decoded, true);
        EXPECT_STREQ(decoded.Text(), names) << text;
    }
}

TEST(HtmlReaderTest, ReadsTitleAndMetaTags) {
    int result = -1;
    const Document document = ReadDocument(ReadHtml,
                                           "<html><HEAD><TITLE>a\r\n&auml;</title>"
                                           "<meta name=\"author\" content=\"A\">"
                                           "<META NAME=\"DC.Description\"\nCONTENT=\"C &amp; D\">"
                                           "<meta content=\"x\" name=\"DC.Subject\">"
                                           "<meta name=\"DC.Subject\" content=\"S\"/><b class=\"x\">"
                                           "<meta name=\"keywords\" content=\"one\">"
                                           "<meta name=\"DC.Subject.Keywords\" content=\"two\"></head>"
                                           "<title>no</title>",
                                           &result);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(TextOrUnset(document->Title), L"a\xE4");
    EXPECT_EQ(TextOrUnset(document->Author), L"A");
    EXPECT_EQ(TextOrUnset(document->Comments), L"(unset)"); // the line end before the attribute is removed
    EXPECT_EQ(TextOrUnset(document->Subject), L"S\"/><b class=\"x");
    EXPECT_EQ(TextOrUnset(document->Keywords), L"one");
}

TEST(HtmlReaderTest, AnOfficeBlockReplacesMetaTags) {
    const Document document = ReadDocument(
        ReadHtml,
        "<head><title>T</title><o:DocumentProperties><o:Author>A</o:author><O:LASTAUTHOR>L</O:LastAuthor>"
        "<o:Title>no</o:Title><o:Subject>S</o:Subject><o:p/><o:Keywords>K</o:Keywords>"
        "<o:Description>x>y</o:Description><o:Created>2010-06-28T23:52:00+01:00</o:Created>"
        "<o:LastSaved>never</o:LastSaved></o:DocumentProperties>"
        "<meta name=\"author\" content=\"no\"></head>");
    EXPECT_EQ(TextOrUnset(document->Title), L"T");
    EXPECT_EQ(TextOrUnset(document->Author), L"A");
    EXPECT_EQ(TextOrUnset(document->LastAuthor), L"L");
    EXPECT_EQ(TextOrUnset(document->Subject), L"S");
    EXPECT_EQ(TextOrUnset(document->Keywords), L"K");
    EXPECT_EQ(TextOrUnset(document->Comments), L"x>y");
    EXPECT_EQ(TimeText(document->Created), "2010-06-28 22:52:00");
    EXPECT_EQ(TimeText(document->Modified), "(empty)");
}

TEST(HtmlReaderTest, OfficeElementsAreRemovedOneByOne) {
    const struct {
        const wchar_t* block;
        const wchar_t* author;
    } kRows[] = {
        {L"<o:Author>one</o:Author><o:Author>two</o:Author>", L"two"},
        {L"<o:Author>one</o:Author><o:Author>two</o:Author><o:Author>one</o:Author>", L"two"},
        {L"<o:Auth<o:x>y</o:x>or>z</o:Author>", L"z"}, // what is left when the inner one is removed
        {L"<o:Author>unclosed", L"(unset)"},
        {L"<o:>a</o:><o:Author></o:Author>", L""},
    };
    for (const auto& [block, author] : kRows) {
        const Document document(MakeCounted<clsDocu>());
        EXPECT_EQ(ReadOfficeBlock(*document.Get(), block), 0);
        EXPECT_EQ(TextOrUnset(document->Author), author) << block;
    }
}

TEST(HtmlReaderTest, HostilePagesTakeLittleTime) {
    const auto block = [](const std::string& elements) {
        return "<head><o:DocumentProperties>" + elements + "</o:DocumentProperties></head>";
    };
    std::string opened;
    std::string closed;
    for (int number = 0; number < 2500; ++number) {
        const std::string name = "o:" + std::to_string(number) + ">";
        opened += "<" + name;
        closed += "<" + name + "</" + name;
    }
    const std::string kPages[] = {Repeated("<head>", 10000),
                                  "<head>" + Repeated("<meta name=\"author\" content=\"", 2100) + "</head>",
                                  "<head>" + Repeated("&#38;", 1) + Repeated("#38;", 15000) + "</head>",
                                  block(Repeated("<o:a>", 12000)),
                                  block(opened + closed),
                                  block("<o:" + Repeated(">", 60000))};
    for (const std::string& page : kPages)
        EXPECT_LT(ProcessorTime(ReadHtml, page), 1000) << page.substr(0, 40);
}

} // namespace
} // namespace vxut
