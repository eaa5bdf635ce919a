#include "threads/thread_pool.h"

#include "base/guard.h"
#include "base/identity.h"

#include <utility>

namespace vxut {

bool clsThreadPoolBase::AreAllAvailable() {
    return CreateThreadpool.IsAvailable() && CloseThreadpool.IsAvailable() &&
           CreateThreadpoolCleanupGroup.IsAvailable() && CloseThreadpoolCleanupGroup.IsAvailable() &&
           CloseThreadpoolCleanupGroupMembers.IsAvailable() && CallbackMayRunLong.IsAvailable() &&
           CreateThreadpoolWork.IsAvailable() && CloseThreadpoolWork.IsAvailable() &&
           SubmitThreadpoolWork.IsAvailable() && WaitForThreadpoolWorkCallbacks.IsAvailable();
}

clsThreadPool::clsThreadPool() {
    InitializeThreadpoolEnvironment(&environment_);
    if (Identity().osVersion < kWindowsVista || !AreAllAvailable()) return;
    pool_ = CreateThreadpool(nullptr);
    if (!pool_) return;
    SetThreadpoolCallbackPool(&environment_, pool_);
    cleanupGroup_ = CreateThreadpoolCleanupGroup();
    if (cleanupGroup_) SetThreadpoolCallbackCleanupGroup(&environment_, cleanupGroup_, nullptr);
}

clsThreadPool::~clsThreadPool() {
    // During unload the pool's threads have ended or wait for the loader's lock: waiting for them would not
    // end.
    if (pool_ && Identity().library) CloseAll();
}

void clsThreadPool::CloseAll() {
    if (cleanupGroup_) {
        CloseThreadpoolCleanupGroupMembers(cleanupGroup_, TRUE, nullptr);
        CloseThreadpoolCleanupGroup(cleanupGroup_);
    }
    CloseThreadpool(pool_);
}

clsThreadPoolWorkerBaseRunOnce::clsThreadPoolWorkerBaseRunOnce(clsThreadPool& pool) : pool_(pool) {
    if (pool.HasPool()) work_ = pool.CreateThreadpoolWork(Run, this, pool.Environment());
}

clsThreadPoolWorkerBaseRunOnce::~clsThreadPoolWorkerBaseRunOnce() { Release(); }

bool clsThreadPoolWorkerBaseRunOnce::Submit() {
    const clsCriticalSectionScope scope(lock_);
    if (!work_ || std::exchange(isSubmitted_, true)) return false;
    pool_.SubmitThreadpoolWork(work_);
    return true;
}

void clsThreadPoolWorkerBaseRunOnce::Release() {
    if (workThreadId_ == GetCurrentThreadId()) {
        // A thread that holds the lock is releasing the item and waits for this one.
        const clsCriticalSectionTryScope scope(lock_);
        if (scope.HasEntered() && work_) Close();
        return;
    }
    const clsCriticalSectionScope scope(lock_);
    if (!work_) return;
    pool_.WaitForThreadpoolWorkCallbacks(work_, TRUE);
    Close();
}

void clsThreadPoolWorkerBaseRunOnce::Close() { pool_.CloseThreadpoolWork(std::exchange(work_, nullptr)); }

void CALLBACK clsThreadPoolWorkerBaseRunOnce::Run(PTP_CALLBACK_INSTANCE instance, void* context, PTP_WORK) {
    auto& worker = *static_cast<clsThreadPoolWorkerBaseRunOnce*>(context);
    worker.workThreadId_ = GetCurrentThreadId();
    worker.pool_.CallbackMayRunLong(instance);
    Guarded([&] { worker.Work(); }); // may destroy the object: nothing may follow
}

} // namespace vxut
