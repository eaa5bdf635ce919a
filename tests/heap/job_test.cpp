#include "heap/job.h"

#include "tests/support/debug_listener.h"
#include "tests/support/guarded_pages.h"
#include "util/frame.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <string>
#include <thread>
#include <vector>

namespace vxut {
namespace {

const clsModuleNode& Node(HUTILJOB job) { return *reinterpret_cast<const clsModuleNode*>(job); }

TEST(JobTest, SharesAJobUnlessItsNameWasCut) {
    const std::wstring name(40, L'n');
    const HUTILJOB first = UtilJobOpen(name.c_str(), 0);
    const HUTILJOB second = UtilJobOpen(name.c_str(), 0);
    EXPECT_NE(first, second);
    EXPECT_EQ(UtilJobOpen(name.substr(0, 32).c_str(), 0), first);
    for (const HUTILJOB job : {first, first, second}) EXPECT_EQ(UtilJobClose(job), UTIL_OK);
}

TEST(JobTest, RefusesInvalidHandles) {
    const DebugListener listener;
    clsModuleNode stranger;
    stranger.flags = 0;
    stranger.referenceCount = 2;
    const auto handle = reinterpret_cast<HUTILJOB>(&stranger);
    EXPECT_EQ(UtilJobClose(nullptr), UTIL_OK);
    EXPECT_EQ(UtilJobClose(handle), UTIL_OK); // lowered before it is looked up
    EXPECT_EQ(UtilJobClose(handle), UTIL_ERR_HANDLE);
    EXPECT_TRUE(listener.Heard(L"Error: clsModuleList::Delete("));
    EXPECT_EQ(UtilJobOpen(nullptr, 0), nullptr);
}

bool IsLockFree() {
    bool isFree = false;
    std::thread([&] {
        isFree = JobLock().TryEnter();
        if (isFree) JobLock().Leave();
    }).join();
    return isFree;
}

TEST(JobTest, RefusesHandlesAndNamesThatLeadNowhere) {
    const test::GuardedPages pages, readOnly(PAGE_READONLY);
    wchar_t* const unterminated = pages.Last<wchar_t>(5);
    std::wmemset(unterminated, L'x', 5);
    for (void* const wild :
         {static_cast<void*>(unterminated), pages.Untouchable(), reinterpret_cast<void*>(1),
          reinterpret_cast<void*>(0xDEADDEADDEADDEAD), reinterpret_cast<void*>(UINTPTR_MAX)}) {
        for (const bool listens : {false, true}) {
            DebugListener listener;
            listener.isAttached = listens;
            EXPECT_EQ(UtilJobOpen(static_cast<const wchar_t*>(wild), UTIL_JOB_TRACE), nullptr) << wild;
            EXPECT_EQ(UtilJobClose(static_cast<HUTILJOB>(wild)), UTIL_ERR_HANDLE) << wild;
            EXPECT_EQ(listener.Heard(L"Error: UtilJobOpen("), listens);
            EXPECT_EQ(listener.Heard(L"Error: clsModuleList::Delete("), listens);
            EXPECT_TRUE(IsLockFree()) << wild;
        }
    }
    EXPECT_EQ(UtilJobClose(reinterpret_cast<HUTILJOB>(readOnly.Last<clsModuleNode>(1))), UTIL_ERR_HANDLE);
    EXPECT_TRUE(IsLockFree());
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
