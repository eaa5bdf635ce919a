#include "frame/job.h"

#include "tests/support/debug_listener.h"
#include "util/frame.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <regex>
#include <string>
#include <thread>
#include <vector>

namespace vxut {
namespace {

const clsModuleNode& Node(HUTILJOB job) { return *reinterpret_cast<const clsModuleNode*>(job); }

TEST(JobTest, SharesOneJobForEachName) {
    const HUTILJOB first = UtilJobOpen(L"A", 0);
    const HUTILJOB second = UtilJobOpen(L"A", UTIL_JOB_DEBUG_HEAPS);
    const HUTILJOB other = UtilJobOpen(L"a", 0);
    EXPECT_EQ(first, second);
    EXPECT_NE(first, other);
    EXPECT_EQ(Node(first).flags, 0u);
    EXPECT_EQ(UtilJobClose(first), UTIL_OK);
    EXPECT_EQ(UtilJobOpen(L"A", 0), first); // still there
    EXPECT_EQ(UtilJobClose(first), UTIL_OK);
    EXPECT_EQ(UtilJobClose(first), UTIL_OK);
    EXPECT_EQ(UtilJobClose(other), UTIL_OK);
}

TEST(JobTest, CutsLongNamesAndNeverFindsThem) {
    const std::wstring name(40, L'n');
    const HUTILJOB first = UtilJobOpen(name.c_str(), 0);
    const HUTILJOB second = UtilJobOpen(name.c_str(), 0);
    EXPECT_NE(first, second);
    EXPECT_EQ(Node(first).name, std::wstring(32, L'n'));
    EXPECT_EQ(UtilJobOpen(name.substr(0, 32).c_str(), 0), first);
    for (const HUTILJOB job : {first, first, second}) EXPECT_EQ(UtilJobClose(job), UTIL_OK);
}

TEST(JobTest, RefusesWhatIsNoJob) {
    EXPECT_EQ(UtilJobClose(nullptr), UTIL_OK);
    EXPECT_EQ(UtilJobOpen(nullptr, 0), nullptr);

    DebugListener listener;
    clsModuleNode stranger;
    stranger.referenceCount = 2;
    EXPECT_EQ(UtilJobClose(reinterpret_cast<HUTILJOB>(&stranger)), UTIL_OK); // lowered before it is looked up
    EXPECT_TRUE(listener.Lines().empty());
    EXPECT_EQ(UtilJobClose(reinterpret_cast<HUTILJOB>(&stranger)), UTIL_ERR_HANDLE);
    wchar_t message[128];
    _snwprintf(message, 128, L"        :Error: clsModuleList::Delete(%#p): Invalid handle\n", &stranger);
    EXPECT_TRUE(listener.Heard(message));
    EXPECT_EQ(stranger.referenceCount, 0u);
}

TEST(JobTest, UnlinksFromTheHeadTheMiddleAndTheTail) {
    for (const auto& order : {std::vector<int>{0, 1, 2}, {1, 0, 2}, {2, 1, 0}, {1, 2, 0}}) {
        const wchar_t* const names[] = {L"HEAD", L"MIDDLE", L"TAIL"};
        HUTILJOB jobs[3];
        for (int i = 0; i < 3; ++i) jobs[i] = UtilJobOpen(names[i], 0);
        for (const int closed : order) {
            EXPECT_EQ(UtilJobClose(jobs[closed]), UTIL_OK);
            jobs[closed] = nullptr;
            for (int i = 0; i < 3; ++i) {
                if (!jobs[i]) continue;
                EXPECT_EQ(UtilJobOpen(names[i], 0), jobs[i]);
                UtilJobClose(jobs[i]);
            }
        }
    }
}

// The text of a report line behind the columns of the channel.
std::wstring ReportText(const std::wstring& line) {
    const size_t start = line.find(L"        :");
    return start == std::wstring::npos ? line : line.substr(start + 9);
}

TEST(JobTest, TracesTheCallsOfTracedJobs) {
    DebugListener listener;
    const HUTILJOB job = UtilJobOpen(L"TRACED", UTIL_JOB_TRACE);
    EXPECT_NE(Node(job).stackSnapshot, nullptr);
    UtilJobOpen(L"TRACED", 7);
    UtilJobClose(job);
    UtilJobClose(job);
    wchar_t handle[32];
    _snwprintf(handle, 32, L"%#p", job);
    const std::wstring result = std::wstring(L"->") + handle + L"\n";
    const std::wstring close = std::wstring(L"UtilJobClose(") + handle + L") ['TRACED']\n";
    const std::vector<std::wstring> expected = {
        L"UtilJobOpen('TRACED',0x80000000)\n",
        L" " + result,
        L"UtilJobOpen('TRACED',0x00000007)\n",
        L" " + result,
        close,
        L" ->0\n",
        close,
        L" ->0\n",
    };
    std::vector<std::wstring> heard;
    for (const std::wstring& line : listener.Lines()) heard.push_back(ReportText(line));
    EXPECT_EQ(heard, expected);
}

TEST(JobTest, ExplainsFailuresOfTracedCalls) {
    DebugListener listener;
    EXPECT_EQ(UtilJobOpen(nullptr, UTIL_JOB_TRACE), nullptr);
    EXPECT_TRUE(listener.Heard(L":UtilJobOpen('(NULL)',0x80000000)\n"));
    clsModuleNode stranger;
    stranger.flags = UTIL_JOB_TRACE;
    stranger.referenceCount = 1;
    UtilJobClose(reinterpret_cast<HUTILJOB>(&stranger));
    EXPECT_TRUE(listener.Heard(L": Error: invalid module handle\n"));
    EXPECT_TRUE(listener.Heard(L": ->-2\n"));
}

TEST(JobTest, CutsLongReports) {
    DebugListener listener;
    const std::wstring name(3000, L'x');
    UtilJobClose(UtilJobOpen(name.c_str(), UTIL_JOB_TRACE));
    EXPECT_EQ(listener.Lines().size(), 4u);
}

TEST(JobTest, KeepsCountWhenThreadsShareAName) {
    std::vector<std::thread> threads;
    const HUTILJOB job = UtilJobOpen(L"SHARED", 0);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < 2000; ++i) UtilJobClose(UtilJobOpen(L"SHARED", 0));
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(Node(job).referenceCount, 1u);
    EXPECT_EQ(UtilJobClose(job), UTIL_OK);
}

} // namespace
} // namespace vxut
