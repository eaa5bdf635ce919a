#include "listener.h"

#include "util/trace_viewer.h"

namespace torture {

Listener::Listener()
    : mapping_(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(UtilTraceBlock),
                                  UTIL_TRACE_BLOCK)),
      isReady_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    InitializeCriticalSection(&lock_);
    thread_ = CreateThread(nullptr, 0, Listen, this, 0, nullptr);
    WaitForSingleObject(isReady_, INFINITE);
    Publish(window_);
}

Listener::~Listener() {
    Publish(nullptr);
    PostMessageW(window_, WM_CLOSE, 0, 0);
    WaitForSingleObject(thread_, INFINITE);
    CloseHandle(thread_);
    CloseHandle(isReady_);
    CloseHandle(mapping_);
    DeleteCriticalSection(&lock_);
}

std::vector<std::string> Listener::Records() const {
    EnterCriticalSection(&lock_);
    std::vector<std::string> records = records_;
    LeaveCriticalSection(&lock_);
    return records;
}

void Listener::Publish(HWND window) const {
    auto* block =
        static_cast<UtilTraceBlock*>(MapViewOfFile(mapping_, FILE_MAP_WRITE, 0, 0, sizeof(UtilTraceBlock)));
    block->window = reinterpret_cast<uint64_t>(window);
    UnmapViewOfFile(block);
}

DWORD WINAPI Listener::Listen(void* self) {
    auto& listener = *static_cast<Listener*>(self);
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = Answer;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = UTIL_TRACE_WINDOW_CLASS;
    RegisterClassW(&windowClass); // stays registered from the first listener on
    listener.window_ = CreateWindowExW(0, UTIL_TRACE_WINDOW_CLASS, L"", 0, 0, 0, 0, 0, nullptr, nullptr,
                                       windowClass.hInstance, nullptr);
    SetWindowLongPtrW(listener.window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    SetEvent(listener.isReady_);
    for (MSG message; GetMessageW(&message, nullptr, 0, 0) > 0;) DispatchMessageW(&message);
    return 0;
}

LRESULT CALLBACK Listener::Answer(HWND window, UINT message, WPARAM wide, LPARAM low) {
    if (message == WM_DESTROY) PostQuitMessage(0);
    if (message != WM_COPYDATA) return DefWindowProcW(window, message, wide, low);
    const auto& data = *reinterpret_cast<const COPYDATASTRUCT*>(low);
    auto* listener = reinterpret_cast<Listener*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (listener && data.dwData == UTIL_TRACE_LINE && data.cbData > 0) {
        EnterCriticalSection(&listener->lock_);
        listener->records_.emplace_back(static_cast<const char*>(data.lpData), data.cbData - 1);
        LeaveCriticalSection(&listener->lock_);
    }
    return 1;
}

} // namespace torture
