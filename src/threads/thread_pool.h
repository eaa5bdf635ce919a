// One-shot work on the system's thread pools.
#pragma once

#include "base/critical_section.h"
#include "base/system_libraries.h"

#include <windows.h>

#include <atomic>

namespace vxut {

// The system's functions for thread pools, which exist from Windows Vista on.
class clsThreadPoolBase : public clsKernel32Base {
public:
    clsLateFunction<decltype(::CreateThreadpool)> CreateThreadpool{*this, "CreateThreadpool", 4};
    clsLateFunction<decltype(::CloseThreadpool)> CloseThreadpool{*this, "CloseThreadpool", 4};
    clsLateFunction<decltype(::CreateThreadpoolCleanupGroup)> CreateThreadpoolCleanupGroup{
        *this, "CreateThreadpoolCleanupGroup", 0};
    clsLateFunction<decltype(::CloseThreadpoolCleanupGroup)> CloseThreadpoolCleanupGroup{
        *this, "CloseThreadpoolCleanupGroup", 4};
    clsLateFunction<decltype(::CloseThreadpoolCleanupGroupMembers)> CloseThreadpoolCleanupGroupMembers{
        *this, "CloseThreadpoolCleanupGroupMembers", 12};
    clsLateFunction<decltype(::CallbackMayRunLong)> CallbackMayRunLong{*this, "CallbackMayRunLong", 4};
    clsLateFunction<decltype(::CreateThreadpoolWork)> CreateThreadpoolWork{*this, "CreateThreadpoolWork", 12};
    clsLateFunction<decltype(::CloseThreadpoolWork)> CloseThreadpoolWork{*this, "CloseThreadpoolWork", 4};
    clsLateFunction<decltype(::SubmitThreadpoolWork)> SubmitThreadpoolWork{*this, "SubmitThreadpoolWork", 4};
    clsLateFunction<decltype(::WaitForThreadpoolWorkCallbacks)> WaitForThreadpoolWorkCallbacks{
        *this, "WaitForThreadpoolWorkCallbacks", 8};

protected:
    // A pool needs all of the functions.
    bool AreAllAvailable();
};

// Owns a thread pool with a clean-up group. Without the functions for it the object is empty. It must outlive
// the work items that are created for it. While the library is being unloaded the destructor leaves the pool
// alone.
class clsThreadPool : public clsThreadPoolBase {
public:
    clsThreadPool();
    ~clsThreadPool() override;

    bool HasPool() const noexcept { return pool_ != nullptr; }
    TP_CALLBACK_ENVIRON* Environment() noexcept { return &environment_; }

private:
    void CloseAll();

    PTP_POOL pool_ = nullptr;
    PTP_CLEANUP_GROUP cleanupGroup_ = nullptr;
    TP_CALLBACK_ENVIRON environment_ = {};
};

// Work that is done once, on a thread of a pool. A subclass implements Work() and calls Release() in its own
// destructor: when the destructor of the base class runs, the members that Work() uses no longer exist.
// Submit() and Release() may be called on any thread, Release() also by Work().
class clsThreadPoolWorkerBaseRunOnce {
public:
    explicit clsThreadPoolWorkerBaseRunOnce(clsThreadPool& pool);
    clsThreadPoolWorkerBaseRunOnce(const clsThreadPoolWorkerBaseRunOnce&) = delete;
    clsThreadPoolWorkerBaseRunOnce& operator=(const clsThreadPoolWorkerBaseRunOnce&) = delete;

    // The virtual operations, in this order.
protected:
    virtual void Work() = 0; // may destroy the object

public:
    virtual ~clsThreadPoolWorkerBaseRunOnce();

    // Queues the work. Returns false without a pool, if the work was submitted before, and after Release().
    bool Submit();

    // Cancels work that has not started, and waits for work that runs unless Work() itself is the caller.
    void Release();

private:
    static void CALLBACK Run(PTP_CALLBACK_INSTANCE instance, void* worker, PTP_WORK work);

    void Close();

    clsThreadPool& pool_;
    clsCriticalSection lock_; // guards the work item
    PTP_WORK work_ = nullptr;
    bool isSubmitted_ = false;
    std::atomic<DWORD> workThreadId_{0};
};

} // namespace vxut
