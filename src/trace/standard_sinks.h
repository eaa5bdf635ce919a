// The sinks that every process has: the live viewer and the log file.
#pragma once

#include "trace/debug_log.h"
#include "trace/debug_sinks.h"
#include "trace/viewer_link.h"

#include <atomic>

namespace vxut {

class clsStandardSinks final : public IclsDebugSinks {
public:
    explicit clsStandardSinks(const scViewerNames& names = kViewerNames) : viewer_(names) {}
    clsStandardSinks(const clsStandardSinks&) = delete;
    clsStandardSinks& operator=(const clsStandardSinks&) = delete;

    void Follow() override;
    bool IsAttached() override { return viewer_.IsAttached() || hasLogFile_; }
    void Send(const wchar_t* line) override;
    void Attach() override;
    void Detach() override;

    // Whether nobody listens and no viewer has appeared since Follow() was called last. Callable on any
    // thread, without the turn.
    bool IsSilent() const noexcept { return viewer_.IsIdle() && !hasLogFile_; }

    void SetLog(IclsDebugLog* log) noexcept;
    const clsViewerLink& Viewer() const noexcept { return viewer_; }

private:
    clsViewerLink viewer_;
    IclsDebugLog* log_ = nullptr;
    std::atomic<bool> hasLogFile_{false};
};

// The sinks of this process.
clsStandardSinks& StandardSinks();

} // namespace vxut
