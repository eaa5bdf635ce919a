#include "tests/host/vlm_fixture.h"

#include <psapi.h>
#include <util/trace_viewer.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <map>
#include <memory>
#include <regex>
#include <sstream>
#include <thread>
#include <vector>

namespace vlm::test {

namespace {

constexpr ULONGLONG kPatience = 20000;

// The window that the session's block names.
HWND NamedWindow() {
    const vxut::clsAutoCloseHandle mapping(OpenFileMappingW(FILE_MAP_READ, FALSE, UTIL_TRACE_BLOCK));
    if (!mapping) return nullptr;
    const vxut::clsAutoUnmap view(MapViewOfFile(mapping.Get(), FILE_MAP_READ, 0, 0, sizeof(UtilTraceBlock)));
    return reinterpret_cast<HWND>(static_cast<const UtilTraceBlock*>(view.Get())->window);
}

// Runs vlm trace beside other processes. Nothing else of the session may trace meanwhile.
class TraceCommand : public VlmTest {
protected:
    void StartViewer(const std::wstring& options = {}) {
        viewer_ = std::make_unique<RunningProgram>(L"vlm.exe", L"trace --seconds 60 " + options, Folder(),
                                                   L"trace");
        const ULONGLONG end = GetTickCount64() + kPatience;
        while (!IsWindow(NamedWindow()) && GetTickCount64() < end) Sleep(5);
        ASSERT_TRUE(IsWindow(NamedWindow()));
    }

    // What it has shown, one line each.
    std::vector<std::string> StopViewer() {
        SendMessageTimeoutW(NamedWindow(), WM_CLOSE, 0, 0, SMTO_NORMAL, kPatience, nullptr);
        const Answer answer = viewer_->Wait();
        EXPECT_EQ(answer.exitCode, 0) << answer.errors;
        std::vector<std::string> lines;
        std::istringstream out(answer.out);
        for (std::string line; std::getline(out, line);) lines.push_back(line);
        return lines;
    }

    // Puts records into the mailslot as a process does.
    static void Send(const std::vector<std::string>& records) {
        const vxut::clsAutoCloseFile slot(CreateFileW(UTIL_TRACE_MAILSLOT, GENERIC_WRITE,
                                                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        ASSERT_TRUE(slot);
        for (const std::string& record : records) {
            const std::string bytes = record + '\r';
            DWORD written = 0;
            EXPECT_TRUE(
                ::WriteFile(slot.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
        }
    }

    // A record of this thread.
    static std::string Record(int digit, const std::string& text) {
        char columns[64];
        _snprintf(columns, sizeof columns, "01:02:03.004 %08lx/00 %d  ", GetCurrentThreadId(), digit);
        return columns + text;
    }

private:
    std::unique_ptr<RunningProgram> viewer_;
};

using Strings = std::vector<std::string>;

} // namespace

TEST_F(TraceCommand, ShowsTheLinesOfAllProcessesWhole) {
    StartViewer();
    constexpr int kProcesses = 3;
    std::vector<std::unique_ptr<RunningProgram>> hosts;
    for (int i = 0; i < kProcesses; ++i)
        hosts.push_back(std::make_unique<RunningProgram>(L"vxut_test_child.exe", L"trace-lines", Folder(),
                                                         L"host" + std::to_wstring(i)));
    for (auto& host : hosts) EXPECT_EQ(host->Wait().exitCode, 0);
    const Strings lines = StopViewer();

    // The process of a thread that has ended before its lines are read is unknown: "?".
    const std::regex layout(
        "(vxut_test_child\\.exe:\\d+|\\?\\S*) +CHILD   : [0-9:.]+ ([0-9a-f]{8})/.. \\d  line (\\d+) .*");
    std::map<std::string, int> nextOf;
    int joins = 0, leaves = 0;
    for (const std::string& line : lines) {
        std::smatch match;
        if (std::regex_match(line, match, layout)) {
            EXPECT_EQ(std::stoi(match[3]), nextOf[match[1].str() + "/" + match[2].str()]++);
            continue;
        }
        joins += line.find("  ++VXUT_TEST_CHILD.EXE ") != std::string::npos;
        leaves += line.find("  --VXUT_TEST_CHILD.EXE ") != std::string::npos;
        EXPECT_EQ(line.find("!!"), std::string::npos) << line;
    }
    EXPECT_EQ(joins, kProcesses);
    EXPECT_EQ(leaves, kProcesses);
    EXPECT_EQ(nextOf.size(), kProcesses * 3u);
    for (const auto& [thread, next] : nextOf) EXPECT_EQ(next, 100) << thread;
}

// The system terminates the other threads, wherever they are, before the library sends the leave line.
TEST_F(TraceCommand, ShowsTheLeaveLineOfAProcessThatEndsWhileItsThreadsWrite) {
    constexpr int kRounds = 8;
    StartViewer(L"--filter nothing");
    for (int i = 0; i < kRounds; ++i)
        EXPECT_EQ(
            RunningProgram(L"vxut_test_child.exe", L"exit-while-tracing", Folder(), L"host").Wait().exitCode,
            0);
    int leaves = 0;
    for (const std::string& line : StopViewer()) leaves += line.find("  --VXUT21.DLL ") != std::string::npos;
    EXPECT_EQ(leaves, kRounds);
}

TEST_F(TraceCommand, FiltersByTextAndWeight) {
    const Strings records = {
        Record(1, "info: small"),       Record(2, "WRN: small"),
        Record(3, "[thread] ERR: x"),   Record(4, "        : Error: y"),
        Record(5, "plain, SMALL"),      Record(6, "an Error: inside"),
        "its second record, small too", Record(7, "++x [C:\\A.EXE] [C:\\]"),
    };
    const std::pair<const wchar_t*, std::vector<size_t>> rows[] = {
        {L"--weight error", {2, 3, 7}},
        {L"--weight warning", {1, 2, 3, 7}},
        {L"--filter SmAll", {0, 1, 4, 6, 7}},
        {L"--filter small --weight warning", {1, 7}},
    };
    for (const auto& [options, shown] : rows) {
        StartViewer(options);
        Send(records);
        const Strings lines = StopViewer();
        ASSERT_EQ(lines.size(), shown.size()) << options;
        for (size_t i = 0; i < shown.size(); ++i)
            EXPECT_PRED_FORMAT2(testing::IsSubstring, records[shown[i]], lines[i]) << options;
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
    const std::string text =
        std::string(UTIL_TRACE_RECORD_BYTES - Record(1, "").size() - 1, 'a') + "\xC3\xA4";
    const std::string line = Record(1, text);
    StartViewer();
    const auto cut = line.size() - 1; // within a character
    Send({line.substr(0, cut), line.substr(cut), Record(2, "\xE4 is no UTF-8"), Record(3, "\x1B[31mred"),
          Record(4,
                 "a\xE2\x80\xAE"
                 "b\xE2\x81\xA6"
                 "c\xE2\x80\x8F"
                 "d\xE2\x80\x8B"
                 "e\xC2\xAD")});
    const Strings shown = {text, "\xC3\xA4 is no UTF-8", "\xE2\x90\x9B[31mred",
                           "a\\u202Eb\\u2066c\\u200Fd\\u200Be\\u00AD"};
    const Strings lines = StopViewer();
    ASSERT_EQ(lines.size(), shown.size());
    for (size_t i = 0; i < shown.size(); ++i) EXPECT_TRUE(lines[i].ends_with("  " + shown[i])) << lines[i];
}

// Bytes of memory that the viewer uses.
size_t ViewerMemory() {
    DWORD id = 0;
    GetWindowThreadProcessId(NamedWindow(), &id);
    const vxut::clsAutoCloseHandle process(
        OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, id));
    PROCESS_MEMORY_COUNTERS counters = {};
    EXPECT_TRUE(K32GetProcessMemoryInfo(process.Get(), &counters, sizeof counters));
    return counters.PagefileUsage;
}

// Sends records as fast as it can: parts of a line without end, and join lines of threads that do not exist.
void Flood(const std::atomic<bool>& isOver) {
    const vxut::clsAutoCloseFile slot(CreateFileW(UTIL_TRACE_MAILSLOT, GENERIC_WRITE,
                                                  FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                                  FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OVERLAPPED, nullptr));
    const vxut::clsAutoCloseHandle done(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const std::string part = std::string(UTIL_TRACE_RECORD_BYTES, 'x') + '\r';
    std::string join(4000, 'p');
    for (unsigned thread = 1; !isOver; thread += 2) {
        // A plain write to a full mailslot would not return when the viewer ends.
        OVERLAPPED request = {};
        request.hEvent = done.Get();
        DWORD written = 0;
        ::WriteFile(slot.Get(), part.data(), static_cast<DWORD>(part.size()), nullptr, &request);
        if (WaitForSingleObject(done.Get(), 50) != WAIT_OBJECT_0) CancelIo(slot.Get());
        GetOverlappedResult(slot.Get(), &request, &written, TRUE);
        _snprintf(join.data(), join.size(), "01:02:03.004 %08x/00 1  ++x [C:\\", thread);
        join[std::strlen(join.data())] = 'p';
        join.back() = ']';
        COPYDATASTRUCT copy = {UTIL_TRACE_LINE, static_cast<DWORD>(join.size()), join.data()};
        SendMessageTimeoutW(NamedWindow(), WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&copy), SMTO_NORMAL, 1000,
                            nullptr);
    }
}

TEST_F(TraceCommand, HoldsLittleAndEndsWhileRecordsArriveWithoutEnd) {
    constexpr size_t kMaxGrowth = size_t{48} << 20;
    StartViewer(L"--filter nothing");
    const size_t before = ViewerMemory();
    std::atomic<bool> isOver{false};
    std::vector<std::thread> senders;
    for (int i = 0; i < 3; ++i) senders.emplace_back([&] { Flood(isOver); });
    size_t most = 0;
    for (int i = 0; i < 30; ++i) {
        Sleep(100);
        most = std::max(most, ViewerMemory());
    }
    const ULONGLONG start = GetTickCount64();
    StopViewer();
    EXPECT_LT(GetTickCount64() - start, kPatience);
    isOver = true;
    for (std::thread& sender : senders) sender.join();
    EXPECT_LT(most - before, kMaxGrowth);
}

TEST_F(TraceCommand, RefusesASecondViewerAndLeavesNothingBehind) {
    StartViewer();
    Expect({
        {L"trace --seconds 1", 1, "", "another viewer is running"},
        {L"trace --seconds -1", 2, "", "invalid number of seconds: -1"},
        {L"trace --weight heavy", 2, "", "unknown weight: heavy"},
    });
    StopViewer();
    EXPECT_EQ(NamedWindow(), nullptr);
    EXPECT_EQ(FindWindowW(UTIL_TRACE_WINDOW_CLASS, nullptr), nullptr);
}

} // namespace vlm::test
