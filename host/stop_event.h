// Turns Ctrl-C and similar console events into an event object, so that a command can end in an orderly way.
#pragma once

#include "host/owners.h"

namespace vlm {

// There may be one at a time in the process.
class StopEvent {
public:
    StopEvent();
    // Ends the wait of the console handler, after which the system may end the process.
    ~StopEvent();
    StopEvent(const StopEvent&) = delete;
    StopEvent& operator=(const StopEvent&) = delete;

    HANDLE Get() const { return wanted_.get(); }
    void Set() { SetEvent(wanted_.get()); }

private:
    static BOOL WINAPI Handle(DWORD kind);

    HandleOwner wanted_;
    HandleOwner over_;
};

} // namespace vlm
