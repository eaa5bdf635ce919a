// A viewer of debug lines inside the test's process, for programs that know include/ only. Viewers are of the
// whole session: tests that have one run alone.
#pragma once

#include "util.h"

#include <windows.h>

#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace vxut::test {

// Keeps the lines of this process up to its end. It has no mailslot, so that each line is there when the call
// that writes it returns.
class TraceViewer {
public:
    TraceViewer()
        : mapping_(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                      sizeof(UtilTraceBlock), UTIL_TRACE_BLOCK)),
          block_(static_cast<UtilTraceBlock*>(MapViewOfFile(mapping_, FILE_MAP_WRITE, 0, 0, 0))),
          thread_([this] { Run(); }) {
        while (block_->window == 0) Sleep(1);
    }
    // The process notices the end of its viewer at its next line, which therefore is written here.
    ~TraceViewer() {
        const auto window = reinterpret_cast<HWND>(block_->window);
        block_->window = 0;
        UtilDebug(L"end of the viewer");
        PostMessageW(window, WM_CLOSE, 0, 0);
        thread_.join();
        UnmapViewOfFile(const_cast<UtilTraceBlock*>(block_));
        CloseHandle(mapping_);
    }
    TraceViewer(const TraceViewer&) = delete;
    TraceViewer& operator=(const TraceViewer&) = delete;

    // The lines since the last time.
    std::vector<std::string> Take() {
        const std::lock_guard guard(mutex_);
        return std::exchange(lines_, {});
    }

private:
    void Run() {
        WNDCLASSW windowClass = {};
        windowClass.lpfnWndProc = Answer;
        windowClass.lpszClassName = UTIL_TRACE_WINDOW_CLASS;
        RegisterClassW(&windowClass);
        const HWND window = CreateWindowW(UTIL_TRACE_WINDOW_CLASS, L"", WS_POPUP, 0, 0, 0, 0, nullptr,
                                          nullptr, nullptr, nullptr);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        block_->window = reinterpret_cast<uintptr_t>(window);
        for (MSG message; GetMessageW(&message, nullptr, 0, 0) > 0;) DispatchMessageW(&message);
        UnregisterClassW(UTIL_TRACE_WINDOW_CLASS, nullptr);
    }

    static LRESULT CALLBACK Answer(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_DESTROY) PostQuitMessage(0);
        if (message != WM_COPYDATA) return DefWindowProcW(window, message, wParam, lParam);
        const auto& copy = *reinterpret_cast<const COPYDATASTRUCT*>(lParam);
        auto& viewer = *reinterpret_cast<TraceViewer*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        const std::lock_guard guard(viewer.mutex_);
        if (copy.dwData == UTIL_TRACE_LINE) viewer.lines_.emplace_back(static_cast<const char*>(copy.lpData));
        return 1;
    }

    HANDLE mapping_;
    volatile UtilTraceBlock* block_;
    std::mutex mutex_;
    std::vector<std::string> lines_;
    std::thread thread_;
};

} // namespace vxut::test
