// A job of the engine: its lock, its thread, its options.
#pragma once

#include "containers/skip_list.h"
#include "crash/debug_help.h"
#include "threads/event.h"
#include "threads/thread.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace vxut {

// Takes the lock that all components share, and makes the engine, on a thread of its own if it can. Work is
// done on that thread, which is terminated if it takes more than kPatience, or where UsesThread() says; calls
// wait for it. A job that failed to open, whose thread was terminated, or in whose engine a fault was caught,
// fails in all calls.
//
// Belongs to the thread that opens it, which holds the lock until Close(). The process has one open job at a
// time, also on the same thread.
class clsDBGHelpWrapper : public clsThreadBase {
public:
    static constexpr int32_t kLockPatience = 5000; // milliseconds
    static constexpr DWORD kPatience = 60000;      // for one command

    explicit clsDBGHelpWrapper(bool useThread = true, const scSymbolOptions& options = {});
    ~clsDBGHelpWrapper() override;

    // Opens the job. A job that could not be opened can be used and closed all the same.
    void Open();
    void Close();

    // Return null after a failure. Without a context the calling thread's stack is walked.
    clsAutoRelease<clsDBGStackTraceList*> WalkStack(const CONTEXT* context);
    clsAutoRelease<clsDBGModuleList*> ListModules();
    // Returns whether the dump was written.
    bool WriteMiniDump(const String& path, EXCEPTION_POINTERS* exception);

protected:
    uint32_t ThreadBody() override;
    uint32_t ThreadStackSize() const override { return 512 * 1024; }

    // The options, asked before each command in this order.
    virtual int32_t MostFrames() const { return 20; }
    virtual bool UsesThread() const { return useThread_; }
    virtual uint32_t FrameMode() const { return UTIL_DEBUGHELP_FRAME_SYMBOLS; }

private:
    enum Command { kMakeEngine = 0, kDestroyEngine = 1, kWalkStack = 2, kListModules = 3, kWriteDump = 4 };

    bool TakeLock();
    void ReleaseLock();
    void StartThread();
    int32_t Run(Command command);
    int32_t RunOnThread();
    int32_t Perform(Command command);
    int32_t PerformUnshielded(Command command);
    bool CanRunAfterFault(Command command);
    void Abandon();

    const scSymbolOptions symbolOptions_;
    clsEvent request_{EventReset::kManual};
    clsEvent done_{EventReset::kManual};
    bool useThread_;
    bool hasThread_ = false;
    bool haveLock_ = false;
    bool hasFaulted_ = false; // in dbghelp, on its thread or another
    bool isBroken_ = false;   // nothing can be done any more

    Command command_ = kMakeEngine;
    int32_t result_ = 0;
    // Arguments and results of the commands.
    scStackWalk walk_;
    scMinidump dump_;
    clsAutoRelease<clsDBGStackTraceList*> frames_;
    clsAutoRelease<clsDBGModuleList*> modules_;
    std::unique_ptr<clsDBGHELP> bound_;  // the engine, before its thread has it
    std::unique_ptr<clsDBGHELP> engine_; // null if it could not be made
};

// The job behind a handle.
class clsDBGHelpWrapperGPFProt : public clsDBGHelpWrapper {
public:
    void SetOption(uint32_t option, uint32_t value) { options_[option] = value; }
    ~clsDBGHelpWrapperGPFProt() override { Close(); }

protected:
    int32_t MostFrames() const override {
        return static_cast<int32_t>(Option(UTIL_DEBUGHELP_MOST_FRAMES, 100));
    }
    bool UsesThread() const override { return Option(UTIL_DEBUGHELP_USE_THREAD, 1) != 0; }
    uint32_t FrameMode() const override {
        return Option(UTIL_DEBUGHELP_FRAME_MODE, UTIL_DEBUGHELP_FRAME_SYMBOLS);
    }

private:
    uint32_t Option(uint32_t option, uint32_t fallback) const {
        const uint32_t* const value = options_.find(option);
        return value ? *value : fallback;
    }

    WCValSkipListDict<uint32_t, uint32_t> options_;
};

} // namespace vxut
