#include "threads/thread.h"

#include "tests/support/import_table.h"
#include "trace/thread_names.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>
#include <utility>
#include <vector>

namespace vxut {
namespace {

// A thread whose body is given as a function.
class TestThread : public clsThreadBase {
public:
    using Body = std::function<uint32_t(TestThread&)>;

    explicit TestThread(Body itsBody) : clsThreadBase("TestThread"), body(std::move(itsBody)) {}
    ~TestThread() override { ThreadEnd(false, 30000, true); }

    uint32_t ThreadBody() override { return body(*this); }
    bool ThreadWaitsForMessages() const override { return waitsForMessages; }
    bool ThreadOwnsWindows() const override { return ownsWindows; }
    bool ThreadWaitsAlertably() const override { return waitsAlertably; }

    const Body body;
    bool waitsForMessages = false, ownsWindows = true, waitsAlertably = false;
};

uint32_t WaitForStop(clsThreadBase& thread) {
    for (int32_t index; thread.ThreadWait(-1, index);) {
    }
    return 7;
}

TEST(ThreadStartTest, StartsStopsAndStartsAgain) {
    DWORD id = 0;
    TestThread thread([&](TestThread& self) {
        EXPECT_STREQ(FindThreadName(id = GetCurrentThreadId()), "TestThread");
        return WaitForStop(self);
    });
    EXPECT_EQ(thread.ThreadEnd(false, -1, false), kThreadNotKilled);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(thread.State(), kThreadNone);
        ASSERT_TRUE(thread.ThreadStart());
        EXPECT_TRUE(thread.ThreadStart()); // it runs already
        EXPECT_EQ(thread.State(), kThreadRunning);
        EXPECT_EQ(thread.ExitCode(), -1);
        EXPECT_EQ(thread.ThreadEnd(false, -1, false), kThreadNotKilled);
        EXPECT_EQ(thread.ExitCode(), 7);
        EXPECT_EQ(FindThreadName(id), nullptr);
    }
}

TEST(ThreadStartTest, StopsFromWithinAndRestartsWhatHasEndedByItself) {
    std::atomic<int> round = 0;
    TestThread thread([&](TestThread& self) -> uint32_t {
        EXPECT_EQ(self.ThreadEnd(false, -1, true), kThreadNotKilled); // only sets the event
        return WaitForStop(self), ++round == 2 ? throw 1 : 5;
    });
    while (round < 2) {
        ASSERT_TRUE(thread.ThreadStart());
        while (thread.State() != kThreadEnded) Sleep(1);
        EXPECT_EQ(thread.ExitCode(), -1);
    }
    EXPECT_EQ(thread.ThreadEnd(false, 0, false), kThreadNotKilled);
    EXPECT_EQ(thread.ExitCode(), E_UNEXPECTED); // an exception ends the thread only
}

TEST(ThreadStartTest, FailsWithoutTheEventThatStopsIt) {
    test::ImportPatch imports(GetModuleHandleW(nullptr));
    ASSERT_TRUE(imports.Replace(
        "CreateEventW", +[](SECURITY_ATTRIBUTES*, BOOL, BOOL, LPCWSTR) WINAPI -> HANDLE { return nullptr; }));
    TestThread thread([](TestThread& self) { return WaitForStop(self); });
    imports.Restore();
    EXPECT_FALSE(thread.ThreadStart());
    EXPECT_EQ(thread.State(), kThreadNone);
    EXPECT_GE(Find(thread.ErrorText().Text(), L"Cannot create thread (stack size 16 KiB)"), 0);
}

TEST(ThreadEndTest, LeavesALateThreadAliveOrKillsIt) {
    for (const bool ownsWindows : {false, true}) {
        clsEvent go(EventReset::kAutomatic);
        TestThread thread([&](TestThread&) { return go.Wait(INFINITE), 5u; });
        thread.ownsWindows = ownsWindows;
        ASSERT_TRUE(thread.ThreadStart());
        for (const int timeout : {0, 20})
            EXPECT_EQ(thread.ThreadEnd(false, timeout, false), kThreadNotKilled);
        EXPECT_EQ(thread.State(), kThreadRunning);
        go.Set();
        EXPECT_EQ(thread.ThreadEnd(false, -1, false), kThreadNotKilled);
        EXPECT_EQ(thread.ExitCode(), 5);
        ASSERT_TRUE(thread.ThreadStart());
        EXPECT_EQ(thread.ThreadEnd(false, 20, true), kThreadKilled);
        EXPECT_EQ(thread.State(), kThreadNone);
        EXPECT_EQ(thread.ExitCode(), 0);
    }
}

TEST(ThreadEndTest, ASecondEnderWaitsForTheFirst) {
    TestThread thread([](TestThread&) { return Sleep(100), 0u; });
    ASSERT_TRUE(thread.ThreadStart());
    const auto end = [&] {
        EXPECT_EQ(thread.ThreadEnd(false, -1, false), kThreadNotKilled);
        EXPECT_EQ(thread.State(), kThreadNone);
    };
    std::thread other(end);
    end();
    other.join();
}

TEST(ThreadEndTest, PumpsMessagesAndSurvivesRecursion) {
    static clsThreadBase* pumped;
    TestThread thread([](TestThread&) { return Sleep(200), 0u; });
    pumped = &thread;
    ASSERT_TRUE(thread.ThreadStart());
    SetTimer(nullptr, 0, USER_TIMER_MINIMUM, [](HWND, UINT, UINT_PTR timer, DWORD) {
        KillTimer(nullptr, timer);
        EXPECT_EQ(std::exchange(pumped, nullptr)->ThreadEnd(false, -1, true), kThreadNotKilled);
    });
    EXPECT_EQ(thread.ThreadEnd(false, -1, false), kThreadNotKilled);
    EXPECT_EQ(pumped, nullptr);
}

// Returns the index that one wait on the thread reports.
int32_t WaitOnce(
    bool forMessages, bool alertably, int32_t timeout, const std::vector<HANDLE>& handles,
    void (*before)() = [] {}) {
    int32_t index = kWaitStopped;
    TestThread thread([&](TestThread& self) {
        before();
        return self.ThreadWait(timeout, index, static_cast<uint32_t>(handles.size()), handles.data()) ? 1 : 0;
    });
    thread.waitsForMessages = forMessages;
    thread.waitsAlertably = alertably;
    thread.ThreadStart();
    while (thread.State() == kThreadRunning) Sleep(1);
    thread.ThreadEnd(false, -1, false);
    EXPECT_EQ(thread.ExitCode(), 1); // it may go on
    return index;
}

TEST(ThreadWaitTest, ReturnsTheHandleAndEndsForMessagesAndAlertsOnlyWhereAsked) {
    const clsEvent isSet(EventReset::kManual, true), notSet(EventReset::kManual);
    const clsAutoCloseHandle abandoned(CreateMutexW(nullptr, FALSE, nullptr));
    std::thread([&] { WaitForSingleObject(abandoned.Get(), INFINITE); }).join();
    const auto postMessage = [] { PostThreadMessageW(GetCurrentThreadId(), WM_APP, 0, 0); };
    const auto queueCall = [] { QueueUserAPC([](ULONG_PTR) {}, GetCurrentThread(), 0); };
    for (const auto& [messages, alerts] :
         {std::pair(false, false), {false, true}, {true, false}, {true, true}}) {
        EXPECT_EQ(WaitOnce(messages, alerts, -1, {notSet.Get(), isSet.Get()}), 1);
        EXPECT_EQ(WaitOnce(messages, alerts, -1, {notSet.Get(), abandoned.Get()}), 1);
        EXPECT_EQ(WaitOnce(messages, alerts, 20, {notSet.Get()}), kWaitTimeout);
        EXPECT_EQ(WaitOnce(messages, alerts, -1, {notSet.Get(), nullptr}), kWaitFailed);
        const std::vector<HANDLE> many(64, isSet.Get());
        EXPECT_EQ(WaitOnce(messages, alerts, -1, many), kWaitFailed);
        EXPECT_EQ(WaitOnce(messages, alerts, -1, {many.begin() + (messages ? 2 : 1), many.end()}), 0);
        EXPECT_EQ(WaitOnce(messages, alerts, 30, {}, postMessage), messages ? kWaitMessage : kWaitTimeout);
        EXPECT_EQ(WaitOnce(messages, alerts, 30, {}, queueCall), alerts ? kWaitAlerted : kWaitTimeout);
    }
}

} // namespace
} // namespace vxut
