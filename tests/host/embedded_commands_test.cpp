#include "base/owners.h"
#include "tests/host/vlm_fixture.h"

namespace vlm::test {

namespace {

class EmbeddedCommands : public VlmTest {
protected:
    void SetUp() override {
        VlmTest::SetUp();
        create_directories(Folder() / L"in");
        for (int i = 0; i < 3000; ++i) bytes_ += static_cast<char>(i % 253);
        WriteFile(L"in\\a.bin", bytes_);
        WriteFile(L"in\\\u00E4.txt", "text");
        WriteFile(L"in\\empty.txt", "");
    }

    std::string bytes_;
};

// The clipboard is the session's: tests with its name run alone.
class ClipboardCommands : public VlmTest {
protected:
    ClipboardCommands() { Empty(); }
    ~ClipboardCommands() override { Empty(); }

    static void Empty() { EXPECT_TRUE(OpenClipboard(nullptr) && EmptyClipboard() && CloseClipboard()); }
};

} // namespace

TEST_F(EmbeddedCommands, FilesAreEmbeddedAndExtracted) {
    Expect({
        {L"profile embed a.prf in\\*"},
        {L"profile embed a.prf in\\*.txt --list Secret/Files --password pw"},
        {L"profile embed a.prf in\\a.bin --item One/Item"},
        {L"profile embed a.prf in\\\u00E4.txt --item One/Item --shared"},
        {L"profile get a.prf Secret/Files/File.Entry/Name", 0, "\xC3\xA4.txt\n"},
        {L"profile convert a.prf b.xml --form xml"},
        {L"profile convert b.xml c.prf --packed"},
        {L"profile extract c.prf out"},
        {L"profile extract c.prf secret --list Secret/Files --password pw"},
        {L"profile extract c.prf item.txt --item One/Item"},
    });
    EXPECT_EQ(ReadFile(L"out\\a.bin"), bytes_);
    EXPECT_EQ(ReadFile(L"out\\\u00E4.txt") + ReadFile(L"secret\\\u00E4.txt") + ReadFile(L"item.txt"),
              "texttexttext");
    EXPECT_FALSE(IsThere(L"out\\empty.txt"));
    EXPECT_EQ(ReadFile(L"a.prf").find("File.Entry"), std::string::npos) << "UTF-16";
}

TEST_F(EmbeddedCommands, WhatFailsSaysSoAndChangesNothing) {
    WriteFile(L"a.prf",
              "[/]\r\n{\r\nn=v\r\n[Bad]\r\n{\r\n[File.Entry]\r\n{\r\nName=..\\x\r\nContents=YQ==\r\n}\r\n"
              "[File.Entry]\r\n{\r\nName=good\r\nContents=YQ==\r\n}\r\n}\r\n}\r\n");
    const std::string before = ReadFile(L"a.prf");
    const vxut::clsAutoCloseFile busy(CreateFileW((Folder() / L"in" / L"a.bin").c_str(), GENERIC_WRITE, 0,
                                                  nullptr, OPEN_EXISTING, 0, nullptr));
    Expect({
        {L"profile embed a.prf none.*", 1, "", "none.*: there is no such file"},
        {L"profile embed a.prf in\\*", 1, "", "in\\*: "},
        {L"profile embed a.prf none.txt --item x", 1, "", "none.txt: "},
        {L"profile embed a.prf in\\* --item x --list y", 2, "", "not both"},
        {L"profile embed a.prf in\\* --item x//y", 2, "", "empty name"},
        {L"profile embed a.prf", 2, "", "too few arguments"},
        {L"profile embed new.prf none.*", 1, "", "none.*: there is no such file"},
        {L"profile extract a.prf out", 1, "", "there are no embedded files"},
        {L"profile extract a.prf out --list None", 1, "", "None: there is no such list"},
        {L"profile extract a.prf no\\out --list Bad", 1, "", "no\\out: "},
        {L"profile extract a.prf out --list Bad", 1, "", "not all files could be written: "},
        {L"profile extract a.prf x.bin --item none", 1, "", "none: there is no such item"},
        {L"profile extract a.prf no\\x.bin --item n", 1, "", "no\\x.bin: "},
        {L"profile extract none.prf out", 1, "", "none.prf: "},
    });
    EXPECT_EQ(ReadFile(L"a.prf"), before);
    EXPECT_EQ(ReadFile(L"out\\good"), "a");
    EXPECT_FALSE(IsThere(L"x"));
    EXPECT_FALSE(IsThere(L"x.bin"));
    EXPECT_FALSE(IsThere(L"new.prf"));
}

TEST_F(ClipboardCommands, AProfileIsCopiedAndPasted) {
    Expect({
        {L"profile paste b.prf", 1, "", "the clipboard contains no profile"},
        {L"profile set a.prf List/n \u65E5"},
        {L"profile copy a.prf --form xml"},
        {L"profile paste b.prf"},
        {L"profile paste c.prf --packed --form xml"},
        {L"profile get c.prf List/n", 0, "\xE6\x97\xA5\n"},
        {L"profile paste no\\d.prf", 1, "", "no\\d.prf: "},
        {L"profile copy none.prf", 1, "", "none.prf: "},
        {L"profile copy a.prf --form html", 2, "", "unknown form"},
    });
    EXPECT_EQ(ReadFile(L"b.prf"), ReadFile(L"a.prf"));
    EXPECT_EQ(ReadFile(L"c.prf").substr(0, 4), "ZRzQ");
}

} // namespace vlm::test
