#include "util/message.h"

#include "base/guard.h"
#include "windowing/cbt_hook.h"
#include "windowing/window_messages.h"

using namespace vxut;

uint32_t UtilGetWindowMessage(const wchar_t* name) {
    return Guarded<uint32_t>(0, [&] { return name ? clsWindowMessages::Instance().NumberOf(name) : 0; });
}

int UtilGetWindowMessageName(uint32_t number, BSTR* name) {
    return Guarded(0, [&] {
        String found;
        if (!clsWindowMessages::Instance().FindName(number, found)) return 0;
        if (name && !found.IsEmpty()) found.ToBSTR(name);
        return 1;
    });
}

void UtilSetCBTHook(UtilCBTCallback callback) {
    Guarded([&] { SetCbtHook(callback); });
}
