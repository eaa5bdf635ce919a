#include "tests/host/vlm_fixture.h"

namespace vlm::test {

namespace {

using HtmlCommands = VlmTest;
using ZipCommands = VlmTest;

size_t Count(const std::string& text, const std::string& wanted) {
    size_t count = 0;
    for (size_t at = text.find(wanted); at != std::string::npos; at = text.find(wanted, at + 1)) ++count;
    return count;
}

} // namespace

TEST_F(ZipCommands, CreateReplacesAnArchiveOnceTheNewOneIsComplete) {
    create_directories(Folder() / L"in" / L"sub");
    WriteFile(L"in\\a.txt", "text");
    WriteFile(L"in\\b.log", "log");
    WriteFile(L"in\\sub\\c.log", "log");
    WriteFile(L"in\\old.zip", "old");
    Expect({
        {L"zip create in\\old.zip in\\absent", 1, "", "in\\absent: "},
        {L"zip create in\\old.zip", 2, "", "too few arguments"},
        {L"zip create no\\a.zip in", 1, "", "no\\a.zip: cannot be created"},
    });
    EXPECT_EQ(ReadFile(L"in\\old.zip"), "old");
    Expect({L"zip create in\\old.zip in in\\a.txt --pattern *.txt --recursive --comment note"});
    const std::string bytes = ReadFile(L"in\\old.zip");
    EXPECT_TRUE(bytes.ends_with("note"));
    EXPECT_EQ(Count(bytes, "PK\1\2"), 4u) << "a.txt, sub/, sub/c.log, in/a.txt";
    EXPECT_NE(bytes.find("in/a.txt"), std::string::npos);
    EXPECT_FALSE(IsThere(L"in\\old.zip.part"));
}

TEST_F(ZipCommands, ProgressEndsWithTheWorkDone) {
    WriteFile(L"a.txt", std::string(3000000, 'x'));
    const Answer answer = Run(L"zip create a.zip a.txt --progress");
    EXPECT_EQ(answer.exitCode, 0);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "[##############################] 100 % of 3 MB",
                        answer.errors);
    EXPECT_EQ(answer.out, "");
}

TEST_F(HtmlCommands, FilesAreConvertedBothWays) {
    WriteFile(L"a.htm", "<p>\xC3\xA4 &amp; b</p><ul><li>c</ul>");
    WriteFile(L"a.txt", "a < b\n\nc\r\n");
    WriteFile(L"narrow.txt", "\xE4");
    WriteFile(L"binary", std::string("a\0\1\0\0\0\0\0b\0\0c", 12));
    Expect({
        {L"html to-text a.htm", 0, "\xC3\xA4 & b\n- c\n\n"},
        {L"html from-text a.txt", 0, "<p>a &lt; b</p><p>c</p>\n"},
        {L"html from-text a.txt --placeholders", 0, "[_[p]_]a &lt; b[_[/p]_][_[p]_]c[_[/p]_]\n"},
        {L"html mask narrow.txt --encoding 1252", 0, "&auml;"},
        {L"html demask a.htm", 0, "<p>\xC3\xA4 & b</p><ul><li>c</ul>"},
        {L"html to-text absent", 1, "", "absent: "},
        {L"html to-text binary", 1, "", "not a text"},
        {L"html to-text a.htm b.htm", 2, "", "unexpected argument"},
    });
}

} // namespace vlm::test
