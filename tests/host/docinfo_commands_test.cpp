#include "tests/host/vlm_fixture.h"

namespace vlm::test {

namespace {

class DocinfoCommand : public VlmTest {
protected:
    void SetUp() override {
        VlmTest::SetUp();
        create_directories(Folder() / L"sub");
        WriteFile(L"a.htm", "<html><head><title>One \"1\" \\ &auml;</title></head>");
        WriteFile(L"sub\\b.html",
                  "<html><head><title>Two</title><meta name=\"author\" content=\"Ann\"></head>");
        WriteFile(L"c.bin", "?");
    }
};
using DateCommands = VlmTest;

} // namespace

TEST_F(DocinfoCommand, PrintsFilesPatternsAndFolders) {
    Expect({
        {L"docinfo a.htm --fields Title", 0, "a.htm\n  Title               One \"1\" \\ \xC3\xA4\n"},
        {L"docinfo *.htm* --recursive --json --fields title,author", 0,
         "{\"path\":\"a.htm\",\"exists\":true,\"title\":\"One \\\"1\\\" \\\\ \xC3\xA4\"}\n"
         "{\"path\":\"sub\\\\b.html\",\"exists\":true,\"title\":\"Two\",\"author\":\"Ann\"}\n"},
        {L"docinfo sub --fields title", 0, "sub\\b.html\n  Title               Two\n"},
        {L"docinfo missing.doc sub\\b.html --json --fields author", 1,
         "{\"path\":\"missing.doc\",\"exists\":false}\n"
         "{\"path\":\"sub\\\\b.html\",\"exists\":true,\"author\":\"Ann\"}\n"},
        {L"docinfo missing.doc", 1, "missing.doc\n  cannot be opened\n"},
        {L"docinfo *.none", 1, "", "*.none: no files"},
        {L"docinfo a.htm --fields colour", 2, "", "unknown field: colour"},
        {L"docinfo a.htm --timeout -1", 2, "", "a time-out is not negative"},
    });
    const std::string all = Run(L"docinfo c.bin").out;
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "  Modified            20", all);
    EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 2) << "nothing but the time of the file";
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "[######", Run(L"docinfo a.htm --progress").errors);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "PDF (.pdf, or by content)\n", Run(L"docinfo --help").out);
}

TEST_F(DateCommands, ReadWriteAndConvert) {
    Expect({
        {L"date parse 20261113163000", 0, "2026-11-13T16:30:00\n"},
        {L"date parse \"Fri, 13 Nov 2026 16:30:00 +0100\"", 0, "2026-11-13T15:30:00\n"},
        {L"date parse 3.4.26 --locale de-DE --expand-year", 0, "2026-04-03T00:00:00\n"},
        {L"date parse 3/4/2026 --locale 1033 --complete", 0, "2026-03-04T00:00:00\n"},
        {L"date parse 3/4 --locale en-US --complete", 1, "", "not a date of this locale: 3/4"},
        {L"date parse nonsense", 1, "", "not a date: nonsense"},
        {L"date format 20261113163000 --locale de-DE", 0, "13.11.2026 16:30:00\n"},
        {L"date format 20261113 --locale nowhere", 2, "", "unknown locale: nowhere"},
        {L"date utc 20260230", 1, "", "cannot be converted: 20260230"},
        {L"date saving 1", 2, "", "a year is between 1601 and 9999"},
    });
    const std::string utc = Run(L"date utc 20260701120000").out;
    EXPECT_EQ(utc.size(), 20u) << utc;
}

} // namespace vlm::test
