// The sinks that every process has: the live viewer and the log file.
#pragma once

#include "trace/debug_log.h"
#include "trace/debug_sinks.h"
#include "trace/viewer_link.h"

namespace vxut {

class clsStandardSinks final : public IclsDebugSinks {
public:
    explicit clsStandardSinks(const ViewerNames& names = kViewerNames) : viewer_(names) {}
    clsStandardSinks(const clsStandardSinks&) = delete;
    clsStandardSinks& operator=(const clsStandardSinks&) = delete;

    bool IsAttached() override;
    void Send(const wchar_t* line) override;
    void Attach() override;
    void Detach() override;

    void SetLog(IclsDebugLog* log) noexcept { log_ = log; }
    const clsViewerLink& Viewer() const noexcept { return viewer_; }

private:
    void FollowViewer();

    clsViewerLink viewer_;
    IclsDebugLog* log_ = nullptr;
    // Greetings and the line that is being sent may write lines of their own, which are no occasion to look
    // for viewers.
    bool isBusy_ = false;
};

// Those of this process.
clsStandardSinks& StandardSinks();

} // namespace vxut
