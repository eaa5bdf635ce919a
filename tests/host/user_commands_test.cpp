// The commands for countries, sorting, download and help.
#include "tests/host/vlm_fixture.h"
#include "tests/support/http_server.h"

namespace vlm::test {

namespace {

using vxut::test::HttpClient;
using vxut::test::HttpOk;
using vxut::test::HttpServer;

class UserCommands : public VlmTest {
protected:
    void SetUp() override {
        VlmTest::SetUp();
        SetEnvironmentVariableW(L"TMP", Folder().c_str());
    }

    // Whether a download has left its folder in the temp directory.
    bool IsAnythingLeft() const {
        for (const auto& entry : std::filesystem::directory_iterator(Folder()))
            if (entry.path().filename().wstring().starts_with(L"vlm-download-")) return true;
        return false;
    }
};

} // namespace

TEST_F(UserCommands, CountriesAndLanguages) {
    Expect({
        {L"country Germany --field calling", 0, "49\n"},
        {L"country at fr-CH --field iso", 0, "AT\nCH\n"},
        {L"country --json D", 0,
         "[{\"key\": \"D\", \"name\": \"Germany\", \"native\": \"Deutschland\", \"iso\": \"DE\", \"locale\": "
         "1031, "
         "\"calling\": 49, \"currency\": \"\xE2\x82\xAC\", \"codepage\": 1252}]\n"},
        {L"country AQ", 0,
         "Name                  Antarctica\nNative name\nISO 3166 code\nLocale\nCalling code\nCurrency\n"
         "ANSI code page\n"},
        {L"country nowhere DE --field name", 1, "Germany\n", "nowhere: unknown country"},
        {L"country DE --field size", 2, "", "unknown field: size"},
        {L"country", 2, "", "too few arguments"},
        {L"language de-DE de", 0, "de-DE                 1031\nde                    7\n"},
        {L"language de-DE tlh", 1, "de-DE                 1031\n", "tlh: unknown language"},
    });
    const Answer list = Run(L"country --list");
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_NE(list.out.find("\nGermany\n"), std::string::npos);
}

TEST_F(UserCommands, LinesAreSortedAsTheLocaleDoes) {
    WriteFile(L"lines.txt", "b\r\nZ\nA\n\xC3\xA4\na");
    Expect({
        {L"sort lines.txt", 0, "a\nA\n\xC3\xA4\nb\nZ\n"},
        {L"sort lines.txt --ignore-case --reverse", 0, "Z\nb\n\xC3\xA4\nA\na\n"},
        {L"sort none.txt", 1, "", "none.txt: "},
    });
}

TEST_F(UserCommands, DownloadsArriveOrLeaveNothing) {
    const std::string body(200000, 'x');
    HttpServer server([&](HttpClient& client, const std::string& path) {
        client.Send(path == "/file.txt" ? HttpOk(body)
                                        : "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n");
    });
    WriteFile(L"old.txt", "old");
    Expect({
        {L"download " + server.Url(L"/file.txt"), 0, "", "100 %"},
        {L"download " + server.Url(L"/file.txt") + L" -o other.txt", 0, "", "100 %"},
        {L"download " + server.Url(L"/none") + L" --output old.txt", 3, "", "INET_E_OBJECT_NOT_FOUND"},
        {L"download " + server.Url(L"/"), 2, "", "--output"},
        {L"download " + server.Url(L"/file.txt") + L" -o none\\a.txt", 1, "", "none\\a.txt: "},
        {L"download", 2, "", "too few arguments"},
    });
    EXPECT_TRUE(ReadFile(L"file.txt") == body);
    EXPECT_TRUE(ReadFile(L"other.txt") == body);
    EXPECT_EQ(ReadFile(L"old.txt"), "old");
    EXPECT_FALSE(IsThere(L"other.txt.part"));
    EXPECT_FALSE(IsAnythingLeft());
}

TEST_F(UserCommands, HelpDemoShowsWhereEachNumberComesFrom) {
    Expect({{L"help-demo --press", 0,
             "F1: the contents, as no number was pushed and the window has none\n"
             "F1: 101: the mark beside the field that has the focus\n"
             "F1: 500: the first mark in the window\n"
             "F1: 900: the number that was pushed last\n"}});
}

} // namespace vlm::test
