#include "host/trace_receiver.h"

#include "host/command.h"
#include "host/text.h"

#include <algorithm>
#include <string_view>

namespace vlm {

namespace {

// What is taken of a message at most, for those that hold more than a record.
constexpr size_t kMostMessageBytes = 4096;
constexpr DWORD kReadPatience = 100;
// How long processes have to say good-bye.
constexpr DWORD kFarewell = 300;
constexpr wchar_t kOtherViewer[] = L"another viewer is running";

// Lets everybody in the session take part.
class clsOpenAccess {
public:
    clsOpenAccess() {
        InitializeSecurityDescriptor(&descriptor_, SECURITY_DESCRIPTOR_REVISION);
        SetSecurityDescriptorDacl(&descriptor_, TRUE, nullptr, FALSE);
    }
    clsOpenAccess(const clsOpenAccess&) = delete;
    clsOpenAccess& operator=(const clsOpenAccess&) = delete;

    SECURITY_ATTRIBUTES* Get() { return &attributes_; }

private:
    SECURITY_DESCRIPTOR descriptor_ = {};
    SECURITY_ATTRIBUTES attributes_ = {sizeof attributes_, &descriptor_, FALSE};
};

LONG64 ValueOf(HWND window) { return reinterpret_cast<INT_PTR>(window); }

bool IsAlive(LONG64 window) {
    return window && IsWindow(reinterpret_cast<HWND>(static_cast<INT_PTR>(window)));
}

volatile LONG64* Slot(UtilTraceBlock& block) { return reinterpret_cast<volatile LONG64*>(&block.window); }

} // namespace

clsTraceReceiver::clsTraceReceiver(clsTraceQueue& queue) : queue_(queue) {
    MapBlock();
    if (IsAlive(*Slot(*block_)) || FindWindowW(UTIL_TRACE_WINDOW_CLASS, nullptr)) Fail(kOtherViewer);
    MakeMailslot();
    MakeWindow();
    Publish();
    if (mailslot_) reader_ = std::thread([this] { ReadMailslot(); });
}

clsTraceReceiver::~clsTraceReceiver() {
    Withdraw();
    isOver_ = true;
    if (reader_.joinable()) reader_.join();
}

void clsTraceReceiver::MapBlock() {
    clsOpenAccess everybody;
    mapping_ = Own(CreateFileMappingW(INVALID_HANDLE_VALUE, everybody.Get(), PAGE_READWRITE | SEC_COMMIT, 0,
                                      sizeof(UtilTraceBlock), UTIL_TRACE_BLOCK));
    if (mapping_)
        block_.reset(static_cast<UtilTraceBlock*>(MapViewOfFile(mapping_.get(), FILE_MAP_WRITE, 0, 0, 0)));
    if (!block_) Fail(L"the block that processes share cannot be had: " + SystemMessage(GetLastError()));
}

// The name may still be held by processes that have not noticed that their last viewer has gone.
void clsTraceReceiver::MakeMailslot() {
    clsOpenAccess everybody;
    mailslot_ = Own(CreateMailslotW(UTIL_TRACE_MAILSLOT, 0, kReadPatience, everybody.Get()));
}

void clsTraceReceiver::MakeWindow() {
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = Answer;
    windowClass.lpszClassName = UTIL_TRACE_WINDOW_CLASS;
    RegisterClassW(&windowClass);
    // Never shown, but not a message-only window: those are not found by their class.
    window_.reset(CreateWindowExW(0, UTIL_TRACE_WINDOW_CLASS, L"vlm trace", WS_POPUP, 0, 0, 0, 0, nullptr,
                                  nullptr, nullptr, nullptr));
    if (!window_) Fail(L"the window cannot be made: " + SystemMessage(GetLastError()));
    SetWindowLongPtrW(window_.get(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    // Processes with fewer rights may send as well.
    ChangeWindowMessageFilterEx(window_.get(), WM_COPYDATA, MSGFLT_ALLOW, nullptr);
}

// Of two viewers that start at once, one gets the block.
void clsTraceReceiver::Publish() {
    const LONG64 before = *Slot(*block_);
    if (IsAlive(before) ||
        InterlockedCompareExchange64(Slot(*block_), ValueOf(window_.get()), before) != before)
        Fail(kOtherViewer);
}

void clsTraceReceiver::Withdraw() { InterlockedCompareExchange64(Slot(*block_), 0, ValueOf(window_.get())); }

void clsTraceReceiver::Run(HANDLE stop, DWORD milliseconds) {
    PumpMessages(stop, milliseconds);
    Withdraw();
    isClosed_ = false;
    PumpMessages(nullptr, kFarewell);
}

void clsTraceReceiver::PumpMessages(HANDLE stop, DWORD milliseconds) {
    const DWORD count = stop ? 1 : 0;
    const ULONGLONG start = GetTickCount64();
    for (;;) {
        const ULONGLONG elapsed = GetTickCount64() - start;
        if (milliseconds != INFINITE && elapsed >= milliseconds) return;
        const DWORD left = milliseconds == INFINITE ? INFINITE : static_cast<DWORD>(milliseconds - elapsed);
        const DWORD woken = MsgWaitForMultipleObjects(count, &stop, FALSE, left, QS_ALLINPUT);
        if (woken == WAIT_FAILED || woken < WAIT_OBJECT_0 + count) return;
        for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageW(&message);
        if (isClosed_) return;
    }
}

LRESULT CALLBACK clsTraceReceiver::Answer(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* receiver = reinterpret_cast<clsTraceReceiver*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (receiver && message == WM_CLOSE) {
        receiver->isClosed_ = true;
        return 0;
    }
    if (message != WM_COPYDATA || !receiver) return DefWindowProcW(window, message, wParam, lParam);
    return receiver->Take(*reinterpret_cast<const COPYDATASTRUCT*>(lParam));
}

LRESULT clsTraceReceiver::Take(const COPYDATASTRUCT& copy) {
    if (copy.dwData == UTIL_TRACE_QUERY_UTF8 || copy.dwData == UTIL_TRACE_QUERY_CAPABILITY) return 1;
    if (copy.dwData != UTIL_TRACE_LINE || !copy.lpData) return 0;
    const auto* text = static_cast<const char*>(copy.lpData);
    queue_.Add(std::string(text, strnlen(text, std::min<size_t>(copy.cbData, kMostMessageBytes))));
    return 1;
}

void clsTraceReceiver::ReadMailslot() {
    char record[kMostMessageBytes];
    while (!isOver_) {
        DWORD bytes = 0;
        if (!ReadFile(mailslot_.get(), record, sizeof record, &bytes, nullptr)) {
            if (GetLastError() != ERROR_SEM_TIMEOUT) Sleep(kReadPatience);
            continue;
        }
        std::string_view text(record, bytes);
        if (text.ends_with(static_cast<char>(UTIL_TRACE_RECORD_END))) text.remove_suffix(1);
        queue_.Add(std::string(text));
    }
}

} // namespace vlm
