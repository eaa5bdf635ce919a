// Turns Ctrl-C and its kin into an event, so that a command can end in good order.
#pragma once

#include "host/owners.h"

namespace vlm {

// One at a time in the process.
class clsStopEvent {
public:
    clsStopEvent();
    // Lets the system, which may be waiting to end the process, go on.
    ~clsStopEvent();
    clsStopEvent(const clsStopEvent&) = delete;
    clsStopEvent& operator=(const clsStopEvent&) = delete;

    HANDLE Get() const { return wanted_.get(); }
    void Set() { SetEvent(wanted_.get()); }

private:
    static BOOL WINAPI Handle(DWORD kind);

    HandleOwner wanted_;
    HandleOwner over_;
};

} // namespace vlm
