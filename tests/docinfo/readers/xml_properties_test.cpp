#include "docinfo/readers/readers.h"
#include "tests/support/document_text.h"

#include <gtest/gtest.h>

namespace vxut::test {
namespace {

constexpr char kOfficeBlock[] =
    "<o:DocumentProperties><o:Author>Zo&euml;</o:Author><o:Subject>&#228;"
    "</o:Subject></o:DocumentProperties>";
constexpr wchar_t kOfficeValues[] = L"0 Subject=\xE4|Author=Zo\xEB|";

std::wstring Read(const std::string& bytes) { return ReadAndDescribe(ReadXmlProperties, bytes); }

std::string Flat(const std::string& content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><pkg:part xmlns:pkg=\"p\" xmlns:cp=\"c\" "
           "xmlns:dc=\"d\" xmlns:dcterms=\"t\" xmlns:meta=\"m\">" +
           content + "</pkg:part>";
}

// A flat package with the properties.
std::wstring ReadFlat(const std::string& properties) {
    return Read(Flat("<cp:coreProperties>" + properties + "</cp:coreProperties>"));
}

TEST(XmlPropertiesTest, ReadsAFlatPackage) {
    EXPECT_EQ(ReadFlat("<dc:title>T &amp; \xC3\xA4</dc:title><DC:SUBJECT xmlns:DC=\"d\">S</DC:SUBJECT>"
                       "<dc:creator>A</dc:creator><dcterms:created>2026-11-13T16:30:00+01:00"
                       "</dcterms:created><dc:date>2026-11-14</dc:date><dc:description>D</dc:description>"
                       "<cp:lastModifiedBy>L</cp:lastModifiedBy><cp:keywords>K</cp:keywords>"),
              L"0 Title=T & \xE4|Subject=S|Author=A|LastAuthor=L|Keywords=K|Comments=D|"
              L"Created=2026-11-13 15:30:00|Modified=2026-11-14 00:00:00|");
    EXPECT_EQ(ReadFlat("<meta:keywords><meta:keyword>a</meta:keyword><meta:keyword>b</meta:keyword>"
                       "</meta:keywords>"),
              L"-1 Keywords=a, b|"); // found are only direct properties
    EXPECT_EQ(ReadFlat("<dc:title>T</dc:title><meta:keywords><meta:keyword>a</meta:keyword>"
                       "<meta:keyword>b</meta:keyword></meta:keywords>"),
              L"0 Title=T|Keywords=a, b|");
}

TEST(XmlPropertiesTest, PopsANameAtEveryEnd) {
    // The unprefixed element is not pushed, but its end takes the properties' name away.
    EXPECT_EQ(ReadFlat("<dc:title>T</dc:title><x></x><dc:subject>S</dc:subject>"), L"0 Title=T|");
    EXPECT_EQ(ReadFlat("<dc:title>T</dc:title><x/><dc:subject>S</dc:subject>"), L"0 Title=T|Subject=S|");
}

TEST(XmlPropertiesTest, KeepsWhatCameBeforeAFault) {
    const std::string start = "<cp:coreProperties><dc:title>T</dc:title>";
    EXPECT_EQ(Read(Flat(start + "<dc:subject>S</dc:title>")), L"0 Title=T|Subject=S|");
    EXPECT_EQ(Read(Flat(start + "<dcterms:created>2026</dcterms:created><")),
              L"0 Title=T|Created=2026-00-00 00:00:00|");
    EXPECT_EQ(
        Read("<cp:coreProperties xmlns:cp=\"c\" xmlns:dc=\"d\"><dc:title>T</dc:title></cp:coreProperties>"),
        L"-1 "); // too shallow
}

TEST(XmlPropertiesTest, FallsBackToTheOfficeBlock) {
    EXPECT_EQ(Read(std::string("<w:document>") + kOfficeBlock + "<br>"), kOfficeValues);
    EXPECT_EQ(Read(std::string("<w>") + std::string(65536, ' ') + kOfficeBlock), L"-1 ");
    EXPECT_EQ(Read(""), L"-1 ");
}

TEST(XmlPropertiesTest, IsNotHeldByHostileText) {
    std::string bomb = "<?xml version=\"1.0\"?><!DOCTYPE r [<!ENTITY e0 \"aaaaaaaaaa\">";
    for (int i = 1; i < 12; ++i) {
        const std::string previous = "&e" + std::to_string(i - 1) + ";";
        bomb += "<!ENTITY e" + std::to_string(i) + " \"";
        for (int j = 0; j < 10; ++j) bomb += previous;
        bomb += "\">";
    }
    EXPECT_EQ(Read(bomb + "]><r>&e11;</r>" + kOfficeBlock), kOfficeValues);
    std::string references = "<r>"; // some parsers write through stale pointers here
    for (int i = 0; i < 500'000; ++i) references += "&amp;x";
    EXPECT_EQ(Read(references + "</r>"), L"-1 ");
    std::string deep = kOfficeBlock;
    for (int i = 0; i < 100'000; ++i) deep += "<a:b xmlns:a=\"c\">";
    EXPECT_EQ(Read("<r>" + deep), kOfficeValues);
}

} // namespace
} // namespace vxut::test
