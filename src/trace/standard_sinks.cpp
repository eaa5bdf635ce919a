#include "trace/standard_sinks.h"

#include "base/guard.h"
#include "base/last_error.h"

namespace vxut {
namespace {

// Sets a flag for a scope.
class clsFlagScope {
public:
    explicit clsFlagScope(bool& flag) noexcept : flag_(flag), before_(flag) { flag = true; }
    ~clsFlagScope() { flag_ = before_; }
    clsFlagScope(const clsFlagScope&) = delete;
    clsFlagScope& operator=(const clsFlagScope&) = delete;

private:
    bool& flag_;
    bool before_;
};

} // namespace

clsStandardSinks& StandardSinks() {
    static clsStandardSinks sinks;
    return sinks;
}

bool clsStandardSinks::IsAttached() {
    if (!isBusy_ && !viewer_.IsSettled()) FollowViewer();
    return viewer_.IsAttached() || (log_ && log_->HasFile());
}

// A failure here must not cost the line that is about to be written.
void clsStandardSinks::FollowViewer() {
    const clsLastErrorScope keepLastError;
    const clsFlagScope busy(isBusy_);
    OutputDebugStringW(L"trying to reattach to TRCWIN\n");
    Guarded([&] { viewer_.Detach(); });
    Guarded([&] { viewer_.Attach(); });
}

void clsStandardSinks::Send(const wchar_t* line) {
    const clsFlagScope busy(isBusy_);
    if (log_ && log_->HasFile()) Guarded([&] { log_->Write(line); });
    viewer_.Send(line);
}

void clsStandardSinks::Attach() {
    const clsFlagScope busy(isBusy_);
    viewer_.FindRunningViewer();
    Guarded([&] { viewer_.Attach(); });
    if (log_) log_->ReadSettings();
}

void clsStandardSinks::Detach() {
    const clsFlagScope busy(isBusy_);
    Guarded([&] { viewer_.Detach(); });
    if (log_) log_->Finish();
}

} // namespace vxut
