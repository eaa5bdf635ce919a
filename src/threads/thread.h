// A background thread: with a name, a safe start, a stop event, a wait that stays stoppable, and a graded
// end.
//
// A subclass supplies the body, waits with ThreadWait() instead of sleeping, and returns when that says
// false:
//     uint32_t ThreadBody() override {
//         for (int32_t index; ThreadWait(1000, index);) Sweep();
//         return 0;
//     }
// Its own destructor calls ThreadEnd(): when the one of the base runs, the members that the body uses are
// gone.
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

// What ThreadEnd() says.
constexpr int kThreadKilled = 0;
constexpr int kThreadNotKilled = 1;

// What ThreadWait() says in place of the index of a handle.
constexpr int32_t kWaitTimeout = -1;
constexpr int32_t kWaitFailed = -2;
constexpr int32_t kWaitAlerted = -3;
constexpr int32_t kWaitMessage = -4;
constexpr int32_t kWaitStopped = INT32_MIN;

class clsThreadBase {
public:
    static constexpr DWORD kStartTimeout = 20000;

    // A thread without a name (null) is in no table. startTimeout is how long a start may take, in
    // milliseconds.
    explicit clsThreadBase(const char* name, DWORD startTimeout = kStartTimeout);
    clsThreadBase(const clsThreadBase&) = delete;
    clsThreadBase& operator=(const clsThreadBase&) = delete;

    // The virtual operations, in this order.
protected:
    // Runs on the thread. Gives the exit code; that of an exception is E_UNEXPECTED.
    virtual uint32_t ThreadBody() = 0;
    // In bytes. Small on purpose: threads are many.
    virtual uint32_t ThreadStackSize() const { return 16384; }
    // Whether ThreadWait() ends for a message, which the body then dispatches.
    virtual bool ThreadWaitsForMessages() const { return false; }
    // Whether the thread owns windows: ThreadEnd() then dispatches messages while it waits.
    virtual bool ThreadOwnsWindows() const { return true; }
    // Whether ThreadWait() ends for an asynchronous procedure call.
    virtual bool ThreadWaitsAlertably() const { return false; }

public:
    virtual ~clsThreadBase();

    // Starts the thread, again too if it has ended; resumes one that is there. priority is THREAD_PRIORITY_*.
    // False if it does not run; ErrorText() tells why.
    bool ThreadStart(int priority = THREAD_PRIORITY_NORMAL);

    // Signals the stop event and waits for the end, in milliseconds, -1 without limit. A thread that does not
    // end in time is killed, or left alone, the object being in use then. forceNow does not wait for one that
    // somebody has suspended. Called on the thread itself it only signals.
    int ThreadEnd(bool forceNow, int32_t timeout, bool kill);

    // For the body. Waits for the stop event and up to 63 handles (62 with messages), in milliseconds, -1
    // without limit. False if the thread is to stop; else index is the position of the handle, or one of
    // kWait...
    bool ThreadWait(int32_t timeout, int32_t& index, uint32_t count = 0,
                    const HANDLE* handles = nullptr) const;

    ThreadState State();
    // "module::name", empty without a name.
    const char* Name() const noexcept { return name_ ? name_.get() : ""; }
    // 0 without a thread.
    DWORD ThreadId() const noexcept { return threadId_; }
    // The thread that called ThreadStart(), for the body.
    DWORD StartingThreadId() const noexcept { return startingThreadId_; }
    // Of the last thread, once it is ended by ThreadEnd() or a new start; -1 before.
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

    // One start or end at a time. Taken before the lock, and kept while the lock is left to wait.
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
    bool isStarted_ = false; // the thread really ran
    const DWORD startTimeout_;
};

} // namespace vxut
