#include "frame/job.h"

#include "tests/support/debug_listener.h"
#include "util/frame.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace vxut {
namespace {

const clsModuleNode& Node(HUTILJOB job) { return *reinterpret_cast<const clsModuleNode*>(job); }

TEST(JobTest, SharesOneJobForEachName) {
    const HUTILJOB first = UtilJobOpen(L"A", 0);
    const HUTILJOB other = UtilJobOpen(L"a", 0);
    EXPECT_NE(first, other);
    EXPECT_EQ(UtilJobOpen(L"A", UTIL_JOB_DEBUG_HEAPS), first);
    EXPECT_EQ(Node(first).flags, 0u);
    EXPECT_EQ(UtilJobClose(first), UTIL_OK);
    EXPECT_EQ(UtilJobOpen(L"A", 0), first); // still there
    for (const HUTILJOB job : {first, first, other}) EXPECT_EQ(UtilJobClose(job), UTIL_OK);
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

TEST(JobTest, UnlinksFromTheHeadTheMiddleAndTheTail) {
    constexpr const wchar_t* kNames[] = {L"HEAD", L"MIDDLE", L"TAIL"};
    for (const auto& order : {std::vector<int>{0, 1, 2}, {1, 0, 2}, {2, 1, 0}, {1, 2, 0}}) {
        std::map<int, HUTILJOB> jobs;
        for (int i = 0; i < 3; ++i) jobs[i] = UtilJobOpen(kNames[i], 0);
        for (const int closed : order) {
            EXPECT_EQ(UtilJobClose(jobs.extract(closed).mapped()), UTIL_OK);
            for (const auto& [i, job] : jobs) {
                EXPECT_EQ(UtilJobOpen(kNames[i], 0), job);
                UtilJobClose(job);
            }
        }
    }
}

TEST(JobTest, RefusesWhatIsNoJob) {
    EXPECT_EQ(UtilJobClose(nullptr), UTIL_OK);
    for (const uint32_t flags : {0u, UTIL_JOB_TRACE}) {
        const DebugListener listener;
        clsModuleNode stranger;
        stranger.flags = flags;
        stranger.referenceCount = 2;
        const auto handle = reinterpret_cast<HUTILJOB>(&stranger);
        EXPECT_EQ(UtilJobClose(handle), UTIL_OK); // lowered before it is looked up
        EXPECT_EQ(UtilJobClose(handle), UTIL_ERR_HANDLE);
        EXPECT_EQ(stranger.referenceCount, 0u);
        wchar_t message[128];
        _snwprintf(message, 128, L"Error: clsModuleList::Delete(%#p): Invalid handle\n", handle);
        EXPECT_TRUE(listener.Heard(message));
        EXPECT_EQ(UtilJobOpen(nullptr, flags), nullptr);
        EXPECT_EQ(listener.Heard(L":UtilJobOpen('(NULL)',0x80000000)\n"), flags != 0);
        EXPECT_EQ(listener.Heard(L": Error: invalid module handle\n"), flags != 0);
        EXPECT_EQ(listener.Heard(L": ->-2\n"), flags != 0);
    }
}

TEST(JobTest, TracesTheCallsOfTracedJobs) {
    const DebugListener listener;
    const HUTILJOB job = UtilJobOpen(L"TRACED", UTIL_JOB_TRACE);
    EXPECT_NE(Node(job).stackSnapshot->entries[0].address, nullptr);
    UtilJobOpen(L"TRACED", 7);
    UtilJobClose(job);
    UtilJobClose(job);
    wchar_t handle[32];
    _snwprintf(handle, 32, L"%#p", job);
    const std::wstring opened = std::wstring(L" ->") + handle + L"\n";
    const std::wstring closed = std::wstring(L"UtilJobClose(") + handle + L") ['TRACED']\n ->0\n";
    std::wstring heard;
    for (const std::wstring& line : listener.Lines()) heard += line.substr(line.find(L"        :") + 9);
    EXPECT_EQ(heard, L"UtilJobOpen('TRACED',0x80000000)\n" + opened + L"UtilJobOpen('TRACED',0x00000007)\n" +
                         opened + closed + closed);
}

TEST(JobTest, KeepsCountWhenThreadsShareAName) {
    const HUTILJOB job = UtilJobOpen(L"SHARED", 0);
    std::vector<std::thread> threads;
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
