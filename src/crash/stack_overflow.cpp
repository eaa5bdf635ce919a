#include "crash/stack_overflow.h"

#include "base/critical_section.h"
#include "base/shield.h"
#include "base/system_libraries.h"
#include "crash/gpf_protection.h"
#include "threads/event.h"
#include "threads/thread.h"

#include <atomic>
#include <memory>

namespace vxut {
namespace {

constinit std::atomic<uint32_t> reserve{0};
// While an overflow is reported: the reporting thread, and the one that it reports.
constinit std::atomic<DWORD> reportingThread{0};
constinit std::atomic<DWORD> overflownThread{0};

// Waits for an overflow from the time on when reserves are switched on.
class OverflowReporter final : public clsThreadBase {
public:
    OverflowReporter() : clsThreadBase("GPFInfo::StackOverflow") {}
    ~OverflowReporter() override { ThreadEnd(false, -1, false); }

    // On the thread that has overflown, with little stack.
    void Report(EXCEPTION_POINTERS* exception) {
        exception_ = exception;
        code_ = exception->ExceptionRecord->ExceptionCode;
        overflownThread = GetCurrentThreadId();
        done_.Reset();
        request_.Set();
        const HANDLE ends[] = {done_.Get(), ended_.Get()};
        WaitForMultipleObjects(2, ends, FALSE, INFINITE);
        overflownThread = 0;
    }

protected:
    uint32_t ThreadBody() override {
        const HANDLE request = request_.Get();
        for (int32_t index; ThreadWait(-1, index, 1, &request);) {
            if (index != 0) continue;
            request_.Reset();
            reportingThread = GetCurrentThreadId();
            // The overflown thread waits: a fault in here must not make it wait for ever.
            Shielded([this] { clsGPFProtection().GenerateExceptionReport({.exception = exception_}, true); });
            reportingThread = 0;
            done_.Set();
            EndProcess();
        }
        ended_.Set();
        return 0;
    }
    uint32_t ThreadStackSize() const override { return 512 * 1024; }

private:
    // The system ends the process when the filter has returned. On the little stack that is left it may fail
    // to, and end the thread only.
    void EndProcess() const {
        constexpr int32_t kPatience = 3000;
        int32_t index;
        ThreadWait(kPatience, index);
        TerminateProcess(GetCurrentProcess(), code_);
    }

    clsEvent request_{EventReset::kManual};
    clsEvent done_{EventReset::kManual};
    clsEvent ended_{EventReset::kManual};
    EXCEPTION_POINTERS* exception_ = nullptr; // on the stack that has overflown
    DWORD code_ = 0;
};

// The thread runs as long as the process: the library must not be unloaded under it.
void PinLibrary() {
    HMODULE pinned;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const wchar_t*>(&PinLibrary), &pinned);
}

clsCriticalSection lock; // guards the making of the reporter
std::atomic<OverflowReporter*> reporter{nullptr};

} // namespace

bool SetStackReserve(uint32_t bytes) {
    const clsCriticalSectionScope scope(lock);
    if (bytes != 0 && !reporter) {
        auto made = std::make_unique<OverflowReporter>();
        if (!made->ThreadStart()) return false;
        PinLibrary();
        reporter = made.release();
    }
    reserve = bytes;
    return true;
}

void PrepareForStackOverflow() {
    ULONG bytes = reserve;
    if (bytes != 0 && Kernel32().SetThreadStackGuarantee.IsAvailable())
        Kernel32().SetThreadStackGuarantee(&bytes);
}

// Once: what the system does next on the little stack that is left may overflow again.
void ReportStackOverflow(EXCEPTION_POINTERS* exception) {
    static constinit std::atomic<bool> isReported{false};
    OverflowReporter* const it = reporter;
    if (it && reserve != 0 && !isReported.exchange(true)) it->Report(exception);
}

DWORD FaultingThreadId() noexcept {
    const DWORD own = GetCurrentThreadId();
    return reportingThread == own && overflownThread != 0 ? overflownThread.load() : own;
}

} // namespace vxut
