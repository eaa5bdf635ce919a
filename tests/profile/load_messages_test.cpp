// What the debug channel reports about damaged files.
#include "profile/job.h"
#include "tests/support/debug_listener.h"
#include "tests/support/fake_stream.h"

#include <gtest/gtest.h>

#include <string>

namespace vxut {
namespace {

TEST(LoadMessagesTest, EachDamageHasItsMessageAndItsLine) {
    const struct {
        const char* lines;
        const wchar_t* report;
    } kRows[] = {
        {"text", L"2: 'prof::xml: bad format'"},
        {"<!-- c --> text", L"2: 'prof::xml: bad format'"},
        {"<!--\ntext", L"3: 'prof::xml: bad format'"},
        {"<item name=\"a\">1</item>", L"2: 'prof::xml::item bad nesting level (becomes negative)'"},
        {"<list name=\"a\">", L"2: 'prof::xml::list: bad nesting level'"},
        {"</list>", L"2: 'prof::xml::profile: bad nesting level (becomes negative)'"},
        {"</profile>", L"2: 'prof::xml::profile: bad nesting level (should be 0)'"},
        {"</xfdf>", L"2: 'prof::xml::xfdf: bad nesting level (should be 0)'"},
        {"<profile>\n<profile>", L"3: 'prof::xml::profile: bad nesting level (should be -1)'"},
        {"<profile>\n<xfdf >", L"3: 'prof::xml::xfdf: bad nesting level (should be -1)'"},
        {"<profile>\n<list name=\"l\">\n\n</profile>",
         L"4: 'prof::xml::profile: bad nesting level (should be 0)'"},
        {"<profile>\n<item NAME=\"a\">", L"3: 'prof::xml::item empty name'"},
        {"<profile>\n<item name=\"a>", L"3: 'prof::xml::item no end tag'"},
        {"<profile>\n<item name=\"a\"", L"3: 'prof::xml::item no end tag (2)'"},
        {"<profile>\n<item name=\"a\">1</ITEM>", L"3: 'prof::xml::item no '</item>' tag found'"},
        {"<profile>\n<list >", L"3: 'prof::xml::list: name is empty'"},
        {"<profile>\n<list name=\"a>", L"3: 'prof::xml::list: name is unfinished'"},
        {"<xfdf >\ntext", L"3: 'prof::xml::xfdf: bad format ('<' expected)'"},
        {"<xfdf >\n<field>", L"3: 'prof::xml::field: no name found'"},
        {"<xfdf >\n<field>name=\"a", L"3: 'prof::xml::field: name unfinished'"},
        {"<xfdf >\n<value>1\n2", L"5: 'prof::xml::value: bad format (missing next line)'"},
    };
    for (const auto& row : kRows) {
        test::FakeStream stream(std::string("<?xml version=\"1.0\"\n") + row.lines);
        DebugListener listener;
        ProfJob job;
        job.OpenStream(&stream, 0);
        EXPECT_EQ(job.LastError(), PROF_ERR_FORMAT) << row.lines;
        EXPECT_TRUE(listener.Heard((std::wstring(L"PROF load error line ") + row.report).c_str()))
            << row.lines << ": " << testing::PrintToString(listener.Last());
    }
}

TEST(LoadMessagesTest, FieldsOfAWholeFileAreDamage) {
    for (const char* line : {"<value>", "<field>name=\"a\"", "</field>"}) {
        test::FakeStream stream(std::string("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n") + line);
        DebugListener listener;
        ProfJob job;
        job.OpenStream(&stream, 0);
        EXPECT_EQ(job.LastError(), PROF_ERR_FORMAT) << line;
        EXPECT_TRUE(listener.Heard(L"PROF load error line 2: 'prof::xml::")) << line;
        EXPECT_TRUE(listener.Heard(L": bad format (negative level)'")) << line;
    }
}

} // namespace
} // namespace vxut
