#include "host/stop_event.h"

#include <atomic>

namespace vlm {

namespace {

// How long a console that closes, or a user who logs off, waits for the command.
constexpr DWORD kPatience = 3000;

std::atomic<clsStopEvent*> current{nullptr};

} // namespace

clsStopEvent::clsStopEvent()
    : wanted_(Own(CreateEventW(nullptr, TRUE, FALSE, nullptr))),
      over_(Own(CreateEventW(nullptr, TRUE, FALSE, nullptr))) {
    current = this;
    SetConsoleCtrlHandler(Handle, TRUE);
}

clsStopEvent::~clsStopEvent() {
    SetConsoleCtrlHandler(Handle, FALSE);
    current = nullptr;
    SetEvent(over_.get());
}

// Runs on a thread of its own. After Ctrl-C the process goes on; after the other events it ends when this
// returns.
BOOL WINAPI clsStopEvent::Handle(DWORD kind) {
    clsStopEvent* const stop = current;
    if (!stop) return FALSE;
    stop->Set();
    if (kind != CTRL_C_EVENT && kind != CTRL_BREAK_EVENT) WaitForSingleObject(stop->over_.get(), kPatience);
    return TRUE;
}

} // namespace vlm
