// A viewer of debug lines that keeps what it is sent, under names of its own.
#pragma once

#include "diagnostics/viewer_link.h"

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace vxut::test {

// Names that no other process and no earlier test uses.
class FreshViewerNames {
public:
    FreshViewerNames();
    ViewerNames Get() const { return {block_.c_str(), windowClass_.c_str(), mailslot_.c_str()}; }

private:
    std::wstring block_, windowClass_, mailslot_;
};

class FakeViewer {
public:
    struct Habits {
        bool hasMailslot = true;
        bool takesUtf8 = true;
        bool answersAtAll = true;
    };

    // Lives from here on. It is the block's viewer when it is published.
    explicit FakeViewer(const ViewerNames& names) : FakeViewer(names, Habits{}) {}
    FakeViewer(const ViewerNames& names, Habits habits);
    ~FakeViewer() { Close(); }
    FakeViewer(const FakeViewer&) = delete;
    FakeViewer& operator=(const FakeViewer&) = delete;

    void Publish();
    void Withdraw();
    void Close(); // the window and the mailslot
    // Stops taking anything for good.
    void Hang() { isHanging_ = true; }

    HWND Window() const { return window_; }
    // The records up to now. A message comes back to its sender when it is kept, and the mailslot is read
    // here.
    std::vector<std::string> Records();
    // The dwData of the queries, in their order.
    std::vector<ULONG_PTR> Queries();

private:
    static LRESULT CALLBACK Answer(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void Run(HANDLE ready);
    LRESULT Take(const COPYDATASTRUCT& copy);
    void ReadMailslot();
    void Keep(std::string record);

    const std::wstring windowClass_;
    const Habits habits_;
    clsSharedBlock block_;
    clsAutoCloseFile mailslot_;
    HWND window_ = nullptr;
    std::atomic<bool> isHanging_{false};
    std::atomic<bool> isOver_{false};
    std::mutex mutex_; // guards the two lists, and the reading of the mailslot
    std::vector<std::string> records_;
    std::vector<ULONG_PTR> queries_;
    std::thread thread_;
};

} // namespace vxut::test
