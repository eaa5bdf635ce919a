// The receiving end of the debug channel, as util/trace_viewer.h describes it.
#pragma once

#include "host/owners.h"
#include "host/trace_queue.h"

#include <util/trace_viewer.h>
#include <windows.h>

#include <atomic>
#include <thread>

namespace vlm {

// The session's one viewer, from its construction on.
class clsTraceReceiver {
public:
    // Fails if another viewer runs.
    explicit clsTraceReceiver(clsTraceQueue& queue);
    ~clsTraceReceiver();
    clsTraceReceiver(const clsTraceReceiver&) = delete;
    clsTraceReceiver& operator=(const clsTraceReceiver&) = delete;

    // Receives until the event is set, the time is over (INFINITE: never) or somebody closes the window, and
    // then for a moment more what processes say when they notice. On the thread that has made the receiver.
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
    void PumpMessages(HANDLE stop, DWORD milliseconds);

    clsTraceQueue& queue_;
    HandleOwner mapping_;
    std::unique_ptr<UtilTraceBlock, UnmapBlock> block_;
    HandleOwner mailslot_; // empty when its name is taken: records come as messages then
    std::unique_ptr<std::remove_pointer_t<HWND>, CloseWindow> window_;
    bool isClosed_ = false; // the window was asked to close
    std::atomic<bool> isOver_{false};
    std::thread reader_;
};

} // namespace vlm
