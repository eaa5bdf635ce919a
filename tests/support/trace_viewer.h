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

// Keeps the lines of this process up to its end. Each line is there when the call that writes it returns.
// With a mailslot, lines come through it as long as nothing fails.
class TraceViewer {
public:
    enum class Mailslot { kNo, kYes };

    explicit TraceViewer(Mailslot mailslot = Mailslot::kNo)
        : mailslot_(mailslot == Mailslot::kYes ? CreateMailslotW(UTIL_TRACE_MAILSLOT, 0, 0, nullptr)
                                               : INVALID_HANDLE_VALUE),
          mapping_(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
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
        if (mailslot_ != INVALID_HANDLE_VALUE) CloseHandle(mailslot_);
    }
    TraceViewer(const TraceViewer&) = delete;
    TraceViewer& operator=(const TraceViewer&) = delete;

    // The lines since the last time.
    std::vector<std::string> Take() {
        const std::lock_guard guard(mutex_);
        EmptyMailslot();
        return std::exchange(lines_, {});
    }
    // How many lines have come through the mailslot up to the last Take().
    size_t LinesOfMailslot() const { return linesOfMailslot_; }

private:
    // A record is a line and one byte more.
    void EmptyMailslot() {
        char record[4096];
        DWORD bytes = 0;
        while (mailslot_ != INVALID_HANDLE_VALUE &&
               ReadFile(mailslot_, record, sizeof record, &bytes, nullptr) && bytes > 0) {
            lines_.emplace_back(record, bytes - 1);
            ++linesOfMailslot_;
        }
    }

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
        viewer.EmptyMailslot(); // what was written before
        if (copy.dwData == UTIL_TRACE_LINE) viewer.lines_.emplace_back(static_cast<const char*>(copy.lpData));
        return 1;
    }

    HANDLE mailslot_;
    HANDLE mapping_;
    volatile UtilTraceBlock* block_;
    std::mutex mutex_;
    std::vector<std::string> lines_;
    size_t linesOfMailslot_ = 0;
    std::thread thread_;
};

} // namespace vxut::test
