#include "crash/debug_help.h"

#include "crash/debug_privilege.h"
#include "threads/thread.h"

namespace vxut {
namespace {

clsAutoCloseHandle OwnProcess() {
    clsAutoCloseHandle process;
    DuplicateHandle(GetCurrentProcess(), GetCurrentProcess(), GetCurrentProcess(), process.Receive(), 0,
                    FALSE, DUPLICATE_SAME_ACCESS);
    return process;
}

} // namespace

// Carries a walk, so that the walking thread is not on the stack that is walked.
class clsDbgHelpGetStackTraceThread : public clsThreadBase {
public:
    template <class Work>
    static bool Run(Work work) {
        Carrier<Work> thread(work);
        if (!thread.ThreadStart()) return false;
        thread.ThreadEnd(false, -1, false);
        return thread.isDone_;
    }

protected:
    clsDbgHelpGetStackTraceThread() : clsThreadBase("DebugHelp::GetStackTrace") {}
    uint32_t ThreadStackSize() const override { return 256 * 1024; }

    bool isDone_ = false;

private:
    template <class Work>
    class Carrier;
};

template <class Work>
class clsDbgHelpGetStackTraceThread::Carrier : public clsDbgHelpGetStackTraceThread {
public:
    explicit Carrier(Work& work) : work_(work) {}
    ~Carrier() override { ThreadEnd(false, -1, false); }

protected:
    uint32_t ThreadBody() override {
        isDone_ = work_();
        return 0;
    }

private:
    friend clsDbgHelpGetStackTraceThread;

    Work& work_;
};

clsDBGHELP::clsDBGHELP(const scSymbolOptions& options)
    : process_(OwnProcess()), symbols_(*this, process_.Get(), options) {}

clsAutoRelease<clsDBGStackTraceList*> clsDBGHELP::Walk(const scStackWalk& walk) {
    clsAutoRelease<clsDBGStackTraceList*> list(new clsDBGStackTraceList);
    const auto work = [&] {
        const clsDebugPrivilegeScope privilege;
        return WalkStack(*this, process_.Get(), symbols_, walk, *list.Get());
    };
    const bool isDone = walk.mode & kFrameOwnThread ? clsDbgHelpGetStackTraceThread::Run(work) : work();
    if (!isDone) list.Reset();
    return list;
}

// A caller has a list of its own, whose position others do not change.
clsAutoRelease<clsDBGModuleList*> clsDBGHELP::ListModules() {
    if (!symbols_.Open()) return {};
    return clsAutoRelease<clsDBGModuleList*>(new clsDBGModuleList(*symbols_.Modules().Get()));
}

HRESULT clsDBGHELP::Write(const scMinidump& dump) {
    const clsDebugPrivilegeScope privilege;
    return WriteMinidump(*this, process_.Get(), dump);
}

} // namespace vxut
