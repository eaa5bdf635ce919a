#include "tests/support/fake_viewer.h"

namespace vxut::test {
namespace {

constexpr ULONG_PTR kCapability = 77;
std::atomic<int> namesMade{0};

} // namespace

FreshViewerNames::FreshViewerNames() {
    const std::wstring own = std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++namesMade);
    block_ = L"vxut-test-block-" + own;
    windowClass_ = L"vxut-test-viewer-" + own;
    mailslot_ = L"\\\\.\\mailslot\\vxut-test-" + own;
}

FakeViewer::FakeViewer(const ViewerNames& names, Habits habits)
    : windowClass_(names.windowClass), habits_(habits), block_(names.block, sizeof(UtilTraceBlock)) {
    if (habits.hasMailslot) mailslot_.Reset(CreateMailslotW(names.mailslot, 0, 0, nullptr));
    const clsAutoCloseHandle ready(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    thread_ = std::thread([&] { Run(ready.Get()); });
    WaitForSingleObject(ready.Get(), INFINITE);
}

void FakeViewer::Publish() {
    static_cast<UtilTraceBlock*>(block_.View())->window = reinterpret_cast<uintptr_t>(window_);
}

void FakeViewer::Withdraw() { static_cast<UtilTraceBlock*>(block_.View())->window = 0; }

void FakeViewer::Close() {
    if (!thread_.joinable()) return;
    isOver_ = true;
    thread_.join();
    Records(); // what the mailslot still holds
    mailslot_.Reset();
}

void FakeViewer::Run(HANDLE ready) {
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = Answer;
    windowClass.lpszClassName = windowClass_.c_str();
    RegisterClassW(&windowClass);
    window_ = CreateWindowExW(0, windowClass_.c_str(), L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr,
                              nullptr);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetEvent(ready);
    for (MSG message; !isOver_; MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT)) {
        while (!isHanging_ && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        while (isHanging_ && !isOver_) Sleep(5);
        const std::lock_guard guard(mutex_);
        ReadMailslot();
    }
    DestroyWindow(window_);
    UnregisterClassW(windowClass_.c_str(), nullptr);
}

LRESULT CALLBACK FakeViewer::Answer(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* viewer = reinterpret_cast<FakeViewer*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message != WM_COPYDATA || !viewer) return DefWindowProcW(window, message, wParam, lParam);
    return viewer->Take(*reinterpret_cast<const COPYDATASTRUCT*>(lParam));
}

LRESULT FakeViewer::Take(const COPYDATASTRUCT& copy) {
    const std::lock_guard guard(mutex_);
    if (copy.dwData == UTIL_TRACE_LINE) {
        records_.emplace_back(static_cast<const char*>(copy.lpData), copy.cbData);
        return 1;
    }
    queries_.push_back(copy.dwData);
    if (!habits_.answersAtAll) return 0;
    return copy.dwData == UTIL_TRACE_QUERY_UTF8 ? habits_.takesUtf8 : static_cast<LRESULT>(kCapability);
}

void FakeViewer::ReadMailslot() {
    char record[1024];
    DWORD bytes = 0;
    while (mailslot_ && !isHanging_ && ReadFile(mailslot_.Get(), record, sizeof record, &bytes, nullptr))
        records_.emplace_back(record, bytes);
}

std::vector<std::string> FakeViewer::Records() {
    const std::lock_guard guard(mutex_);
    ReadMailslot();
    return records_;
}

std::vector<ULONG_PTR> FakeViewer::Queries() {
    const std::lock_guard guard(mutex_);
    return queries_;
}

} // namespace vxut::test
