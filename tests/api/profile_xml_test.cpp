// The XML and XFDF forms: their bytes, their reading rules, and what survives a round trip.
#include "profile_support.h"

#include <gtest/gtest.h>

#include <utility>

namespace vxut::test {
namespace {

const std::wstring kXmlLine = L"<?xml version=\"1.0\" encoding=\"UTF-16\" standalone=\"yes\"?>\r\n";
const std::string kXfdfLine = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n";

std::string BytesOf(HPROF job, uint32_t format) {
    FakeStream stream;
    EXPECT_EQ(ProfSaveToStream(job, &stream, format), PROF_OK);
    return stream.bytes;
}

void Fill(HPROF job) {
    ProfAppendStringW(job, nullptr, L"a<b>&'\"", L"\r\n\n\r\t\x1F<\u20AC>");
    ProfSetStringW(job, nullptr, L"l1/l&2/l3/l4/x", L"deep");
    FakeStream inner("[/]\n[/]\ninner=\n}\n"); // a list with the name of the root
    const Job other(ProfJobOpenStream(&inner));
    ProfCopyList(job, nullptr, other, nullptr);
    ProfCreateListW(job, nullptr, L"empty");
}

TEST(ProfileXmlTest, ExactBytes) {
    const Job job;
    Fill(job);
    EXPECT_EQ(BytesOf(job, PROF_FORMAT_XML),
              Utf16Marked(kXmlLine + L"<!-- DTD -->\r\n"
                                     L"<!DOCTYPE profile [\r\n"
                                     L" <!ENTITY cr \"&#x000a;<!--CR-->\">\r\n"
                                     L" <!ENTITY tab \"&#x0009;<!--TAB-->\">\r\n"
                                     L" <!ELEMENT profile (list*, item*)*>\r\n"
                                     L"  <!ELEMENT list (list?, item?)*>\r\n"
                                     L"  <!ATTLIST list name CDATA #REQUIRED>\r\n"
                                     L"   <!ELEMENT item (#PCDATA)>\r\n"
                                     L"   <!ATTLIST item name CDATA #REQUIRED>\r\n"
                                     L"   <!ATTLIST item xml:space (default|preserve) \"preserve\"> ]>\r\n"
                                     L"<!-- DATA -->\r\n"
                                     L"<profile>\r\n"
                                     L" <item name=\"a&lt;b&gt;&amp;&apos;&quot;\">"
                                     L"&cr;&cr;&cr;&tab;&#x001f;&lt;\u20AC&gt;</item>\r\n"
                                     L" <list name=\"l1\">\r\n"
                                     L"  <list name=\"l&amp;2\">\r\n"
                                     L"   <list name=\"l3\">\r\n"
                                     L"\t<list name=\"l4\">\r\n"
                                     L"\t <item name=\"x\">deep</item>\r\n"
                                     L"\t</list>\r\n"
                                     L"   </list>\r\n"
                                     L"  </list>\r\n"
                                     L" </list>\r\n"
                                     L" <item name=\"inner\"></item>\r\n"
                                     L" <list name=\"empty\">\r\n"
                                     L" </list>\r\n"
                                     L"</profile>\r\n"));
    for (const uint32_t format : {3u, 4u, 15u})
        EXPECT_EQ(BytesOf(job, format), BytesOf(job, PROF_FORMAT_XML)) << format;
    EXPECT_EQ(BytesOf(Job(), PROF_FORMAT_XML) + BytesOf(Job(), PROF_FORMAT_XFDF), "") << "no header";
}

TEST(ProfileXfdfTest, ExactBytes) {
    const Job job;
    Fill(job);
    ProfSetOption(PROF_OPTION_CODE_PAGE, 1252);
    EXPECT_EQ(BytesOf(job, PROF_FORMAT_XFDF),
              kXfdfLine +
                  "<xfdf xmlns=\"http://ns.adobe.com/xfdf/\" xml:space=\"preserve\">\r\n"
                  "<fields>\r\n"
                  " <field name=\"a<b>&'\"\">\r\n"
                  "  <value>\r\n\n\r\t\x1F<\x80></value>\r\n"
                  " </field>\r\n"
                  " <field=\"l1\">\r\n"
                  "  <field=\"l&2\">\r\n"
                  "   <field=\"l3\">\r\n"
                  "\t<field=\"l4\">\r\n"
                  "\t <field name=\"x\">\r\n"
                  "\t  <value>deep</value>\r\n"
                  "\t </field>\r\n"
                  "\t</field>\r\n"
                  "   </field>\r\n"
                  "  </field>\r\n"
                  " </field>\r\n"
                  " <field name=\"inner\">\r\n"
                  "  <value></value>\r\n"
                  " </field>\r\n"
                  " <field=\"empty\">\r\n"
                  " </field>\r\n"
                  "</fields>\r\n"
                  "</xfdf>\r\n");
}

TEST(ProfileXfdfTest, TheDefaultCodePageDecidesAndPiecesOfLongValuesFit) {
    const Job job;
    std::wstring value = L"x";
    std::string utf8 = "x";
    for (int i = 0; i < 1000; ++i) {
        value += L"\U0001F600";
        utf8 += "\xF0\x9F\x98\x80";
    }
    ProfSetStringW(job, nullptr, L"a", value.c_str());
    ProfSetOption(PROF_OPTION_CODE_PAGE, CP_UTF8);
    EXPECT_NE(BytesOf(job, PROF_FORMAT_XFDF).find("<value>" + utf8 + "</value>"), std::string::npos);
    ProfSetStringW(job, nullptr, L"a", L"\u4E2D");
    ProfSetOption(PROF_OPTION_CODE_PAGE, 1252);
    EXPECT_NE(BytesOf(job, PROF_FORMAT_XFDF).find("<value>?</value>"), std::string::npos);
}

// The system has no such code page.
TEST(ProfileXfdfTest, ACodePageThatCannotBeWrittenLeavesTheTargetAlone) {
    const FilePlace file;
    file.Put("kept");
    FakeStream stream("kept");
    const Job job;
    ProfSetStringW(job, nullptr, L"a", L"1");
    ProfSetOption(PROF_OPTION_CODE_PAGE, 12345);
    EXPECT_EQ(ProfSaveW(job, file, PROF_FORMAT_XFDF), PROF_ERR_SAVE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(ProfSaveToStream(job, &stream, PROF_FORMAT_XFDF), PROF_ERR_WRITE);
    EXPECT_EQ(ProfSaveToClipboard(job, nullptr, PROF_FORMAT_XFDF), PROF_ERR_WRITE);
    ProfSetOption(PROF_OPTION_CODE_PAGE, 1252);
    EXPECT_EQ(file.Bytes() + stream.bytes, "keptkept");
}

TEST(ProfileXmlTest, WhatSurvivesARoundTrip) {
    const Job job;
    Fill(job);
    const std::string xml = BytesOf(job, PROF_FORMAT_XML);
    FakeStream stream(xml);
    const Job again(ProfJobOpenStream(&stream));
    EXPECT_EQ(TreeOf(again), L"a<b>&'\"=\r\n\r\n\r\n\t\x1F<\u20AC>;l1{l&2{l3{l4{x=deep;}}}}inner=;empty{}")
        << "a list of the root's name is dropped, and a single CR or LF becomes both";
    const std::string text = BytesOf(again, PROF_FORMAT_TEXT);
    EXPECT_EQ(TreeOfBytes(text), TreeOf(again));
    FakeStream fromText(text);
    const Job third(ProfJobOpenStream(&fromText));
    EXPECT_EQ(TreeOf(third), TreeOf(again));
    EXPECT_EQ(BytesOf(third, PROF_FORMAT_XML), BytesOf(again, PROF_FORMAT_XML));
}

TEST(ProfileXmlTest, FilesAndTheClipboardCarryIt) {
    const FilePlace file;
    const Job job;
    Fill(job);
    ASSERT_EQ(ProfSaveW(job, file, PROF_FORMAT_XML), PROF_OK);
    EXPECT_EQ(file.Bytes(), BytesOf(job, PROF_FORMAT_XML));
    const Job exclusive(ProfJobOpenExclusiveW(file));
    EXPECT_EQ(ProfGetError(exclusive), PROF_OK);
    const std::wstring tree = TreeOf(exclusive);
    EXPECT_EQ(ProfSaveW(exclusive, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(file.Bytes(), BytesOf(exclusive, PROF_FORMAT_TEXT));
    EXPECT_EQ(ProfSaveToClipboard(job, nullptr, PROF_FORMAT_XML), PROF_OK);
    EXPECT_EQ(TreeOf(Job(ProfJobOpenClipboard(nullptr))), tree);
}

TEST(ProfileXmlTest, AFragmentIsItsEntriesAlone) {
    FakeStream stream;
    const Job job(ProfJobOpenStreamObjectW(&stream, L"[part]", 3));
    ProfSetStringW(job, nullptr, L"l/a", L"1");
    EXPECT_EQ(BytesOf(job, PROF_FORMAT_XML),
              Utf16(L"   <list name=\"l\">\r\n\t<item name=\"a\">1</item>\r\n   </list>\r\n"));
    EXPECT_EQ(
        BytesOf(job, PROF_FORMAT_XFDF),
        "   <field=\"l\">\r\n\t<field name=\"a\">\r\n\t <value>1</value>\r\n\t</field>\r\n   </field>\r\n");
    // The first line decides about the form of a fragment too.
    FakeStream whole(Utf16(kXmlLine +
                           L"<item name=\"a\">1</item>\r\n<list name=\"l\">\r\n</list>\r\n</list>\r\n"
                           L"<item name=\"b\">2</item>\r\n"));
    EXPECT_EQ(TreeOf(Job(ProfJobOpenStreamObjectW(&whole, L"x", 1))), L"a=1;l{}");
}

std::wstring TreeOfProfile(const std::wstring& lines) {
    return TreeOfBytes(
        Utf16Marked(kXmlLine + L"<profile>\n" + lines + L"</profile>\n<item name=\"x\">x</item>\n"));
}

TEST(ProfileXmlTest, ReadingRules) {
    const std::pair<const wchar_t*, const wchar_t*> kLinesAndTrees[] = {
        {L"<ITEM NAME=\"no\" name=\"a\" x=\"y\">1</item>rest\n", L"a=1;"},
        {L"<item name=\"a\">1</item><item name=\"b\">2</item>\n", L"a=1;"},
        {L"<item name=\"\">&unknown;&#65;&#x20ac;&&#X41;</item>\n", L"=&unknown;A\u20AC&;"},
        {L"<item name=\"a\">1&#x42</item>\n<item name=\"b\">&#x10041; &amp;lt;</item>\n", L"a=1B;b=A &lt;;"},
        {L"<list name=\"[l]\">\n<List name=\"m\">\n</LIST>\n</list >\n</List>\n", L"l{m{}}"},
        {L"<list name=\"l\">\n</list>\n<unknown>\n<item>\n<!DOCTYPE x\n", L"l{}"},
        {L"</list>\n<item name=\"a\">1</item>\n", L""},
        // Comments: on a line, before a tag, over lines, and one that stays open.
        {L"<!-- <item -->\n<!-- c --> <item name=\"a\">1</item>\n", L"a=1;"},
        {L"<!-- c\n<item name=\"a\">1</item>\n<x\t--> <item name=\"b\">2</item>\n", L"b=2;"},
        {L"<!--\n<c\n--> <item name=\"a\">1</item>\n", L"a=1;"},
        {L"<!---->\n<item name=\"a\">1</item>\n--><!-- -->\n<item name=\"b\">2</item>\n", L""},
        {L"<list name=\"l\">\n<!--c-->\n</list>\n<item name=\"a\">1</item>\n", L"l{}"},
    };
    for (const auto& [lines, tree] : kLinesAndTrees) EXPECT_EQ(TreeOfProfile(lines), tree) << lines;
    EXPECT_EQ(TreeOfBytes("<\n<Profile>\n<item name=\"a\">1</item>\n"), L"a=1;") << "a narrow file";
    EXPECT_EQ(TreeOfBytes("    "), L"");
}

// What was complete before the damage stays.
TEST(ProfileXmlTest, DamageKeepsWhatWasRead) {
    FakeStream stream(Utf16Marked(kXmlLine +
                                  L"<profile>\n<item name=\"a\">1</item>\n<list name=\"l\">\n</list>\n"
                                  L"<list name=\"lost\">\n<item name=\"b\">2\n</item>\n"));
    const Job job(ProfJobOpenStream(&stream));
    EXPECT_EQ(ProfGetError(job), PROF_ERR_FORMAT);
    EXPECT_EQ(TreeOf(job), L"a=1;l{}");
}

TEST(ProfileXfdfTest, WhatIsWrittenIsNotReadBack) {
    const Job job;
    Fill(job);
    FakeStream stream(BytesOf(job, PROF_FORMAT_XFDF));
    const Job again(ProfJobOpenStream(&stream));
    EXPECT_EQ(ProfGetError(again), PROF_ERR_FORMAT);
    EXPECT_EQ(TreeOf(again), L"");
}

std::wstring TreeOfFields(const std::wstring& lines) {
    return TreeOfBytes(Utf16Marked(kXmlLine + L"<xfdf x>\n" + lines + L"<item name=\"x\">x</item>\n"));
}

TEST(ProfileXfdfTest, ReadingRules) {
    const std::pair<const wchar_t*, const wchar_t*> kLinesAndTrees[] = {
        {L"<fields>\n<field name=\"a\">\n<value>1</value>\n", L"=1;"},
        {L"<field> name=\"a\">\n<VALUE>1</value> rest\n<FIELD>name=\"&lt;b\"\n<value>2</value>\n",
         L"a=1;a.<b=2;"},
        {L"<field>name=\"\"\n<field>name=\"b\"\n<value></value>\n", L".b=;"},
        {L"<field>name=\"a\"\n<value>1\n  2 \n\n3</value>\n</Field>\n<value>4</value>\n", L"a=1\r\n2 \r\n3;"},
    };
    for (const auto& [lines, tree] : kLinesAndTrees) EXPECT_EQ(TreeOfFields(lines), tree) << lines;
}

TEST(ProfileXfdfTest, AValueIsAsLongAsBeforeUnescaping) {
    FakeStream stream(Utf16Marked(kXmlLine + L"<xfdf x>\n<field>name=\"a\"\n<value>&lt;1</value>\n"));
    const Job job(ProfJobOpenStream(&stream));
    EXPECT_EQ(ProfGetStringLengthW(job, nullptr, L"a"), 5);
    const std::wstring value = ValueOf(job, L"a");
    EXPECT_EQ(value.size(), 5u);
    EXPECT_STREQ(value.c_str(), L"<1");
}

void ExpectBounded(const std::string& bytes) {
    FakeStream stream(bytes);
    const Job job(ProfJobOpenStream(&stream));
    const int32_t error = ProfGetError(job);
    EXPECT_TRUE(error == PROF_OK || error == PROF_ERR_FORMAT) << error;
    for (const uint32_t format : {PROF_FORMAT_TEXT, PROF_FORMAT_XML, PROF_FORMAT_XFDF}) {
        FakeStream target;
        EXPECT_EQ(ProfSaveToStream(job, &target, format), PROF_OK);
    }
}

TEST(ProfileXmlHostileTest, EveryPrefixLoads) {
    const Job job;
    Fill(job);
    const std::string xml = BytesOf(job, PROF_FORMAT_XML);
    const std::string xfdf =
        Utf16Marked(kXmlLine + L"<xfdf x>\n<field>name=\"a\"\n<value>&#x41;\n2</value>\n");
    for (const std::string& bytes : {xml, xfdf})
        for (size_t length = 0; length <= bytes.size(); ++length) ExpectBounded(bytes.substr(0, length));
}

TEST(ProfileXmlHostileTest, VeryDeepListsLoadAndSave) {
    std::string bytes = "<\n<profile>\n";
    for (int i = 0; i < 100'000; ++i) bytes += "<list name=\"l\">\n";
    ExpectBounded(bytes + "<item name=\"a\">1</item>\n");
}

// Each value has the names of all fields before it: ten megabytes of these would become many gigabytes.
TEST(ProfileXmlHostileTest, NamesOfFieldsDoNotMultiply) {
    std::string bytes = "<\n<xfdf >\n";
    for (int i = 0; i < 100'000; ++i) bytes += "<field>name=\"abc\"\n";
    for (int i = 0; i < 100'000; ++i) bytes += "<value></value>\n";
    FakeStream stream(bytes);
    const Job job(ProfJobOpenStream(&stream));
    EXPECT_EQ(ProfGetError(job), PROF_ERR_FORMAT);
}

} // namespace
} // namespace vxut::test
