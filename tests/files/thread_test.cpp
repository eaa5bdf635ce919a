#include "files/thread.h"

#include "diagnostics/thread_names.h"
#include "tests/support/debug_listener.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace vxut {
namespace {

// A thread whose body is given as a function.
class TestThread : public clsThreadBase {
public:
    using Body = std::function<uint32_t(TestThread&)>;

    explicit TestThread(Body itsBody, const char* name = "TestThread", DWORD startTimeout = kStartTimeout)
        : clsThreadBase(name, startTimeout), body(std::move(itsBody)) {}
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

clsAutoCloseHandle Open(const clsThreadBase& thread) {
    return clsAutoCloseHandle(OpenThread(THREAD_ALL_ACCESS, FALSE, thread.ThreadId()));
}

TEST(ThreadStartTest, StartsStopsAndStartsAgain) {
    for (const char* name : {"Group::Worker", static_cast<const char*>(nullptr)}) {
        DWORD id = 0, startingId = 0;
        std::string listed;
        const auto body = [&](TestThread& self) {
            const char* const found = FindThreadName(id = GetCurrentThreadId());
            listed = found ? found : "none";
            startingId = self.StartingThreadId();
            return WaitForStop(self);
        };
        TestThread thread(body, name);
        EXPECT_EQ(thread.ThreadEnd(false, -1, false), kThreadNotKilled);
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(thread.State(), kThreadNone);
            ASSERT_TRUE(thread.ThreadStart(THREAD_PRIORITY_LOWEST));
            EXPECT_TRUE(thread.ThreadStart()); // it runs already
            EXPECT_EQ(thread.State(), kThreadRunning);
            EXPECT_EQ(GetThreadPriority(Open(thread).Get()), THREAD_PRIORITY_LOWEST);
            EXPECT_EQ(thread.ExitCode(), -1);
            EXPECT_EQ(thread.ThreadEnd(false, -1, false), kThreadNotKilled);
            EXPECT_EQ(thread.ExitCode(), 7);
            EXPECT_EQ(startingId, GetCurrentThreadId());
            EXPECT_EQ(listed, name ? name : "none");
            EXPECT_EQ(FindThreadName(id), nullptr);
        }
    }
}

TEST(ThreadStartTest, StopsFromWithinAndRestartsWhatHasEndedByItself) {
    int result = -1, round = 0;
    TestThread thread([&](TestThread& self) -> uint32_t {
        result = self.ThreadEnd(false, -1, true); // only sets the event
        return ++round, WaitForStop(self), round == 2 ? throw 1 : 5;
    });
    while (round < 2) {
        ASSERT_TRUE(thread.ThreadStart());
        while (thread.State() != kThreadEnded) Sleep(1);
        EXPECT_EQ(result, kThreadNotKilled);
        EXPECT_EQ(thread.ExitCode(), -1);
    }
    EXPECT_EQ(thread.ThreadEnd(false, 0, false), kThreadNotKilled);
    EXPECT_EQ(thread.ExitCode(), E_UNEXPECTED); // an exception ends the thread only
}

template <class Function>
Function* Loader(const char* name) {
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll"), name)));
}

TEST(ThreadStartTest, AStartThatTakesTooLongIsGivenUp) {
    const DebugListener listener;
    std::atomic<bool> hasRun{false};
    {
        TestThread thread([&](TestThread&) { return hasRun = true, 0u; }, "Late", 50);
        ULONG_PTR cookie = 0; // no thread comes to its entry while the loader's lock is held
        Loader<LONG WINAPI(ULONG, ULONG*, ULONG_PTR*)>("LdrLockLoaderLock")(0, nullptr, &cookie);
        EXPECT_FALSE(thread.ThreadStart());
        Loader<LONG WINAPI(ULONG, ULONG_PTR)>("LdrUnlockLoaderLock")(0, cookie);
        EXPECT_TRUE(listener.Heard((L"ERR: " + std::wstring(thread.ErrorText().Text())).c_str()));
        EXPECT_TRUE(listener.Heard(L"::Late)::ThreadStart: WaitForSingleObject() failed: result=00000102"));
        EXPECT_EQ(thread.ThreadEnd(false, -1, false), kThreadNotKilled);
        EXPECT_TRUE(listener.Heard(L"::Late)::ThreadEnd(): warning: thread handle is not NULL, but "));
        EXPECT_EQ(thread.State(), kThreadNone);
    }
    Sleep(50); // the thread starts now, and its object is gone
    EXPECT_FALSE(hasRun);
}

TEST(ThreadEndTest, LeavesALateThreadAliveOrKillsIt) {
    for (const bool ownsWindows : {false, true}) {
        SCOPED_TRACE(ownsWindows);
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
        const DWORD id = thread.ThreadId();
        EXPECT_EQ(thread.ThreadEnd(false, 20, true), kThreadKilled);
        EXPECT_EQ(thread.State(), kThreadNone);
        EXPECT_EQ(thread.ExitCode(), 0);
        EXPECT_EQ(FindThreadName(id), nullptr);
    }
}

TEST(ThreadEndTest, ASuspendedThreadIsResumedOrGivenUpAtOnce) {
    for (const bool forceNow : {false, true}) {
        TestThread thread(WaitForStop);
        ASSERT_TRUE(thread.ThreadStart());
        SuspendThread(Open(thread).Get());
        EXPECT_EQ(thread.ThreadEnd(forceNow, -1, true), forceNow ? kThreadKilled : kThreadNotKilled);
        EXPECT_EQ(thread.ExitCode(), forceNow ? 0 : 7);
    }
}

TEST(ThreadEndTest, ASecondEnderWaitsForTheFirst) {
    clsEvent go(EventReset::kManual);
    TestThread thread([&](TestThread&) { return go.Wait(INFINITE), 0u; });
    ASSERT_TRUE(thread.ThreadStart());
    std::atomic<int> done{0};
    const auto end = [&] {
        thread.ThreadEnd(false, -1, false);
        if (thread.State() == kThreadNone) ++done;
    };
    std::thread first(end), second(end);
    Sleep(30);
    EXPECT_EQ(done, 0);
    go.Set();
    first.join();
    second.join();
    EXPECT_EQ(done, 2);
}

TEST(ThreadEndTest, PumpsMessagesAndStandsRecursion) {
    static TestThread* pumped;
    static int recursiveResult;
    clsEvent go(EventReset::kManual);
    TestThread thread([&](TestThread&) { return go.Wait(INFINITE), 0u; });
    pumped = &thread;
    recursiveResult = -1;
    ASSERT_TRUE(thread.ThreadStart());
    SetTimer(nullptr, 0, USER_TIMER_MINIMUM, [](HWND, UINT, UINT_PTR timer, DWORD) {
        KillTimer(nullptr, timer);
        recursiveResult = pumped->ThreadEnd(false, -1, true);
    });
    PostQuitMessage(42);
    EXPECT_EQ(thread.ThreadEnd(false, 200, false), kThreadNotKilled);
    EXPECT_EQ(recursiveResult, kThreadNotKilled);
    go.Set();
    EXPECT_EQ(thread.ThreadEnd(false, -1, false), kThreadNotKilled);
    MSG message = {};
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 42u); // kept for the host's own loop
}

TEST(ThreadEndTest, ADestructorThatComesTooLateReports) {
    struct CarelessThread : clsThreadBase {
        CarelessThread() : clsThreadBase("Careless") {}
        uint32_t ThreadBody() override { return begun.Set(), WaitForStop(*this); }
        clsEvent begun{EventReset::kManual};
    };
    const DebugListener listener;
    {
        CarelessThread ended, running, neverStarted;
        for (CarelessThread* thread : {&ended, &running}) {
            ASSERT_TRUE(thread->ThreadStart());
            thread->begun.Wait(INFINITE);
        }
        ended.ThreadEnd(false, -1, false);
    }
    EXPECT_EQ(listener.Lines().size(), 1u);
    EXPECT_TRUE(
        listener.Heard(L"::Careless)::~clsThreadBase: warning: derived class does not end thread. It"));
}

class ThreadWaitTest : public testing::TestWithParam<std::tuple<bool, bool>> {
protected:
    using Handles = std::vector<HANDLE>;

    // Gives the index that one wait on the thread tells.
    int32_t WaitOnce(int32_t timeout, const Handles& handles, void (*before)() = [] {}) {
        int32_t index = kWaitStopped;
        const auto count = static_cast<uint32_t>(handles.size());
        TestThread thread([&](TestThread& self) {
            before();
            return self.ThreadWait(timeout, index, count, handles.data()) ? 1u : 0u;
        });
        std::tie(thread.waitsForMessages, thread.waitsAlertably) = GetParam();
        thread.ThreadStart();
        while (thread.State() == kThreadRunning) Sleep(1);
        thread.ThreadEnd(false, -1, false);
        EXPECT_EQ(thread.ExitCode(), 1); // it may go on
        return index;
    }

    const bool forMessages = std::get<0>(GetParam()), alertably = std::get<1>(GetParam());
};

INSTANTIATE_TEST_SUITE_P(Forms, ThreadWaitTest, testing::Combine(testing::Bool(), testing::Bool()));

TEST_P(ThreadWaitTest, TellsTheHandle) {
    const clsEvent isSet(EventReset::kManual, true), notSet(EventReset::kManual);
    const clsAutoCloseHandle abandoned(CreateMutexW(nullptr, FALSE, nullptr));
    std::thread([&] { WaitForSingleObject(abandoned.Get(), INFINITE); }).join();
    EXPECT_EQ(WaitOnce(-1, {notSet.Get(), isSet.Get()}), 1);
    EXPECT_EQ(WaitOnce(-1, {notSet.Get(), abandoned.Get()}), 1);
    EXPECT_EQ(WaitOnce(0, {}), kWaitTimeout);
    EXPECT_EQ(WaitOnce(20, {notSet.Get()}), kWaitTimeout);
    EXPECT_EQ(WaitOnce(-1, {notSet.Get(), nullptr}), kWaitFailed);
    EXPECT_EQ(WaitOnce(-1, Handles(64, isSet.Get())), kWaitFailed);
    EXPECT_EQ(WaitOnce(-1, Handles(forMessages ? 62 : 63, isSet.Get())), 0);
}

TEST_P(ThreadWaitTest, EndsForMessagesAndAlertsOnlyWhereAsked) {
    const auto postMessage = [] { PostThreadMessageW(GetCurrentThreadId(), WM_APP, 0, 0); };
    const auto queueCall = [] { QueueUserAPC([](ULONG_PTR) {}, GetCurrentThread(), 0); };
    EXPECT_EQ(WaitOnce(30, {}, postMessage), forMessages ? kWaitMessage : kWaitTimeout);
    EXPECT_EQ(WaitOnce(30, {}, queueCall), alertably ? kWaitAlerted : kWaitTimeout);
}

} // namespace
} // namespace vxut
