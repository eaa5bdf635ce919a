#include "tests/host/vlm_fixture.h"

#include <util/trace_viewer.h>

#include <algorithm>
#include <map>
#include <memory>
#include <regex>
#include <sstream>
#include <vector>

namespace vlm::test {

namespace {

using vxut::clsAutoCloseFile;
using vxut::clsAutoCloseHandle;
using vxut::clsAutoUnmap;

constexpr ULONGLONG kPatience = 20000;

// The window that the session's block names.
HWND NamedWindow() {
    const clsAutoCloseHandle mapping(OpenFileMappingW(FILE_MAP_READ, FALSE, UTIL_TRACE_BLOCK));
    if (!mapping) return nullptr;
    const clsAutoUnmap view(MapViewOfFile(mapping.Get(), FILE_MAP_READ, 0, 0, sizeof(UtilTraceBlock)));
    return reinterpret_cast<HWND>(static_cast<const UtilTraceBlock*>(view.Get())->window);
}

// Runs vlm trace beside other processes. Nothing else of the session may trace meanwhile.
class TraceCommand : public VlmTest {
protected:
    void StartViewer(const std::wstring& options = {}, HANDLE output = nullptr) {
        viewer_ = std::make_unique<RunningProgram>(L"vlm.exe", L"trace --seconds 60 " + options, Folder(),
                                                   L"trace", output);
        const ULONGLONG end = GetTickCount64() + kPatience;
        while (!IsWindow(NamedWindow()) && GetTickCount64() < end) Sleep(5);
        ASSERT_TRUE(IsWindow(NamedWindow()));
    }

    // What it has shown, one line each.
    std::vector<std::string> StopViewer() {
        PostMessageW(NamedWindow(), WM_CLOSE, 0, 0);
        const Answer answer = viewer_->Wait();
        EXPECT_EQ(answer.exitCode, 0) << answer.errors;
        std::vector<std::string> lines;
        std::istringstream out(answer.out);
        for (std::string line; std::getline(out, line);) lines.push_back(line);
        return lines;
    }

    // Puts records into the mailslot as a process does.
    static void Send(const std::vector<std::string>& records) {
        const clsAutoCloseFile slot(CreateFileW(UTIL_TRACE_MAILSLOT, GENERIC_WRITE,
                                                FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                                FILE_ATTRIBUTE_NORMAL, nullptr));
        ASSERT_TRUE(slot);
        for (const std::string& record : records) {
            const std::string bytes = record + '\r';
            DWORD written = 0;
            EXPECT_TRUE(
                ::WriteFile(slot.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
        }
    }

    // A record of this thread.
    static std::string Record(int digit, const std::string& text, const std::string& module = {}) {
        char columns[64];
        _snprintf(columns, sizeof columns, "01:02:03.004 %08lx/00 %d  ", GetCurrentThreadId(), digit);
        return module + columns + text;
    }

    // The lines behind the column of the process, each from its text on.
    static std::vector<std::string> Texts(const std::vector<std::string>& lines) {
        std::vector<std::string> texts;
        for (const std::string& line : lines)
            texts.push_back(std::regex_replace(line, std::regex("^(\\S* +)(.*: )?[0-9:.]+ \\S+ \\d +"), ""));
        return texts;
    }

    RunningProgram& Viewer() { return *viewer_; }

    void TearDown() override {
        viewer_.reset();
        VlmTest::TearDown();
    }

private:
    std::unique_ptr<RunningProgram> viewer_;
};

using Strings = std::vector<std::string>;

} // namespace

TEST_F(TraceCommand, ShowsTheLinesOfAllProcessesWhole) {
    StartViewer(L"--output trace.txt");
    constexpr int kProcesses = 3;
    std::vector<std::unique_ptr<RunningProgram>> hosts;
    for (int i = 0; i < kProcesses; ++i)
        hosts.push_back(std::make_unique<RunningProgram>(L"vxut_test_child.exe", L"trace-lines", Folder(),
                                                         L"host" + std::to_wstring(i)));
    for (auto& host : hosts) EXPECT_EQ(host->Wait().exitCode, 0);
    const Strings lines = StopViewer();

    const std::regex layout(
        "(vxut_test_child\\.exe:\\d+) +CHILD   : [0-9:.]+ ([0-9a-f]{8})/.. \\d  (\\[\\w+\\] )?line (\\d+)");
    std::map<std::string, int> nextOf;
    std::map<std::string, int> named;
    int joins = 0, leaves = 0;
    for (const std::string& line : lines) {
        std::smatch match;
        if (std::regex_match(line, match, layout)) {
            EXPECT_EQ(std::stoi(match[4]), nextOf[match[1].str() + "/" + match[2].str()]++);
            ++named[match[3]];
            continue;
        }
        joins += line.find("  ++VXUT_TEST_CHILD.EXE ") != std::string::npos;
        leaves += line.find("  --VXUT_TEST_CHILD.EXE ") != std::string::npos;
        EXPECT_EQ(line.find("!!"), std::string::npos) << line;
    }
    EXPECT_EQ(joins, kProcesses);
    EXPECT_EQ(leaves, kProcesses);
    EXPECT_EQ(nextOf.size(), kProcesses * 3u);
    for (const auto& [thread, next] : nextOf) EXPECT_EQ(next, 60) << thread;
    const std::map<std::string, int> expected = {{"", 180}, {"[reader] ", 180}, {"[writer] ", 180}};
    EXPECT_EQ(named, expected);
    std::string whole;
    for (const std::string& line : lines) whole += line + "\n";
    EXPECT_EQ(ReadFile(L"trace.txt"), whole);
}

TEST_F(TraceCommand, TellsTheVersionOfTheLibraryInAJoin) {
    StartViewer();
    Run(L"debug --module IMPORT \"Warning: \u00E4\u20AC\"");
    const Strings texts = Texts(StopViewer());
    ASSERT_EQ(texts.size(), 3u);
    const std::regex join(
        "\\+\\+VXUT21\\.DLL \\d+\\.\\d+\\.\\d+\\.\\d+ \\(.*\\) \\[.*\\\\VLM\\.EXE\\] \\[.*\\\\\\]");
    EXPECT_TRUE(std::regex_match(texts[0], join)) << texts[0];
    EXPECT_EQ(texts[1], "Warning: \xC3\xA4\xE2\x82\xAC");
    EXPECT_EQ(texts[2].substr(0, 13), "--VXUT21.DLL ");
}

TEST_F(TraceCommand, HostsThatRunAlreadyJoinAndLeave) {
    HANDLE read, write;
    SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
    ASSERT_TRUE(CreatePipe(&read, &write, &inheritable, 0));
    clsAutoCloseHandle input(read), feed(write);
    SetHandleInformation(write, HANDLE_FLAG_INHERIT, 0);
    RunningProgram host(L"vlm.exe", L"debug", Folder(), L"host", nullptr, read);
    input.Reset();
    const auto say = [&](const char* text) {
        DWORD written = 0;
        ::WriteFile(feed.Get(), text, static_cast<DWORD>(strlen(text)), &written, nullptr);
        Sleep(200);
    };
    say("nobody listens\n");
    StartViewer();
    say("one\n");
    const Strings first = Texts(StopViewer());
    say("lets the viewer go\n");
    StartViewer();
    say("two\n");
    feed.Reset();
    EXPECT_EQ(host.Wait().exitCode, 0);
    const Strings second = Texts(StopViewer());
    ASSERT_EQ(first.size(), 2u);
    EXPECT_EQ(first[0].substr(0, 2), "++");
    EXPECT_EQ(first[1], "one");
    ASSERT_EQ(second.size(), 3u);
    EXPECT_EQ(second[0].substr(0, 2), "++");
    EXPECT_EQ(second[1], "two");
    EXPECT_EQ(second[2].substr(0, 2), "--");
}

TEST_F(TraceCommand, FiltersByTextAndWeight) {
    const Strings records = {
        Record(1, "info: small"),
        Record(2, "HINT: Small"),
        Record(3, "WRN: small"),
        Record(4, "[thread] ERR: x"),
        Record(5, "        : Error: y"),
        Record(6, "plain, SMALL"),
        Record(7, "warning: and on"),
        "its second record",
        Record(8, "an Error: inside"),
        "its second record, small too",
        Record(9, "++x [C:\\A.EXE] [C:\\]"),
    };
    const struct {
        const wchar_t* options;
        std::vector<size_t> shown; // indexes of the records
    } rows[] = {
        {L"", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}},     {L"--weight error", {3, 4, 10}},
        {L"--weight warning", {2, 3, 4, 6, 7, 10}},    {L"--weight hint", {1, 2, 3, 4, 6, 7, 10}},
        {L"--weight info", {0, 1, 2, 3, 4, 6, 7, 10}}, {L"--filter SmAll", {0, 1, 2, 5, 9, 10}},
        {L"--filter small --weight hint", {1, 2, 10}},
    };
    for (const auto& row : rows) {
        StartViewer(row.options);
        Send(records);
        const Strings lines = StopViewer();
        EXPECT_EQ(lines.size(), row.shown.size()) << row.options;
        for (size_t i = 0; i < std::min(lines.size(), row.shown.size()); ++i)
            EXPECT_PRED_FORMAT2(testing::IsSubstring, records[row.shown[i]], lines[i]) << row.options;
    }
}

TEST_F(TraceCommand, NoticesGapsInTheCountOfAProcess) {
    StartViewer(L"--filter nothing");
    Send({Record(8, "a"), Record(9, "b"), Record(0, "c"), Record(3, "d"), Record(2, "e"),
          Record(5, "++joins again [C:\\A.EXE]"), Record(6, "f")});
    const std::string label = "vxut_host_tests.exe:" + std::to_string(GetCurrentProcessId());
    const Strings lines = StopViewer();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], "!! " + label + ": lines are missing here, at least 2");
    EXPECT_EQ(lines[1], "!! " + label + ": lines are missing here, at least 8");
}

TEST_F(TraceCommand, PutsRecordsTogetherAndMakesBytesFitToRead) {
    const std::string columns = Record(1, "");
    const std::string text = std::string(UTIL_TRACE_RECORD_BYTES - columns.size() - 1, 'a') + "\xC3\xA4 end";
    const std::string line = columns + text;
    StartViewer();
    Send({
        line.substr(0, UTIL_TRACE_RECORD_BYTES),
        line.substr(UTIL_TRACE_RECORD_BYTES), // cuts a character
        Record(2, "next"),
        Record(3, "\xE4 is no UTF-8"),
        Record(4, "\x1B[31mred"),
        "not of this library",
        std::string(UTIL_TRACE_RECORD_BYTES, 'b'),
    });
    const Strings texts = Texts(StopViewer());
    ASSERT_EQ(texts.size(), 6u);
    EXPECT_EQ(texts[0], text);
    EXPECT_EQ(texts[1], "next");
    EXPECT_EQ(texts[2], "\xC3\xA4 is no UTF-8");
    EXPECT_EQ(texts[3], "\xE2\x90\x9B[31mred");
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "not of this library", texts[4]);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, std::string(UTIL_TRACE_RECORD_BYTES, 'b'), texts[5]);
}

TEST_F(TraceCommand, TakesMessagesAndAnswersQueries) {
    StartViewer();
    const auto send = [](ULONG_PTR purpose, const char* data, size_t bytes) {
        COPYDATASTRUCT copy = {purpose, static_cast<DWORD>(bytes), const_cast<char*>(data)};
        return SendMessageW(NamedWindow(), WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&copy));
    };
    EXPECT_NE(send(UTIL_TRACE_QUERY_UTF8, "", 0), 0);
    EXPECT_NE(send(UTIL_TRACE_QUERY_CAPABILITY, "", 0), 0);
    EXPECT_EQ(send(99, "x", 2), 0);
    const std::string record = Record(1, "by message");
    EXPECT_NE(send(UTIL_TRACE_LINE, record.c_str(), record.size() + 1), 0);
    send(UTIL_TRACE_LINE, record.c_str(), record.size() - 8); // without a zero byte
    const std::string huge = Record(2, std::string(20000, 'x'));
    send(UTIL_TRACE_LINE, huge.c_str(), huge.size() + 1);
    EXPECT_EQ(send(UTIL_TRACE_LINE, nullptr, 0), 0);
    const Strings texts = Texts(StopViewer());
    ASSERT_EQ(texts.size(), 4u);
    EXPECT_EQ(texts[0], "by message");
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "at least 9", texts[1]); // the same digit again
    EXPECT_EQ(texts[2], "by");
    EXPECT_LT(texts[3].size(), 5000u);
}

TEST_F(TraceCommand, RefusesASecondViewerAndLeavesNothingBehind) {
    StartViewer();
    Expect({L"trace --seconds 1", 1, "", "another viewer is running"});
    StopViewer();
    EXPECT_EQ(NamedWindow(), nullptr);
    EXPECT_EQ(FindWindowW(UTIL_TRACE_WINDOW_CLASS, nullptr), nullptr);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "nobody listens", Run(L"env").out);
    Expect({L"trace --seconds 0", 0, ""});
}

TEST_F(TraceCommand, EndsWhenItsOutputHasGone) {
    SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
    const clsAutoCloseFile output(CreateFileW((Folder() / L"output").c_str(), GENERIC_READ, FILE_SHARE_READ,
                                              &inheritable, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    StartViewer(L"", output.Get());
    Send({Record(1, "line")});
    const Answer answer = Viewer().Wait();
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "the output could not be written", answer.errors);
    EXPECT_EQ(NamedWindow(), nullptr);
}

TEST_F(TraceCommand, SaysWhatIsWrong) {
    Expect({
        {L"trace --seconds -1", 2, "", "not a number of seconds: -1"},
        {L"trace --seconds 1000000000", 2, "", "not a number of seconds"},
        {L"trace --weight heavy", 2, "", "unknown weight: heavy"},
        {L"trace --seconds 0 --output none\\x.txt", 1, "", "none\\x.txt: "},
    });
}

} // namespace vlm::test
