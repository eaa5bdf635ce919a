// An event of the system.
#pragma once

#include "threads/handle_object.h"

#include <cstdint>

namespace vxut {

// How an event returns to the state that is not set: when a wait for it succeeds, or by Reset().
enum class EventReset { kAutomatic, kManual };

// Owns an event object. If the system could not create it, IsHeld() is false and waits fail. All functions
// may be called on any thread.
class clsEvent : public clsGenericHandleObjectAutoRelease {
public:
    explicit clsEvent(EventReset reset, bool isSet = false)
        : clsGenericHandleObjectAutoRelease(
              CreateEventW(nullptr, reset == EventReset::kManual, isSet, nullptr)) {}

    void Set() noexcept { SetEvent(Get()); }
    void Reset() noexcept { ResetEvent(Get()); }
    // Resets an event of EventReset::kAutomatic.
    bool IsSet() const noexcept { return Wait(0) == WAIT_OBJECT_0; }
    // timeout is in milliseconds, or INFINITE. Returns the result of WaitForSingleObject().
    DWORD Wait(DWORD timeout) const noexcept { return WaitForSingleObject(Get(), timeout); }
};

} // namespace vxut
