// The receiving end of the debug channel, as util/trace_viewer.h describes it.
#pragma once

#include "host/owners.h"
#include "host/trace_queue.h"

#include <util/trace_viewer.h>
#include <windows.h>

#include <atomic>
#include <climits>
#include <thread>

namespace vlm {

// The viewer of the session, from its construction to the end of Run(). Needs a queue that outlives it.
class TraceReceiver {
public:
    // Throws if another viewer runs.
    explicit TraceReceiver(TraceQueue& queue);
    ~TraceReceiver();
    TraceReceiver(const TraceReceiver&) = delete;
    TraceReceiver& operator=(const TraceReceiver&) = delete;

    // Receives until the event is set, the time is over (INFINITE: never) or the window is asked to close,
    // and then a moment longer, for the leave lines of the processes. To be called once, by the thread that
    // has constructed the receiver.
    void Run(HANDLE stop, DWORD milliseconds);

private:
    struct UnmapBlock {
        void operator()(UtilTraceBlock* block) const { UnmapViewOfFile(block); }
    };
    struct CloseWindow {
        void operator()(HWND window) const { DestroyWindow(window); }
    };

    static LRESULT CALLBACK Answer(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Take(const COPYDATASTRUCT& copy);
    void MapBlock();
    void MakeMailslot();
    void MakeWindow();
    void Publish();
    void Withdraw();
    void ReadMailslot();
    bool Advance();

    TraceQueue& queue_;
    HandleOwner mapping_;
    std::unique_ptr<UtilTraceBlock, UnmapBlock> block_;
    HandleOwner mailslot_; // empty if its name is in use: then records arrive as messages
    std::unique_ptr<std::remove_pointer_t<HWND>, CloseWindow> window_;
    HANDLE stop_ = nullptr;
    ULONGLONG deadline_ = ULLONG_MAX;
    bool isClosed_ = false;  // the window was asked to close
    bool isLeaving_ = false; // the block no longer names the window
    std::atomic<bool> isOver_{false};
    std::thread reader_;
};

} // namespace vlm
