#include "tests/support/http_server.h"
// After winsock2.h, which is to come first:
#include "tests/support/debug_listener.h"
#include "tests/support/import_table.h"

#include "net/download.h"
#include "net/download_error.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

namespace vxut {
namespace {

using test::HttpClient;
using test::HttpOk;
using test::HttpServer;

struct Reported {
    uint32_t kind;
    int32_t value;
    std::wstring text;
};

// Keeps what a download reports, and deletes the file.
class Reports : public UtilDownloadCallback {
public:
    Reports() : UtilDownloadCallback{&kTable} {}
    ~Reports() {
        if (!path.empty()) DeleteFileW(path.c_str());
    }

    bool HasPercent(int32_t value) const {
        const clsCriticalSectionScope scope(lock_);
        for (const Reported& reported : all)
            if (reported.kind == UTIL_DOWNLOAD_PROGRESS && reported.value == value) return true;
        return false;
    }
    std::string Bytes() const {
        std::ifstream file(std::filesystem::path(path), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::vector<Reported> all;
    std::wstring path;

private:
    static int32_t STDMETHODCALLTYPE Report(UtilDownloadCallback* self, uint32_t kind, int32_t value,
                                            const wchar_t* text) {
        auto& reports = *static_cast<Reports*>(self);
        const clsCriticalSectionScope scope(reports.lock_);
        reports.all.push_back({kind, value, text ? text : L""});
        if (kind == UTIL_DOWNLOAD_DONE) reports.path = text;
        return 0;
    }
    static constexpr UtilDownloadCallbackTable kTable = {Report};

    mutable clsCriticalSection lock_;
};

HRESULT Get(const std::wstring& url, Reports& reports, uint64_t patience = 1000) {
    return DownloadFile(url.c_str(), &reports, patience);
}

TEST(DownloadTest, AFileArrivesWithProgress) {
    const std::string body(300000, 'x');
    HttpServer server([&](HttpClient& client, const std::string&) { client.Send(HttpOk(body)); });
    Reports reports;
    const DebugListener listener;
    ASSERT_EQ(Get(server.Url(L"/folder/list.csv?a=b.txt#c"), reports), S_OK);
    EXPECT_TRUE(reports.Bytes() == body);
    EXPECT_EQ(reports.path.substr(reports.path.rfind(L'.')), L".csv");
    EXPECT_NE(reports.path.find(L"DL"), std::wstring::npos);
    EXPECT_TRUE(reports.HasPercent(100));
    EXPECT_EQ(reports.all.back().kind, uint32_t{UTIL_DOWNLOAD_DONE});
    EXPECT_EQ(reports.all.back().value, 100);
    EXPECT_FALSE(listener.Heard(L"ThreadAttachInput")) << listener.Last();
}

TEST(DownloadTest, InputThatCannotBeAttachedIsReported) {
    test::ImportPatch patch(GetModuleHandleW(nullptr));
    patch.Replace(
        "AttachThreadInput", +[](DWORD, DWORD, BOOL) WINAPI -> BOOL {
            SetLastError(ERROR_INVALID_PARAMETER);
            return FALSE;
        });
    HttpServer server([](HttpClient& client, const std::string&) { client.Send(HttpOk("x")); });
    Reports reports;
    const DebugListener listener;
    EXPECT_EQ(Get(server.Url(L"/a"), reports), S_OK);
    EXPECT_TRUE(listener.Heard(L"::Viewer::clsDownloadThread)::ThreadAttachInput(): 00000057"))
        << listener.Last();
}

TEST(DownloadTest, AnswersThatAreNotTheFileFail) {
    const std::tuple<const char*, HRESULT> kRows[] = {
        {"HTTP/1.1 404 Not Found\r\nContent-Length: 3\r\n\r\nabc", INET_E_OBJECT_NOT_FOUND},
        {"HTTP/1.1 410 Gone\r\nContent-Length: 0\r\n\r\n", INET_E_OBJECT_NOT_FOUND},
        {"HTTP/1.1 401 Unauthorized\r\nContent-Length: 0\r\n\r\n", INET_E_AUTHENTICATION_REQUIRED},
        {"HTTP/1.1 403 Forbidden\r\nContent-Length: 2\r\n\r\nno", INET_E_DOWNLOAD_FAILURE},
        {"HTTP/1.1 500 Error\r\nContent-Length: 2\r\n\r\nno", INET_E_DOWNLOAD_FAILURE},
        {"HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nless", INET_E_DOWNLOAD_FAILURE},
        {"", INET_E_DOWNLOAD_FAILURE},
        {"garbage\r\nwithout end", INET_E_DOWNLOAD_FAILURE},
        {"HTTP/1.1 302 Found\r\nLocation: file:///C:/windows/win.ini\r\nContent-Length: 0\r\n\r\n",
         INET_E_REDIRECT_FAILED},
    };
    for (const auto& [answer, expected] : kRows) {
        HttpServer server([&, sent = std::string(answer)](HttpClient& client, const std::string&) {
            client.Send(sent);
            client.Reset();
        });
        Reports reports;
        EXPECT_EQ(Get(server.Url(L"/a.txt"), reports), expected) << answer;
        ASSERT_FALSE(reports.all.empty());
        EXPECT_EQ(reports.all.back().kind, uint32_t{UTIL_DOWNLOAD_FAILED}) << answer;
        EXPECT_EQ(reports.all.back().text, DownloadErrorText(expected).Text()) << answer;
    }
}

TEST(DownloadTest, UnannouncedAndLongerBodiesArrive) {
    const std::string body(50000, 'y');
    const std::tuple<std::string, size_t> kRows[] = {
        {"HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + body, body.size()},
        {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nabcde\r\n0\r\n\r\n", 5},
        {"HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n" + body, 10},
        {"HTTP/1.1 200 OK\r\nX: " + std::string(100000, 'h') + "\r\nContent-Length: 3\r\n\r\nabc", 3},
    };
    for (const auto& [answer, size] : kRows) {
        HttpServer server([&, &sent = answer](HttpClient& client, const std::string&) { client.Send(sent); });
        Reports reports;
        EXPECT_EQ(Get(server.Url(L"/a"), reports), S_OK) << answer.substr(0, 60);
        EXPECT_EQ(reports.Bytes().size(), size) << answer.substr(0, 60);
    }
}

TEST(DownloadTest, RedirectsAreFollowedUnlessTheyHaveNoEnd) {
    HttpServer server([&](HttpClient& client, const std::string& path) {
        const std::string target = path == "/once" ? "/file" : "/ring";
        if (path == "/file") client.Send(HttpOk("found"));
        client.Send("HTTP/1.1 302 Found\r\nLocation: " + target +
                    "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
    });
    Reports found;
    EXPECT_EQ(Get(server.Url(L"/once"), found), S_OK);
    EXPECT_EQ(found.Bytes(), "found");
    Reports ring;
    EXPECT_EQ(Get(server.Url(L"/ring"), ring, 5000), INET_E_REDIRECT_FAILED);
}

TEST(DownloadTest, SilentServersEndTheCallAndNobodyIsCalledAfterwards) {
    for (const char* const start : {"", "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nabc"}) {
        HttpServer* running = nullptr;
        HttpServer server([&](HttpClient& client, const std::string&) {
            client.Send(start);
            running->Stall();
        });
        running = &server;
        Reports reports;
        PostThreadMessageW(GetCurrentThreadId(), WM_APP, 0, 0); // nobody reads it
        EXPECT_EQ(Get(server.Url(L"/a"), reports, 500), INET_E_CONNECTION_TIMEOUT) << start;
        EXPECT_LT(reports.all.size(), size_t{60}) << "an unread message wakes the caller once";
        EXPECT_EQ(reports.all.back().text, L"INET_E_CONNECTION_TIMEOUT");
        const size_t count = reports.all.size();
        Sleep(300);
        EXPECT_EQ(reports.all.size(), count);
    }
}

TEST(DownloadTest, PlacesThatAreNoServerFail) {
    for (const wchar_t* const url :
         {L"", L"http://127.0.0.1:1/a", L"http://nowhere.invalid/a", L"odd:thing", L"http://",
          L"C:\\no such file.txt", L"file:///C:/no%20such%20file.txt", L"\x1\x2"}) {
        Reports reports;
        EXPECT_LT(Get(url, reports, 5000), 0) << url;
        EXPECT_EQ(reports.all.back().kind, uint32_t{UTIL_DOWNLOAD_FAILED}) << url;
    }
    Reports reports;
    EXPECT_LT(Get(L"http://127.0.0.1:1/" + std::wstring(100000, L'a'), reports, 5000), 0);
}

TEST(DownloadTest, StoppingTheThreadAbortsTheTransfer) {
    const auto thread = MakeCounted<clsDownloadThread>(L"http://127.0.0.1/", L"", nullptr);
    EXPECT_EQ(thread->OnProgress(1, 2, BINDSTATUS_DOWNLOADINGDATA, nullptr), S_OK);
    Reports reports;
    const auto reporting = MakeCounted<clsDownloadThread>(L"http://127.0.0.1/", L"", &reports);
    const std::tuple<ULONG, ULONG, int32_t> kRows[] = {
        {1, 3, 33}, {2, 3, 67}, {5, 0, 0}, {9, 3, 100}, {1, 200, 1}};
    for (const auto& [progress, maximum, percent] : kRows) {
        EXPECT_EQ(reporting->OnProgress(progress, maximum, BINDSTATUS_DOWNLOADINGDATA, nullptr), S_OK);
        EXPECT_EQ(reports.all.back().value, percent);
    }
    HttpServer server([&](HttpClient& client, const std::string&) {
        client.Send("HTTP/1.1 200 OK\r\nContent-Length: 10000000\r\n\r\n");
        while (client.Send(std::string(1000, 'z'))) Sleep(1);
    });
    const auto stopped = MakeCounted<clsDownloadThread>(server.Url(L"/a").c_str(), L"", nullptr);
    ASSERT_TRUE(stopped->ThreadStart());
    Sleep(200);
    stopped->ThreadEnd(false, 10000, false);
    ASSERT_EQ(stopped->State(), kThreadNone);
    EXPECT_EQ(stopped->Status(), E_ABORT);
}

TEST(DownloadTest, WildCallbacksAreRefused) {
    const UtilDownloadCallbackTable empty = {nullptr};
    UtilDownloadCallback callbacks[] = {
        {nullptr}, {&empty}, {reinterpret_cast<UtilDownloadCallbackTable*>(8)}};
    for (UtilDownloadCallback& callback : callbacks)
        EXPECT_EQ(UtilDownloadFile(L"http://x/", &callback), E_POINTER);
    EXPECT_EQ(UtilDownloadFile(nullptr, nullptr), INET_E_INVALID_URL);
}

TEST(DownloadTest, ExtensionsAreThoseOfThePath) {
    const std::tuple<const wchar_t*, const wchar_t*> kRows[] = {
        {L"http://h/a.b/c.TXT?x=1.y", L".TXT"},
        {L"http://example.com", L""},
        {L"http://example.com/", L""},
        {L"http://h/a.txt#b.c", L".txt"},
        {L"http://h/a.b|c", L""},
        {L"http://h/a.", L""},
        {L"file:C:\\x\\y.doc", L".doc"},
        {L"http://h/a.tar.gz", L".gz"},
        {L"a.b:c", L""},
        {L"http://h/a.123456789012345678901234567890", L""},
        {L"http://h?a/b.c", L""},
    };
    for (const auto& [url, extension] : kRows) EXPECT_STREQ(ExtensionOfUrl(url).Text(), extension) << url;
}

TEST(HttpAnswerTest, HeadsAreJudged) {
    const std::tuple<uint32_t, const wchar_t*, HRESULT, int64_t> kRows[] = {
        {200, L"HTTP/1.1 200 OK\r\ncontent-length:  12 \r\n", S_OK, 12},
        {200, L"Content-Length: 12\r\nContent-Encoding: gzip\r\n", S_OK, -1},
        {200, L"Content-Encoding: identity\nContent-Length: 0", S_OK, 0},
        {206, L"Transfer-Encoding: chunked\r\nContent-Length: 5\r\n", S_OK, -1},
        {200, L"Content-Length: 99999999999999999999\r\n", S_OK, -1},
        {200, L"Content-Length: -5\r\n", S_OK, -1},
        {399, nullptr, S_OK, -1},
        {400, L"A: b", INET_E_DOWNLOAD_FAILURE, -1},
        {200, L"HTTP/1.0 200 OK\r\n\r\n", INET_E_DOWNLOAD_FAILURE, -1},
        {407, L":\r\n\r\n", INET_E_AUTHENTICATION_REQUIRED, -1},
    };
    for (const auto& [status, headers, refusal, announced] : kRows) {
        const scHttpAnswer answer = JudgeAnswer(status, headers);
        EXPECT_EQ(answer.refusal, refusal) << status;
        EXPECT_EQ(answer.announcedBytes, announced) << (headers ? headers : L"null");
    }
}

TEST(DownloadErrorTest, CodesHaveTheirNames) {
    EXPECT_STREQ(DownloadErrorText(static_cast<HRESULT>(0x800C0002)).Text(), L"INET_E_INVALID_URL");
    EXPECT_STREQ(DownloadErrorText(static_cast<HRESULT>(0x800C001C)).Text(),
                 L"INET_E_DOMINJECTIONVALIDATION");
    EXPECT_STREQ(DownloadErrorText(static_cast<HRESULT>(0x800C0300)).Text(),
                 L"INET_E_CANNOT_REPLACE_SFP_FILE");
    EXPECT_EQ(Find(DownloadErrorText(E_ABORT).Text(), L"unknown error during download: "), 0);
}

} // namespace
} // namespace vxut
