// One-shot work on a pool of the system's threads.
#pragma once

#include "base/critical_section.h"
#include "base/system_libraries.h"

#include <windows.h>

#include <atomic>

namespace vxut {

// The system's functions for pools, there from Windows Vista on.
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
    // Asks for all of them: a pool with some is none.
    bool AreAllAvailable();
};

// A pool, empty where the system has none. Lives longer than the work that is made for it.
class clsThreadPool : public clsThreadPoolBase {
public:
    clsThreadPool();
    ~clsThreadPool() override;

    bool IsThere() const noexcept { return pool_ != nullptr; }
    TP_CALLBACK_ENVIRON* Environment() noexcept { return &environment_; }

private:
    void CloseAll();

    PTP_POOL pool_ = nullptr;
    PTP_CLEANUP_GROUP cleanupGroup_ = nullptr;
    TP_CALLBACK_ENVIRON environment_ = {};
};

// Work that a pool's thread does once. A subclass supplies it, and calls Release() in its own destructor:
// when the one of the base runs, the members that the work uses are gone.
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

    // Has the work done. False without a pool, when it was submitted before, and when it is released.
    bool Submit();

    // Cancels work that has not begun and waits for work that has, unless it is that which calls.
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
