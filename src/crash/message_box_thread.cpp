#include "crash/message_box_thread.h"

#include "base/shield.h"

namespace vxut {

// A fault in here would wait for the thread that is reporting, which waits for this one.
uint32_t clsMessageBoxThread::ThreadBody() {
    int answer = 0;
    Shielded([&] {
        answer = MessageBoxW(nullptr, text_.Text(), title_.Text(), style_ | MB_TASKMODAL | MB_SETFOREGROUND);
    });
    if (answer != 0) result_ = answer;
    return 0;
}

int AskUser(const wchar_t* text, const wchar_t* title, UINT style, int fallback) {
    constexpr int32_t kTimeoutOfFailedStart = 1000;
    clsMessageBoxThread box(text, title, style, fallback);
    if (box.ThreadStart()) {
        box.ThreadEnd(false, -1, false);
        return box.Result();
    }
    box.ThreadEnd(false, kTimeoutOfFailedStart, false);
    const int answer = MessageBoxW(nullptr, text, title, style);
    return answer != 0 ? answer : fallback;
}

} // namespace vxut
