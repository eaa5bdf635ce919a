#include "trace/standard_sinks.h"

#include "base/guard.h"
#include "base/last_error.h"

namespace vxut {

clsStandardSinks& StandardSinks() {
    static clsStandardSinks sinks;
    return sinks;
}

// A failure here must not cost the line that is about to be written.
void clsStandardSinks::Follow() {
    if (viewer_.IsSettled()) return;
    const clsLastErrorScope keepLastError;
    OutputDebugStringW(L"trying to reattach to TRCWIN\n");
    Guarded([&] { viewer_.Detach(); });
    Guarded([&] { viewer_.Attach(); });
}

void clsStandardSinks::Send(const wchar_t* line) {
    if (hasLogFile_) Guarded([&] { log_->Write(line); });
    viewer_.Send(line);
}

void clsStandardSinks::Attach() {
    viewer_.FindRunningViewer();
    Guarded([&] { viewer_.Attach(); });
    if (log_) log_->ReadSettings();
    SetLog(log_);
}

void clsStandardSinks::Detach() {
    Guarded([&] { viewer_.Detach(); });
    if (log_) log_->Finish();
}

void clsStandardSinks::SetLog(IclsDebugLog* log) noexcept {
    log_ = log;
    hasLogFile_ = log_ && log_->HasFile();
}

} // namespace vxut
