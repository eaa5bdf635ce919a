#include "threads/thread.h"

#include "base/debug.h"
#include "base/guard.h"
#include "base/identity.h"
#include "checks/validate.h"
#include "threads/deadline.h"
#include "trace/thread_names.h"

#include <process.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace vxut {
namespace {

constexpr int32_t kTimeoutOfDestructor = 1000;
constexpr DWORD kTimeoutOfKill = 1000;
constexpr auto kExitCodeOfException = static_cast<uint32_t>(E_UNEXPECTED);

clsAutoDeleteBytes<char> FullName(const char* name) {
    constexpr char kFormat[] = "%s::%s";
    if (!name) return nullptr;
    const String module(Identity().libraryBaseName);
    const size_t bytes = std::strlen(module.Narrow()) + std::strlen(name) + sizeof kFormat;
    clsAutoDeleteBytes<char> fullName(new char[bytes]);
    std::snprintf(fullName.get(), bytes, kFormat, module.Narrow(), name);
    return fullName;
}

// Debuggers read the name of a thread from this exception. Without a debugger the handler continues.
void PassNameToDebugger(const char* name) {
    constexpr DWORD kSetThreadName = 0x406D1388;
    struct {
        DWORD type;
        LPCSTR name;
        DWORD threadId;
        DWORD flags;
    } const information = {0x1000, name, static_cast<DWORD>(-1), 0};
    static_assert(sizeof information % sizeof(ULONG_PTR) == 0);
    __try {
        RaiseException(kSetThreadName, 0, sizeof information / sizeof(ULONG_PTR),
                       reinterpret_cast<const ULONG_PTR*>(&information));
    } __except (EXCEPTION_CONTINUE_EXECUTION) {
    }
}

// Names the current thread in the debugger and, for the scope, in the lines of the debug channel.
class NameScope {
public:
    explicit NameScope(const char* fullName) : isNamed_(fullName != nullptr) {
        if (!isNamed_) return;
        PassNameToDebugger(fullName);
        DebugSetThreadName(std::strstr(fullName, "::") + 2);
    }
    ~NameScope() {
        if (isNamed_) DebugSetThreadName(nullptr);
    }
    NameScope(const NameScope&) = delete;
    NameScope& operator=(const NameScope&) = delete;

private:
    bool isNamed_;
};

// Counts the calls that are in progress.
class CallScope {
public:
    explicit CallScope(std::atomic<int>& calls) : calls_(calls), isNested_(calls++ != 0) {}
    ~CallScope() { --calls_; }
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;

    bool IsNested() const { return isNested_; }

private:
    std::atomic<int>& calls_;
    bool isNested_;
};

uint64_t Milliseconds(const FILETIME& time) {
    return ULARGE_INTEGER{{time.dwLowDateTime, time.dwHighDateTime}}.QuadPart / 10000;
}

} // namespace

// Shared by the starting and the new thread, and owned by both: a thread that starts too late must learn this
// without touching its object, which may have been destroyed.
struct clsThreadBase::Start {
    explicit Start(clsThreadBase& itsObject) : object(itsObject) {}

    // Returns true to the first caller only: to the thread, which then runs, or to the starter, which then
    // abandons the start.
    bool Decide() { return !isDecided.exchange(true); }

    clsThreadBase& object;
    clsEvent isRunning{EventReset::kAutomatic};
    std::atomic<bool> isDecided{false};
};

clsThreadBase::clsThreadBase(const char* name, DWORD startTimeout)
    : name_(FullName(name)), startTimeout_(startTimeout) {}

clsThreadBase::~clsThreadBase() {
    Guarded([this] {
        if (State() == kThreadRunning) {
            DebugWrite(
                L"clsThreadBase(%hs)::~clsThreadBase: warning: derived class does not end thread. It's "
                L"too late now!",
                Name());
        }
        ThreadEnd(false, kTimeoutOfDestructor, true);
    });
}

ThreadState clsThreadBase::State() {
    const clsCriticalSectionScope scope(lock_);
    if (!thread_) return kThreadNone;
    return HasEnded() ? kThreadEnded : kThreadRunning;
}

int32_t clsThreadBase::ExitCode() {
    const clsCriticalSectionScope scope(lock_);
    return exitCode_;
}

bool clsThreadBase::ThreadStart(int priority) {
    if (IsOwnThread()) return true;
    const clsCriticalSectionScope lifecycle(lifecycle_);
    const clsCriticalSectionScope scope(lock_);
    if (thread_ && (HasEnded() || !isStarted_)) CloseThread();
    if (thread_) {
        ResumeThread(thread_.Get());
        return true;
    }
    return Create(priority);
}

bool clsThreadBase::Create(int priority) {
    exitCode_ = -1;
    startingThreadId_ = GetCurrentThreadId();
    stopEvent_.Reset();
    const uint32_t stackSize = ThreadStackSize();
    const auto start = std::make_shared<Start>(*this);
    // Without the events the thread could neither be stopped nor say that it runs.
    if (!stopEvent_.IsHeld() || !start->isRunning.IsHeld()) return FailCreation(stackSize, 0);
    auto* const startOfThread = std::make_unique<std::shared_ptr<Start>>(start).release(); // Run() owns it

    // Suspended, so that the thread's number is known before the body runs and asks for it.
    unsigned threadId = 0;
    thread_.Reset(reinterpret_cast<HANDLE>(
        _beginthreadex(nullptr, stackSize, Run, startOfThread, CREATE_SUSPENDED, &threadId)));
    if (!thread_) {
        const int errorNumber = errno;
        const clsGenericAutoDelete<std::shared_ptr<Start>> unused(startOfThread);
        return FailCreation(stackSize, errorNumber);
    }
    threadId_ = threadId;
    ResumeThread(thread_.Get());

    const DWORD result = start->isRunning.Wait(startTimeout_);
    if (result != WAIT_OBJECT_0 && start->Decide()) {
        const DWORD error = GetLastError();
        threadId_ = 0;
        return FailStart(
            L"clsThreadBase(%hs)::ThreadStart: WaitForSingleObject() failed: result=%08x, GetLastError()=%s",
            Name(), result, String::FromError(error).Text());
    }
    isStarted_ = true;
    SetThreadPriority(thread_.Get(), priority);
    return true;
}

bool clsThreadBase::FailCreation(uint32_t stackSize, int errorNumber) {
    const DWORD error = GetLastError();
    return FailStart(
        L"clsThreadBase(%hs)::ThreadStart: Cannot create thread (stack size %d KiB): errno=%d, "
        L"GetLastError()=%s",
        Name(), stackSize / 1024, errorNumber, String::FromError(error).Text());
}

bool clsThreadBase::FailStart(const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    errorText_.FormatV(format, arguments);
    va_end(arguments);
    DebugWrite(L"ERR: %s", errorText_.Text());
    return false;
}

unsigned WINAPI clsThreadBase::Run(void* parameter) {
    const clsGenericAutoDelete<std::shared_ptr<Start>> owner(static_cast<std::shared_ptr<Start>*>(parameter));
    Start& start = **owner;
    if (!start.Decide()) return 0;
    clsThreadBase& thread = start.object;
    uint32_t exitCode;
    {
        const NameScope name(thread.name_.get());
        start.isRunning.Set();
        exitCode = Guarded(kExitCodeOfException, [&] { return thread.ThreadBody(); });
    }
    thread.threadId_ = 0; // the system may reuse it for another thread
    return exitCode;
}

// Not by the exit code: a body may return the number that means "still active".
bool clsThreadBase::HasEnded() const { return WaitForSingleObject(thread_.Get(), 0) == WAIT_OBJECT_0; }

int clsThreadBase::ThreadEnd(bool forceNow, int32_t timeout, bool kill) {
    if (IsOwnThread()) {
        stopEvent_.Set();
        return kThreadNotKilled;
    }
    const clsCriticalSectionScope lifecycle(lifecycle_);
    const clsCriticalSectionScope scope(lock_);
    const CallScope call(endCalls_);
    if (call.IsNested()) {
        if (IsDeveloperLogin()) DebugWrite(L"ups ;) some recursion in ThreadEnd()? Might be OK though ;)");
        return kThreadNotKilled;
    }
    if (!thread_) return kThreadNotKilled;
    stopEvent_.Set();
    return EndThread(forceNow, timeout, kill);
}

int clsThreadBase::EndThread(bool forceNow, int32_t timeout, bool kill) {
    DWORD exitCode;
    if (!isStarted_ || !GetExitCodeThread(thread_.Get(), &exitCode)) {
        const DWORD error = GetLastError();
        DebugWrite(
            L"clsThreadBase(%hs)::ThreadEnd(): warning: thread handle is not NULL, but "
            L"::GetExitCodeThread(_hThread,&dwEC) failed(%d): %s",
            Name(), error, String::FromError(error).Text());
        CloseThread();
        return kThreadNotKilled;
    }
    const Outcome outcome = exitCode != STILL_ACTIVE ? Outcome::kEnded : WaitForEnd(forceNow, timeout, kill);
    if (IsDeveloperLogin()) ReportTimes();
    if (outcome != Outcome::kAlive) CloseThread();
    return outcome == Outcome::kKilled ? kThreadKilled : kThreadNotKilled;
}

// How often a thread is suspended can only be learned by suspending it once more. A suspended thread is
// resumed, unless the caller does not wait for it, and one of lower priority than the caller's is raised to
// that, as it might otherwise get no processor time while the caller waits.
clsThreadBase::Outcome clsThreadBase::WaitForEnd(bool forceNow, int32_t timeout, bool kill) {
    const HANDLE thread = thread_.Get();
    const DWORD suspensions = SuspendThread(thread); // more than 0 if another thread has suspended it
    const bool isProbed = suspensions != static_cast<DWORD>(-1);
    const bool wasSuspended = isProbed && suspensions > 0;
    if (isProbed) ResumeThread(thread);
    if (!(wasSuspended && forceNow)) {
        const int priority = GetThreadPriority(GetCurrentThread());
        if (GetThreadPriority(thread) < priority) SetThreadPriority(thread, priority);
        if (wasSuspended) ResumeThread(thread);
        if (WaitOutsideLock(timeout)) return Outcome::kEnded;
    }
    return kill ? Kill() : Outcome::kAlive;
}

// Locks, memory and handles that the thread holds are lost.
clsThreadBase::Outcome clsThreadBase::Kill() {
    if (!TerminateThread(thread_.Get(), 0)) return HasEnded() ? Outcome::kEnded : Outcome::kAlive;
    WaitForSingleObject(thread_.Get(), kTimeoutOfKill);
    SetThreadName(threadId_, nullptr);
    return Outcome::kKilled;
}

// The body may need the lock before it can return.
bool clsThreadBase::WaitOutsideLock(int32_t timeout) {
    const HANDLE thread = thread_.Get(); // stays valid: lifecycle_ is held
    const clsCriticalSectionGap gap(lock_);
    // NOLINTNEXTLINE(clang-analyzer-optin.cplusplus.VirtualCall): the destructor uses this class's version
    if (ThreadOwnsWindows()) return WaitWithMessages(thread, timeout);
    return WaitForSingleObject(thread, clsDeadline(timeout).Remaining()) == WAIT_OBJECT_0;
}

void clsThreadBase::ReportTimes() const {
    FILETIME creation, exit, kernel, user;
    if (!GetThreadTimes(thread_.Get(), &creation, &exit, &kernel, &user)) return;
    const auto userTime = static_cast<int>(Milliseconds(user));
    const auto kernelTime = static_cast<int>(Milliseconds(kernel));
    if (Milliseconds(exit) == 0) {
        DebugWrite(L"thread '%hs' forced to exit! (UserMode: %d ms, KernelMode: %d ms)", Name(), userTime,
                   kernelTime);
    } else {
        DebugWrite(L"thread '%hs' was alive for %d ms (UserMode: %d ms, KernelMode: %d ms)", Name(),
                   static_cast<int>(Milliseconds(exit) - Milliseconds(creation)), userTime, kernelTime);
    }
}

// A thread that never signalled its start has no exit code of its own.
void clsThreadBase::CloseThread() {
    DWORD exitCode;
    if (isStarted_ && GetExitCodeThread(thread_.Get(), &exitCode)) exitCode_ = static_cast<int32_t>(exitCode);
    thread_.Reset();
    threadId_ = 0;
    startingThreadId_ = 0;
    isStarted_ = false;
}

} // namespace vxut
