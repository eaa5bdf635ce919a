#include "host/stop_event.h"

#include <atomic>

namespace vlm {

namespace {

// How long the closing of the console, or the user's logoff, waits for the command.
constexpr DWORD kPatience = 3000;

std::atomic<StopEvent*> current{nullptr};

} // namespace

StopEvent::StopEvent()
    : wanted_(Own(CreateEventW(nullptr, TRUE, FALSE, nullptr))),
      over_(Own(CreateEventW(nullptr, TRUE, FALSE, nullptr))) {
    current = this;
    SetConsoleCtrlHandler(Handle, TRUE);
}

StopEvent::~StopEvent() {
    SetConsoleCtrlHandler(Handle, FALSE);
    current = nullptr;
    SetEvent(over_.get());
}

// Called by the system on a new thread. After Ctrl-C the process continues; after the other events it ends
// when this function returns.
BOOL WINAPI StopEvent::Handle(DWORD kind) {
    StopEvent* const stop = current;
    if (!stop) return FALSE;
    stop->Set();
    if (kind != CTRL_C_EVENT && kind != CTRL_BREAK_EVENT) WaitForSingleObject(stop->over_.get(), kPatience);
    return TRUE;
}

} // namespace vlm
