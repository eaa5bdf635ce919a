// A background thread with a name, a safe start, a stop event, a wait that the stop event ends, and a graded
// end.
//
// A subclass implements the body, calls ThreadWait() instead of sleeping, and returns when that returns
// false:
//     uint32_t ThreadBody() override {
//         for (int32_t index; ThreadWait(1000, index);) Sweep();
//         return 0;
//     }
// Its destructor must call ThreadEnd(): when the destructor of the base class runs, the members that the body
// uses no longer exist.
//
// Threads: ThreadStart() and ThreadEnd() may be called on any thread and exclude each other; a second call
// waits for the first. The body must not hold a lock that the caller of ThreadEnd() holds while it waits.
#pragma once

#include "base/critical_section.h"
#include "base/owners.h"
#include "text/string.h"
#include "threads/event.h"

#include <windows.h>

#include <atomic>
#include <cstdint>

namespace vxut {

enum ThreadState { kThreadNone = 0, kThreadRunning = 1, kThreadEnded = 3 };

// Results of ThreadEnd().
constexpr int kThreadKilled = 0;
constexpr int kThreadNotKilled = 1;

// Results of ThreadWait() other than the index of a handle.
constexpr int32_t kWaitTimeout = -1;
constexpr int32_t kWaitFailed = -2;
constexpr int32_t kWaitAlerted = -3;
constexpr int32_t kWaitMessage = -4;
constexpr int32_t kWaitStopped = INT32_MIN;

class clsThreadBase {
public:
    static constexpr DWORD kStartTimeout = 20000;

    // name, which is copied, appears in debuggers and in the lines of the debug channel; null for none.
    // startTimeout limits the start, in milliseconds.
    explicit clsThreadBase(const char* name, DWORD startTimeout = kStartTimeout);
    clsThreadBase(const clsThreadBase&) = delete;
    clsThreadBase& operator=(const clsThreadBase&) = delete;

    // The virtual operations, in this order.
protected:
    // Runs on the thread. Returns the exit code, which is E_UNEXPECTED if the body throws.
    virtual uint32_t ThreadBody() = 0;
    // In bytes. Small on purpose, as there are many threads; a subclass that needs more overrides it.
    virtual uint32_t ThreadStackSize() const { return 16384; }
    // Whether ThreadWait() also ends for a message, which the body then dispatches.
    virtual bool ThreadWaitsForMessages() const { return false; }
    // Whether the thread owns windows. ThreadEnd() then dispatches messages of its caller while it waits.
    virtual bool ThreadOwnsWindows() const { return true; }
    // Whether ThreadWait() also ends for an asynchronous procedure call.
    virtual bool ThreadWaitsAlertably() const { return false; }

public:
    virtual ~clsThreadBase();

    // Starts the thread, also again after it has ended. Resumes a thread that exists. priority is
    // THREAD_PRIORITY_*. Returns false if the thread does not run; ErrorText() has the reason.
    bool ThreadStart(int priority = THREAD_PRIORITY_NORMAL);

    // Sets the stop event and waits for the end of the thread, for timeout milliseconds or without limit if
    // it is -1. A thread that does not end in time is terminated if kill is set, and otherwise left running;
    // the object must not be destroyed then. With forceNow there is no wait for a suspended thread. On the
    // thread itself the call only sets the event. Returns kThreadKilled or kThreadNotKilled.
    int ThreadEnd(bool forceNow, int32_t timeout, bool kill);

    // For the body. Waits for the stop event and up to 63 handles (62 with messages), for timeout
    // milliseconds or without limit if it is -1. Returns false if the thread is to stop. Otherwise index is
    // the position of the handle that was signalled, or one of kWait...
    bool ThreadWait(int32_t timeout, int32_t& index, uint32_t count = 0,
                    const HANDLE* handles = nullptr) const;

    ThreadState State();
    // "module::name", or empty for a thread without a name.
    const char* Name() const noexcept { return name_ ? name_.get() : ""; }
    // 0 if no thread runs.
    DWORD ThreadId() const noexcept { return threadId_; }
    // Shares the state of keyboard and mouse, and the focus, with the thread that called ThreadStart(), or
    // ends that. For the body, and for that thread while the body runs. Returns false, and reports, if the
    // system cannot: one of the threads has no message queue, for example.
    bool ThreadAttachInput(bool attach);

    // The thread that called ThreadStart(). For the body.
    DWORD StartingThreadId() const noexcept { return startingThreadId_; }
    // The exit code of the last thread, from ThreadEnd() or the next start on; -1 before.
    int32_t ExitCode();
    const String& ErrorText() const noexcept { return errorText_; }

private:
    struct Start;
    enum class Outcome { kEnded, kAlive, kKilled };

    static unsigned WINAPI Run(void* start);
    static bool WaitWithMessages(HANDLE thread, int32_t timeout);

    bool HasEnded() const;
    bool IsOwnThread() const noexcept { return threadId_ == GetCurrentThreadId(); }
    bool Create(int priority);
    bool FailCreation(uint32_t stackSize, int errorNumber);
    bool FailStart(const wchar_t* format, ...);
    int EndThread(bool forceNow, int32_t timeout, bool kill);
    Outcome WaitForEnd(bool forceNow, int32_t timeout, bool kill);
    Outcome Kill();
    bool WaitOutsideLock(int32_t timeout);
    void ReportTimes() const;
    void CloseThread();

    // Serialises starts and ends. Taken before the lock, and held also while the lock is released for a wait.
    clsCriticalSection lifecycle_;
    clsCriticalSection lock_{100}; // guards the handle and the state
    clsAutoCloseHandle thread_;
    std::atomic<DWORD> threadId_{0};
    DWORD startingThreadId_ = 0;
    clsEvent stopEvent_{EventReset::kManual};
    clsAutoDeleteBytes<char> name_; // "module::name"
    int32_t exitCode_ = -1;
    String errorText_;
    std::atomic<int> endCalls_{0};
    bool isStarted_ = false; // the thread has signalled that it runs
    const DWORD startTimeout_;
};

} // namespace vxut
