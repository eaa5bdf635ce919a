// The link to the live viewer, which may come and go at any time.
#pragma once

#include "base/line_buffer.h"
#include "trace/shared_block.h"
#include "trace/version_text.h"
#include "trace/viewer_mailslot.h"
#include "util/trace_viewer.h"

namespace vxut {

// The names by which processes and viewers find each other.
struct ViewerNames {
    const wchar_t* block;
    const wchar_t* windowClass;
    const wchar_t* mailslot;
};
inline constexpr ViewerNames kViewerNames = {UTIL_TRACE_BLOCK, UTIL_TRACE_WINDOW_CLASS, UTIL_TRACE_MAILSLOT};

// Used under the channel's lock. Reports its own failures with OutputDebugStringW only.
class clsViewerLink {
public:
    explicit clsViewerLink(const ViewerNames& names);

    // The first process of the session looks whether a viewer runs already.
    void FindRunningViewer();

    bool IsAttached() const noexcept { return window_ != nullptr; }
    // Whether the block names whom it named at the last look, and who was attached to then still lives. Asked
    // before each line: without a viewer it costs two comparisons.
    bool IsSettled() const noexcept { return NamedWindow() == seen_ && (!window_ || IsWindow(window_)); }

    // Greets the viewer that the block names, if it lives.
    void Attach();
    // Says good-bye, once.
    void Detach();

    void Send(const wchar_t* line);

    // The viewer's answer about its capabilities.
    DWORD_PTR Capability() const noexcept { return capability_; }

private:
    HWND NamedWindow() const noexcept;
    bool Ask(DWORD query, DWORD_PTR& answer) const;
    void Greet();
    void SendRecord(char* record, size_t bytes);
    void SendToMailslot(char* record, size_t bytes);
    void SendToWindow(char* record, size_t bytes) const;
    bool SendMessageToWindow(DWORD purpose, const char* data, size_t bytes, DWORD_PTR& answer) const;

    ViewerNames names_;
    clsSharedBlock sharedBlock_;
    volatile LONG64* named_ = nullptr; // the block's window; null when the block cannot be had
    HWND seen_ = nullptr;              // the window that the block named at the last look
    HWND window_ = nullptr;            // the one attached to
    bool isGreeted_ = false;
    clsViewerMailslot mailslot_; // open only while attached
    UINT codePage_ = CP_ACP;
    DWORD_PTR capability_ = 0;
    clsVersionText version_;
    char bytes_[clsLineBuffer::kUnits * 6]; // a line in the viewer's code page
};

} // namespace vxut
