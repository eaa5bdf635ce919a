// The link to the live viewer, which may start and stop at any time.
#pragma once

#include "base/line_buffer.h"
#include "trace/shared_block.h"
#include "trace/version_text.h"
#include "trace/viewer_mailslot.h"
#include "trace/wait_budget.h"
#include "util/trace_viewer.h"

#include <atomic>

namespace vxut {

// The names by which processes and viewers find each other.
struct scViewerNames {
    const wchar_t* block;
    const wchar_t* windowClass;
    const wchar_t* mailslot;
};
inline constexpr scViewerNames kViewerNames = {UTIL_TRACE_BLOCK, UTIL_TRACE_WINDOW_CLASS,
                                               UTIL_TRACE_MAILSLOT};

// Used by the thread that has the turn at the channel, but for IsIdle(). Reports its own failures with
// OutputDebugStringW only. A viewer that answers late, or not at all, costs a process at most the time of
// clsWaitBudget; then records are dropped without waiting, or written to the mailslot if there is space.
class clsViewerLink {
public:
    // The names have to live as long as the link.
    explicit clsViewerLink(const scViewerNames& names);

    // Looks for a viewer that runs already, if this is the first process of the session.
    void FindRunningViewer();

    bool IsAttached() const noexcept { return window_ != nullptr; }
    // Whether no viewer is attached and the block names the same window as at the last Attach(). For all
    // threads; takes no lock.
    bool IsIdle() const noexcept {
        return NamedWindow() == seen_.load(std::memory_order_relaxed) &&
               window_.load(std::memory_order_relaxed) == nullptr;
    }
    // Whether the block names the same window as at the last Attach() and the attached viewer still lives.
    // Asked before each line.
    bool IsSettled() const noexcept { return NamedWindow() == seen_ && (!window_ || IsWindow(window_)); }

    // Attaches to the viewer that the block names, if it lives, and sends the join line.
    void Attach();
    // Sends the leave line, once for each join.
    void Detach();

    // Sends a line in the viewer's code page, in as many records as it takes. Does nothing without a viewer.
    void Send(const wchar_t* line);

    // The viewer's answer to UTIL_TRACE_QUERY_CAPABILITY; 0 if it has not answered.
    DWORD_PTR Capability() const noexcept { return capability_; }

private:
    HWND NamedWindow() const noexcept;
    void Ask(DWORD query, DWORD_PTR& answer);
    void Greet();
    void SendRecord(char* record, size_t bytes);
    void SendToMailslot(char* record, size_t bytes);
    void SendToWindow(char* record, size_t bytes);
    void SendMessageToWindow(DWORD purpose, const char* data, size_t bytes, DWORD_PTR& answer);
    void SpendSince(uint64_t start) noexcept;

    scViewerNames names_;
    clsSharedBlock sharedBlock_;
    volatile LONG64* named_ = nullptr;  // the block's window; null if the block could not be made
    std::atomic<HWND> seen_{nullptr};   // the window that the block named at the last Attach()
    std::atomic<HWND> window_{nullptr}; // the window of the attached viewer
    bool isGreeted_ = false;
    clsWaitBudget waits_;
    clsViewerMailslot mailslot_; // open only while attached
    UINT codePage_ = CP_ACP;
    DWORD_PTR capability_ = 0;
    clsVersionText version_;
    char bytes_[clsLineBuffer::kUnits * 6]; // a line in the viewer's code page
};

} // namespace vxut
