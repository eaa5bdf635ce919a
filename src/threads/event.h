// An event of the system.
#pragma once

#include "threads/handle_object.h"

#include <cstdint>

namespace vxut {

enum class EventReset { kAutomatic, kManual };

class clsEvent : public clsGenericHandleObjectAutoRelease {
public:
    explicit clsEvent(EventReset reset, bool isSet = false)
        : clsGenericHandleObjectAutoRelease(
              CreateEventW(nullptr, reset == EventReset::kManual, isSet, nullptr)) {}

    void Set() noexcept { SetEvent(Get()); }
    void Reset() noexcept { ResetEvent(Get()); }
    // Resets an event that does so by itself.
    bool IsSet() const noexcept { return Wait(0) == WAIT_OBJECT_0; }
    // In milliseconds, or INFINITE. Gives what WaitForSingleObject does.
    DWORD Wait(DWORD timeout) const noexcept { return WaitForSingleObject(Get(), timeout); }
};

} // namespace vxut
