#include "host/trace_receiver.h"

#include "host/command.h"
#include "host/text.h"

#include <algorithm>
#include <string_view>

namespace vlm {

namespace {

// What is taken of a message or a mailslot record at most.
constexpr size_t kMaxRecordBytes = 4096;
constexpr DWORD kReadPatience = 100;
// How long processes have time to send their leave lines.
constexpr DWORD kFarewell = 300;
constexpr wchar_t kOtherViewer[] = L"another viewer is running";

// Access for all processes of the session.
class OpenAccess {
public:
    OpenAccess() {
        InitializeSecurityDescriptor(&descriptor_, SECURITY_DESCRIPTOR_REVISION);
        SetSecurityDescriptorDacl(&descriptor_, TRUE, nullptr, FALSE);
    }
    OpenAccess(const OpenAccess&) = delete;
    OpenAccess& operator=(const OpenAccess&) = delete;

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

TraceReceiver::TraceReceiver(TraceQueue& queue) : queue_(queue) {
    MapBlock();
    if (IsAlive(*Slot(*block_)) || FindWindowW(UTIL_TRACE_WINDOW_CLASS, nullptr)) Fail(kOtherViewer);
    MakeMailslot();
    MakeWindow();
    Publish();
    if (mailslot_) reader_ = std::thread([this] { ReadMailslot(); });
}

TraceReceiver::~TraceReceiver() {
    Withdraw();
    isOver_ = true;
    if (reader_.joinable()) reader_.join();
}

void TraceReceiver::MapBlock() {
    OpenAccess everybody;
    mapping_ = Own(CreateFileMappingW(INVALID_HANDLE_VALUE, everybody.Get(), PAGE_READWRITE | SEC_COMMIT, 0,
                                      sizeof(UtilTraceBlock), UTIL_TRACE_BLOCK));
    if (mapping_)
        block_.reset(static_cast<UtilTraceBlock*>(MapViewOfFile(mapping_.get(), FILE_MAP_WRITE, 0, 0, 0)));
    if (!block_) Fail(L"the shared block cannot be opened: " + SystemMessage(GetLastError()));
}

// The name may still be in use by processes that have not noticed the end of the previous viewer.
void TraceReceiver::MakeMailslot() {
    OpenAccess everybody;
    mailslot_ = Own(CreateMailslotW(UTIL_TRACE_MAILSLOT, 0, kReadPatience, everybody.Get()));
}

void TraceReceiver::MakeWindow() {
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = Answer;
    windowClass.lpszClassName = UTIL_TRACE_WINDOW_CLASS;
    RegisterClassW(&windowClass);
    // Never shown, but not a message-only window: FindWindowW does not find those.
    window_.reset(CreateWindowExW(0, UTIL_TRACE_WINDOW_CLASS, L"vlm trace", WS_POPUP, 0, 0, 0, 0, nullptr,
                                  nullptr, nullptr, nullptr));
    if (!window_) Fail(L"the window cannot be created: " + SystemMessage(GetLastError()));
    SetWindowLongPtrW(window_.get(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    // Processes with fewer rights may send as well.
    ChangeWindowMessageFilterEx(window_.get(), WM_COPYDATA, MSGFLT_ALLOW, nullptr);
}

// Of two viewers that start at the same time, one gets the block.
void TraceReceiver::Publish() {
    const LONG64 before = *Slot(*block_);
    if (IsAlive(before) ||
        InterlockedCompareExchange64(Slot(*block_), ValueOf(window_.get()), before) != before)
        Fail(kOtherViewer);
}

void TraceReceiver::Withdraw() { InterlockedCompareExchange64(Slot(*block_), 0, ValueOf(window_.get())); }

void TraceReceiver::Run(HANDLE stop, DWORD milliseconds) {
    stop_ = stop;
    deadline_ = milliseconds == INFINITE ? ULLONG_MAX : GetTickCount64() + milliseconds;
    while (!Advance()) {
        const ULONGLONG now = GetTickCount64();
        const ULONGLONG left = deadline_ > now ? deadline_ - now : 0;
        const DWORD wait = deadline_ == ULLONG_MAX ? INFINITE : static_cast<DWORD>(left);
        if (MsgWaitForMultipleObjects(isLeaving_ ? 0 : 1, &stop_, FALSE, wait, QS_ALLINPUT) == WAIT_FAILED)
            return;
        for (MSG message; !Advance() && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);)
            DispatchMessageW(&message);
    }
}

// Starts the farewell, and later ends it, when it is time. True after the end. Also called for each message,
// because PeekMessageW does not return as long as processes send without a break; it does without a window.
bool TraceReceiver::Advance() {
    const ULONGLONG now = GetTickCount64();
    const auto isTime = [&] { return now >= deadline_ || WaitForSingleObject(stop_, 0) == WAIT_OBJECT_0; };
    if (!isLeaving_ && (isClosed_ || isTime())) {
        Withdraw();
        isLeaving_ = true;
        deadline_ = now + kFarewell;
    }
    if (isLeaving_ && now >= deadline_) window_.reset();
    return !window_;
}

LRESULT CALLBACK TraceReceiver::Answer(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* receiver = reinterpret_cast<TraceReceiver*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (receiver && message == WM_CLOSE) {
        receiver->isClosed_ = true;
        return 0;
    }
    if (message != WM_COPYDATA || !receiver) return DefWindowProcW(window, message, wParam, lParam);
    const LRESULT answer = receiver->Take(*reinterpret_cast<const COPYDATASTRUCT*>(lParam));
    receiver->Advance();
    return answer;
}

LRESULT TraceReceiver::Take(const COPYDATASTRUCT& copy) {
    if (copy.dwData == UTIL_TRACE_QUERY_UTF8 || copy.dwData == UTIL_TRACE_QUERY_CAPABILITY) return 1;
    if (copy.dwData != UTIL_TRACE_LINE || !copy.lpData) return 0;
    const auto* text = static_cast<const char*>(copy.lpData);
    queue_.Add({text, strnlen(text, std::min<size_t>(copy.cbData, kMaxRecordBytes))});
    return 1;
}

void TraceReceiver::ReadMailslot() {
    char record[kMaxRecordBytes];
    while (!isOver_) {
        DWORD bytes = 0;
        if (!ReadFile(mailslot_.get(), record, sizeof record, &bytes, nullptr)) {
            if (GetLastError() != ERROR_SEM_TIMEOUT) Sleep(kReadPatience);
            continue;
        }
        std::string_view text(record, bytes);
        if (text.ends_with(static_cast<char>(UTIL_TRACE_RECORD_END))) text.remove_suffix(1);
        queue_.Add(text);
    }
}

} // namespace vlm
