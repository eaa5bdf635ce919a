#include "crash/debug_help_job.h"

#include "base/debug.h"
#include "base/loader_lock.h"
#include "base/shield.h"
#include "base/system_libraries.h"
#include "crash/stack_overflow.h"
#include "system/environment_policy.h"
#include "threads/deadline.h"

#include <tuple>
#include <utility>

namespace vxut {
namespace {

constexpr DWORD kLockPause = 20;
constexpr int32_t kTimeoutOfFailedStart = 1000;

// Whether there is an engine in the process, which dbghelp permits one of. Not a critical section: a thread
// that is terminated while it has the engine would keep it, and the same thread could take it twice.
constinit std::atomic<bool> isEngineTaken{false};

} // namespace

clsDBGHelpWrapper::clsDBGHelpWrapper(bool useThread, const scSymbolOptions& options)
    : clsThreadBase("DebugHelp::clsDBGHelpWrapper"), symbolOptions_(options), useThread_(useThread) {}

clsDBGHelpWrapper::~clsDBGHelpWrapper() { Close(); }

void clsDBGHelpWrapper::Open() {
    haveLock_ = TakeLock();
    if (!haveLock_) return;
    // The library is loaded first: a thread that cannot start, as the faulting thread holds the heap's lock,
    // keeps the loader's.
    auto engine = std::make_unique<clsDBGHELP>(symbolOptions_);
    if (engine->IsUsable()) {
        engine->ResolveAll();
        bound_ = std::move(engine);
    }
    if (UsesThread()) StartThread();
    Run(kMakeEngine);
}

void clsDBGHelpWrapper::Close() {
    if (!haveLock_) return;
    Run(kDestroyEngine);
    ThreadEnd(false, -1, false);
    ReleaseLock();
}

bool clsDBGHelpWrapper::TakeLock() {
    clsCriticalSection& section = DebugHelpThreadingSection();
    const clsDeadline deadline(kLockPatience);
    for (;; Sleep(kLockPause)) {
        if (section.TryEnter()) {
            if (!isEngineTaken.exchange(true)) return true;
            section.Leave(); // the section lets the thread that has a job pass
        }
        if (deadline.HasPassed()) return false;
    }
}

void clsDBGHelpWrapper::ReleaseLock() {
    haveLock_ = false;
    isEngineTaken = false;
    DebugHelpThreadingSection().Leave();
}

void clsDBGHelpWrapper::StartThread() {
    hasThread_ = request_.IsHeld() && done_.IsHeld() && ThreadStart();
    if (hasThread_) return;
    DebugWrite(L"problem running thread (usually the GPF happened in an allocator...)");
    useThread_ = false;
    ThreadEnd(false, kTimeoutOfFailedStart, false);
}

// The engine is made and destroyed on the job's thread if there is one. The other work is done where the
// options say.
int32_t clsDBGHelpWrapper::Run(Command command) {
    result_ = 0;
    if (!haveLock_ || isBroken_) return 0;
    command_ = command;
    walk_.mostFrames = MostFrames();
    const bool isOfThread = command == kMakeEngine || command == kDestroyEngine;
    const bool usesThread = UsesThread();
    walk_.mode = FrameMode();
    if (hasFaulted_ && !CanRunAfterFault(command)) return 0;
    if (hasThread_ && (isOfThread || usesThread || hasFaulted_)) return RunOnThread();
    if (IsLoaderFree()) return Perform(command);
    // A thread that could not start keeps the loader's lock, which dbghelp would wait for without end.
    DebugWrite(L"ERR: the loader is locked, the stack engine cannot work (command %d)", command);
    Abandon();
    return 0;
}

// A dump needs nothing of what a fault may have left behind. It is written on the job's thread then, which
// can be terminated if dbghelp is locked.
bool clsDBGHelpWrapper::CanRunAfterFault(Command command) {
    if (command == kWriteDump && hasThread_) return true;
    if (command == kDestroyEngine) Abandon();
    return false;
}

// Leaves the engine as it is: to touch it could mean to wait for ever.
void clsDBGHelpWrapper::Abandon() {
    isBroken_ = true;
    std::ignore = bound_.release();
    std::ignore = engine_.release();
}

int32_t clsDBGHelpWrapper::RunOnThread() {
    done_.Reset();
    request_.Set();
    const DWORD waited = done_.Wait(kPatience);
    if (waited != WAIT_OBJECT_0) {
        DebugWrite(L"KILLing dump thread...");
        hasThread_ = false;
        ThreadEnd(true, 0, true);
        Abandon();
        result_ = 0;
    }
    done_.Reset();
    return result_;
}

uint32_t clsDBGHelpWrapper::ThreadBody() {
    const HANDLE request = request_.Get();
    for (int32_t index; ThreadWait(-1, index, 1, &request);) {
        if (index != 0) continue;
        request_.Reset();
        result_ = Perform(command_);
        done_.Set();
    }
    return 0;
}

// Damaged memory may make dbghelp fault. That must cost the command only, and never lead into the report of a
// fault while one is made.
int32_t clsDBGHelpWrapper::Perform(Command command) {
    int32_t result = 0;
    try {
        if (Shielded([&] { result = PerformUnshielded(command); })) return result;
        DebugWrite(L"ERR: fault in the stack engine (command %d)", command);
        hasFaulted_ = true;
    } catch (...) {
        DebugWrite(L"ERR: out of memory in the stack engine (command %d)", command);
    }
    return 0;
}

int32_t clsDBGHelpWrapper::PerformUnshielded(Command command) {
    if (command == kMakeEngine) engine_ = std::move(bound_);
    if (!engine_) return 0;
    switch (command) {
        case kMakeEngine:
            return 1;
        case kDestroyEngine:
            engine_.reset();
            return 1;
        case kWalkStack:
            frames_ = engine_->Walk(walk_);
            return static_cast<bool>(frames_);
        case kListModules:
            modules_ = engine_->ListModules();
            return static_cast<bool>(modules_);
        default: {
            const HRESULT result = engine_->Write(dump_);
            if (FAILED(result))
                DebugWrite(L"pDBGHELP->WriteMiniDump() failed: %s",
                           String::FromError(static_cast<DWORD>(result)).Text());
            return SUCCEEDED(result);
        }
    }
}

clsAutoRelease<clsDBGStackTraceList*> clsDBGHelpWrapper::WalkStack(const CONTEXT* context) {
    CONTEXT captured = {};
    if (!context) {
        auto& capture = Kernel32().RtlCaptureContext;
        if (!capture.IsAvailable()) return {};
        capture(&captured);
    }
    clsAutoCloseHandle thread;
    DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), thread.Receive(), 0, FALSE,
                    DUPLICATE_SAME_ACCESS);
    walk_ = {.context = context ? context : &captured, .thread = thread.Get()};
    const bool isWalked = Run(kWalkStack) != 0;
    auto frames = std::exchange(frames_, {});
    return isWalked ? std::move(frames) : clsAutoRelease<clsDBGStackTraceList*>();
}

clsAutoRelease<clsDBGModuleList*> clsDBGHelpWrapper::ListModules() {
    const bool isListed = Run(kListModules) != 0;
    auto modules = std::exchange(modules_, {});
    return isListed ? std::move(modules) : clsAutoRelease<clsDBGModuleList*>();
}

bool clsDBGHelpWrapper::WriteMiniDump(const String& path, EXCEPTION_POINTERS* exception) {
    dump_ = {path, exception, FaultingThreadId()};
    return Run(kWriteDump) != 0;
}

} // namespace vxut
