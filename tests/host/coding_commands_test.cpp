#include "tests/host/vlm_fixture.h"

namespace vlm::test {

namespace {
using CodingCommands = VlmTest;
} // namespace

TEST_F(CodingCommands, FilesBecomeTextAndFilesAgain) {
    std::string bytes;
    for (int i = 0; i < 5000; ++i) bytes += static_cast<char>(i % 251);
    WriteFile(L"a.bin", bytes);
    WriteFile(L"short.bin", std::string("\0\xFF!", 3));
    WriteFile(L"old.bin", "old content");
    Expect({
        {L"encode short.bin", 0, "AP8h\n"},
        {L"encode a.bin plain.txt"},
        {L"encode a.bin --compress packed.txt"},
        {L"decode plain.txt b.bin"},
        {L"decode packed.txt old.bin"},
    });
    EXPECT_EQ(ReadFile(L"b.bin"), bytes);
    EXPECT_EQ(ReadFile(L"old.bin"), bytes);
    EXPECT_EQ(ReadFile(L"plain.txt").size(), size_t{6668});
    EXPECT_EQ(ReadFile(L"packed.txt").substr(0, 3), "@2@");
    EXPECT_LT(ReadFile(L"packed.txt").size(), size_t{1000});

    WriteFile(L"empty.txt", "");
    Expect({{L"encode empty.txt", 0, "\n"}, {L"decode empty.txt c.bin"}});
    EXPECT_TRUE(IsThere(L"c.bin"));
}

TEST_F(CodingCommands, StandardInputIsReadUntilItsEnd) {
    const std::string bytes(100000, 'x');
    const std::string text = RunWithInput(L"encode -", bytes).out;
    EXPECT_EQ(text.substr(0, 8) + text.substr(text.size() - 5), "eHh4eHh4eA==\n");
    EXPECT_EQ(RunWithInput(L"decode - a.bin", text).exitCode, 0);
    EXPECT_EQ(ReadFile(L"a.bin"), bytes);
    EXPECT_EQ(RunWithInput(L"encode --compress -", "").out, "\n");
    EXPECT_EQ(RunWithInput(L"html to-text", "a &amp; b").out, "a & b\n");
    EXPECT_EQ(RunWithInput(L"html mask -", "\xC3\xA4").out, "&auml;");
}

TEST_F(CodingCommands, DamagedTextAndMissingFilesLeaveTheTarget) {
    WriteFile(L"damaged.txt", "@2@ZAAAAFF6Ul9QYWNrZWQAeNpL");
    WriteFile(L"target.bin", "old content");
    Expect({
        {L"decode damaged.txt target.bin", 1, "", "damaged.txt: the text is damaged"},
        {L"decode none.txt target.bin", 1, "", "none.txt: "},
        {L"encode none.bin", 1, "", "none.bin: "},
        {L"encode target.bin none\\a.txt", 1, "", "none\\a.txt: "},
        {L"decode damaged.txt", 2, "", "OUT"},
    });
    EXPECT_EQ(ReadFile(L"target.bin"), "old content");
}

} // namespace vlm::test
