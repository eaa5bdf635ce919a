#include "files/thread.h"

#include "diagnostics/thread_names.h"
#include "frame/identity.h"
#include "tests/support/child_process.h"
#include "tests/support/debug_listener.h"

#include <gtest/gtest.h>

#include <process.h>

#include <cerrno>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

extern "C" decltype(&_beginthreadex) __imp__beginthreadex;

namespace vxut {
namespace {

constexpr int32_t kPatience = 30000;

// A thread whose body is given as a function.
class TestThread : public clsThreadBase {
public:
    using Body = std::function<uint32_t(TestThread&)>;

    explicit TestThread(Body body, const char* name = "TestThread", DWORD startTimeout = kStartTimeout)
        : clsThreadBase(name, startTimeout), body_(std::move(body)) {}
    ~TestThread() override { ThreadEnd(false, kPatience, true); }

    uint32_t ThreadBody() override { return body_(*this); }
    uint32_t ThreadStackSize() const override { return stackSize; }
    bool ThreadWaitsForMessages() const override { return waitsForMessages; }
    bool ThreadOwnsWindows() const override { return ownsWindows; }
    bool ThreadWaitsAlertably() const override { return waitsAlertably; }

    uint32_t stackSize = 16384;
    bool waitsForMessages = false;
    bool ownsWindows = true;
    bool waitsAlertably = false;

private:
    Body body_;
};

uint32_t WaitForStop(TestThread& thread) {
    for (int32_t index; thread.ThreadWait(-1, index);) {
    }
    return 7;
}

TEST(ThreadStartTest, StartsStopsAndStartsAgain) {
    DWORD bodyId = 0, startingId = 0;
    TestThread thread([&](TestThread& self) {
        bodyId = self.ThreadId();
        startingId = self.StartingThreadId();
        return WaitForStop(self);
    });
    EXPECT_EQ(thread.State(), kThreadNone);
    EXPECT_EQ(thread.ThreadEnd(false, -1, false), kThreadNotKilled);
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(thread.ThreadStart(THREAD_PRIORITY_LOWEST));
        EXPECT_TRUE(thread.ThreadStart()); // it runs already
        EXPECT_EQ(thread.State(), kThreadRunning);
        const clsAutoCloseHandle handle(OpenThread(THREAD_QUERY_INFORMATION, FALSE, thread.ThreadId()));
        EXPECT_EQ(GetThreadPriority(handle.Get()), THREAD_PRIORITY_LOWEST);
        EXPECT_EQ(thread.ExitCode(), -1);
        EXPECT_EQ(thread.ThreadEnd(false, -1, false), kThreadNotKilled);
        EXPECT_EQ(thread.State(), kThreadNone);
        EXPECT_EQ(thread.ExitCode(), 7);
        EXPECT_NE(bodyId, 0u);
        EXPECT_EQ(startingId, GetCurrentThreadId());
    }
}

TEST(ThreadStartTest, RestartsOneThatHasEndedByItself) {
    int rounds = 0;
    TestThread thread([&](TestThread&) { return static_cast<uint32_t>(++rounds); });
    clsEvent never(EventReset::kManual);
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(thread.ThreadStart());
        while (thread.State() != kThreadEnded) never.Wait(1);
        EXPECT_EQ(thread.ExitCode(), -1);
    }
    EXPECT_EQ(thread.ThreadEnd(false, 0, false), kThreadNotKilled);
    EXPECT_EQ(thread.ExitCode(), 2);
    EXPECT_EQ(thread.State(), kThreadNone);
}

// Hears the exception that gives debuggers a thread's name.
std::string toldName;
LONG WINAPI HearName(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    const ULONG_PTR* const parameters = record.ExceptionInformation;
    const bool isName = record.ExceptionCode == 0x406D1388 && record.NumberParameters == 3 &&
                        static_cast<DWORD>(parameters[0]) == 0x1000 && parameters[2] == 0xFFFFFFFF;
    if (isName) toldName = reinterpret_cast<const char*>(parameters[1]);
    return EXCEPTION_CONTINUE_SEARCH;
}

TEST(ThreadStartTest, NamesTheThreadWhileItRuns) {
    const auto run = [](const char* name) {
        std::pair<DWORD, std::string> idAndName;
        TestThread thread(
            [&](TestThread&) {
                const char* const found = FindThreadName(GetCurrentThreadId());
                idAndName = {GetCurrentThreadId(), found ? found : "none"};
                return 0u;
            },
            name);
        EXPECT_TRUE(thread.ThreadStart());
        return idAndName;
    };
    void* const handler = AddVectoredExceptionHandler(TRUE, HearName);
    const auto [id, name] = run("Group::Worker");
    EXPECT_EQ(name, "Group::Worker");
    EXPECT_EQ(toldName, String(Identity().libraryBaseName).Narrow() + std::string("::Group::Worker"));
    EXPECT_EQ(FindThreadName(id), nullptr);
    toldName.clear();
    EXPECT_EQ(run(nullptr).second, "none");
    EXPECT_EQ(toldName, "");
    RemoveVectoredExceptionHandler(handler);
}

// The run-time library makes no threads meanwhile: the program's import of its function leads here.
class NoMoreThreads {
public:
    NoMoreThreads() { Import(Refuse); }
    ~NoMoreThreads() { Import(real_); }

private:
    using Function = decltype(&_beginthreadex);

    static uintptr_t Refuse(void*, unsigned, unsigned(WINAPI*)(void*), void*, unsigned, unsigned*) {
        errno = EAGAIN;
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    static void Import(Function function) {
        DWORD protection;
        VirtualProtect(&__imp__beginthreadex, sizeof(Function), PAGE_READWRITE, &protection);
        __imp__beginthreadex = function;
        VirtualProtect(&__imp__beginthreadex, sizeof(Function), protection, &protection);
    }

    const Function real_ = __imp__beginthreadex;
};

TEST(ThreadStartTest, TellsWhyAThreadCannotBeMade) {
    const DebugListener listener;
    TestThread thread(WaitForStop, "Refused");
    thread.stackSize = 65536;
    {
        const NoMoreThreads scope;
        EXPECT_FALSE(thread.ThreadStart());
    }
    const std::wstring module = String(Identity().libraryBaseName).Text();
    const std::wstring text = L"clsThreadBase(" + module +
                              L"::Refused)::ThreadStart: Cannot create thread (stack size 64 KiB): errno=11, "
                              L"GetLastError()=" +
                              String::FromError(ERROR_NOT_ENOUGH_MEMORY).Text();
    EXPECT_EQ(thread.ErrorText().Text(), text);
    EXPECT_TRUE(listener.Heard((L"ERR: " + text).c_str()));
    EXPECT_EQ(thread.State(), kThreadNone);
    EXPECT_TRUE(thread.ThreadStart());
}

TEST(ThreadStartTest, AnExceptionEndsTheThreadOnly) {
    TestThread thread([](TestThread&) -> uint32_t { throw 1; });
    ASSERT_TRUE(thread.ThreadStart());
    thread.ThreadEnd(false, -1, false);
    EXPECT_EQ(thread.ExitCode(), E_UNEXPECTED);
}

// No thread comes to its entry while this is held.
class LoaderLock {
public:
    LoaderLock() {
        const auto lock = reinterpret_cast<LONG(WINAPI*)(ULONG, ULONG*, ULONG_PTR*)>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll"), "LdrLockLoaderLock")));
        lock(0, nullptr, &cookie_);
    }
    ~LoaderLock() {
        const auto unlock = reinterpret_cast<LONG(WINAPI*)(ULONG, ULONG_PTR)>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll"), "LdrUnlockLoaderLock")));
        unlock(0, cookie_);
    }

private:
    ULONG_PTR cookie_ = 0;
};

TEST(ThreadStartTest, AStartThatTakesTooLongIsGivenUp) {
    const DebugListener listener;
    std::atomic<bool> hasRun{false};
    {
        TestThread thread([&](TestThread&) { return hasRun = true, 0u; }, "Late", 50);
        {
            const LoaderLock lock;
            EXPECT_FALSE(thread.ThreadStart());
        }
        const std::wstring text = thread.ErrorText().Text();
        EXPECT_NE(
            text.find(
                L"::Late)::ThreadStart: WaitForSingleObject() failed: result=00000102, GetLastError()="),
            std::wstring::npos);
        EXPECT_TRUE(listener.Heard((L"ERR: " + text).c_str()));
        EXPECT_EQ(thread.ThreadEnd(false, -1, false), kThreadNotKilled);
        EXPECT_TRUE(
            listener.Heard(L"::Late)::ThreadEnd(): warning: thread handle is not NULL, but "
                           L"::GetExitCodeThread(_hThread,&dwEC) failed("));
        EXPECT_EQ(thread.State(), kThreadNone);
    }
    clsEvent never(EventReset::kManual);
    never.Wait(50); // the thread starts now, and its object is gone
    EXPECT_FALSE(hasRun);
}

TEST(ThreadEndTest, FromWithinOnlySetsTheEvent) {
    int result = -1;
    bool wasToldToStop = false;
    TestThread thread([&](TestThread& self) {
        result = self.ThreadEnd(false, -1, true);
        int32_t index;
        wasToldToStop = !self.ThreadWait(0, index) && index == kWaitStopped;
        return 0u;
    });
    ASSERT_TRUE(thread.ThreadStart());
    thread.ThreadEnd(false, -1, false);
    EXPECT_EQ(result, kThreadNotKilled);
    EXPECT_TRUE(wasToldToStop);
}

TEST(ThreadEndTest, LeavesALateThreadAliveOrKillsIt) {
    for (const bool ownsWindows : {false, true}) {
        SCOPED_TRACE(ownsWindows);
        clsEvent go(EventReset::kManual);
        TestThread thread([&](TestThread&) { return go.Wait(INFINITE), 5u; });
        thread.ownsWindows = ownsWindows;
        ASSERT_TRUE(thread.ThreadStart());
        EXPECT_EQ(thread.ThreadEnd(false, 0, false), kThreadNotKilled);
        EXPECT_EQ(thread.State(), kThreadRunning);
        EXPECT_EQ(thread.ThreadEnd(false, 20, false), kThreadNotKilled);
        go.Set();
        EXPECT_EQ(thread.ThreadEnd(false, -1, false), kThreadNotKilled);
        EXPECT_EQ(thread.ExitCode(), 5);

        go.Reset();
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
        SuspendThread(clsAutoCloseHandle(OpenThread(THREAD_SUSPEND_RESUME, FALSE, thread.ThreadId())).Get());
        EXPECT_EQ(thread.ThreadEnd(forceNow, -1, true), forceNow ? kThreadKilled : kThreadNotKilled);
        EXPECT_EQ(thread.ExitCode(), forceNow ? 0 : 7);
    }
}

TEST(ThreadEndTest, ASecondEnderWaitsForTheFirst) {
    clsEvent go(EventReset::kManual);
    TestThread thread([&](TestThread&) { return go.Wait(INFINITE), 0u; });
    ASSERT_TRUE(thread.ThreadStart());
    std::thread first([&] { thread.ThreadEnd(false, -1, false); });
    std::atomic<bool> isSecondDone{false};
    ThreadState stateAfterSecond = kThreadRunning;
    std::thread second([&] {
        thread.ThreadEnd(false, -1, false);
        stateAfterSecond = thread.State();
        isSecondDone = true;
    });
    clsEvent never(EventReset::kManual);
    never.Wait(30);
    EXPECT_FALSE(isSecondDone);
    go.Set();
    first.join();
    second.join();
    EXPECT_EQ(stateAfterSecond, kThreadNone);
}

// A window procedure that is called by the pump of ThreadEnd().
TestThread* pumped = nullptr;
int recursiveResult = -1;
void CALLBACK EndAgain(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    recursiveResult = pumped->ThreadEnd(false, -1, true);
}

TEST(ThreadEndTest, PumpsMessagesAndStandsRecursion) {
    clsEvent go(EventReset::kManual);
    const DWORD endingThread = GetCurrentThreadId();
    TestThread thread([&](TestThread&) { return go.Wait(INFINITE), 0u; });
    pumped = &thread;
    recursiveResult = -1;
    ASSERT_TRUE(thread.ThreadStart());
    SetTimer(nullptr, 0, USER_TIMER_MINIMUM, EndAgain);
    PostQuitMessage(42);
    EXPECT_EQ(thread.ThreadEnd(false, 200, false), kThreadNotKilled);
    EXPECT_EQ(recursiveResult, kThreadNotKilled);
    go.Set();
    PostThreadMessageW(endingThread, WM_NULL, 0, 0);
    EXPECT_EQ(thread.ThreadEnd(false, -1, false), kThreadNotKilled);
    MSG message = {};
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 42u); // kept for the host's own loop
}

// Does not end its thread.
class CarelessThread : public clsThreadBase {
public:
    explicit CarelessThread(clsEvent& begun) : clsThreadBase("Careless"), begun_(begun) {}
    uint32_t ThreadBody() override {
        begun_.Set();
        for (int32_t index; ThreadWait(-1, index);) {
        }
        return 0;
    }

private:
    clsEvent& begun_;
};

TEST(ThreadEndTest, ADestructorThatComesTooLateReports) {
    const DebugListener listener;
    clsEvent begun(EventReset::kAutomatic);
    {
        CarelessThread ended(begun), running(begun), neverStarted(begun);
        for (CarelessThread* thread : {&ended, &running}) {
            ASSERT_TRUE(thread->ThreadStart());
            begun.Wait(INFINITE);
        }
        ended.ThreadEnd(false, -1, false);
    }
    EXPECT_EQ(listener.Lines().size(), 1u);
    EXPECT_TRUE(
        listener.Heard(L"::Careless)::~clsThreadBase: warning: derived class does not end thread. It's too "
                       L"late now!"));
}

// The child prints what a developer sees of a thread's life, and of one that is killed.
TEST(ThreadEndTest, TellsADeveloperTheTimes) {
    const auto child = test::RunChild(L"thread-times", {{L"user", L"QZR"}});
    EXPECT_NE(child.output.find("::Timed' was alive for "), std::string::npos) << child.output;
    EXPECT_NE(child.output.find(" ms (UserMode: "), std::string::npos) << child.output;
    EXPECT_EQ(test::RunChild(L"thread-times").output, "");
}

class ThreadWaitTest : public testing::Test {
protected:
    // What one wait on the thread gives.
    struct Answer {
        bool goesOn = false;
        int32_t index = 0;
    };
    Answer WaitOnce(
        int32_t timeout, std::vector<HANDLE> handles, const std::function<void()>& before = [] {}) {
        Answer answer;
        TestThread thread([&](TestThread& self) {
            before();
            answer.goesOn =
                self.ThreadWait(timeout, answer.index, static_cast<uint32_t>(handles.size()), handles.data());
            return 0u;
        });
        thread.waitsForMessages = forMessages;
        thread.waitsAlertably = alertably;
        thread.ThreadStart();
        while (thread.State() == kThreadRunning) set.Wait(1);
        return answer;
    }

    bool forMessages = false;
    bool alertably = false;
    clsEvent set{EventReset::kManual, true}, notSet{EventReset::kManual};
};

TEST_F(ThreadWaitTest, TellsTheHandleInEachForm) {
    for (const int form : {0, 1, 2, 3}) {
        SCOPED_TRACE(form);
        forMessages = (form & 1) != 0;
        alertably = (form & 2) != 0;
        const Answer second = WaitOnce(-1, {notSet.Get(), set.Get()});
        EXPECT_TRUE(second.goesOn);
        EXPECT_EQ(second.index, 1);
        EXPECT_EQ(WaitOnce(0, {}).index, kWaitTimeout);
        EXPECT_EQ(WaitOnce(20, {notSet.Get()}).index, kWaitTimeout);
        EXPECT_EQ(WaitOnce(-1, {notSet.Get(), nullptr}).index, kWaitFailed);
        EXPECT_EQ(WaitOnce(-1, std::vector<HANDLE>(64, set.Get())).index, kWaitFailed);
        EXPECT_EQ(WaitOnce(-1, std::vector<HANDLE>(forMessages ? 62 : 63, set.Get())).index, 0);
    }
}

TEST_F(ThreadWaitTest, EndsForMessagesAndAlertsOnlyWhereAsked) {
    const auto postMessage = [] { PostThreadMessageW(GetCurrentThreadId(), WM_APP, 0, 0); };
    const auto queueCall = [] { QueueUserAPC([](ULONG_PTR) {}, GetCurrentThread(), 0); };
    const struct {
        bool forMessages, alertably, isMessage;
        int32_t expected;
    } kRows[] = {
        {false, false, true, kWaitTimeout}, {false, false, false, kWaitTimeout},
        {true, false, true, kWaitMessage},  {true, false, false, kWaitTimeout},
        {false, true, true, kWaitTimeout},  {false, true, false, kWaitAlerted},
        {true, true, true, kWaitMessage},   {true, true, false, kWaitAlerted},
    };
    for (const auto& row : kRows) {
        forMessages = row.forMessages;
        alertably = row.alertably;
        const Answer answer = row.isMessage ? WaitOnce(30, {}, postMessage) : WaitOnce(30, {}, queueCall);
        EXPECT_TRUE(answer.goesOn);
        EXPECT_EQ(answer.index, row.expected) << row.forMessages << row.alertably << row.isMessage;
    }
}

TEST_F(ThreadWaitTest, AnAbandonedMutexCountsAsSignalled) {
    const clsAutoCloseHandle mutex(CreateMutexW(nullptr, FALSE, nullptr));
    std::thread([&] { WaitForSingleObject(mutex.Get(), INFINITE); }).join();
    EXPECT_EQ(WaitOnce(-1, {notSet.Get(), mutex.Get()}).index, 1);
}

} // namespace
} // namespace vxut
