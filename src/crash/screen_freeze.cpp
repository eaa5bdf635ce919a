#include "crash/screen_freeze.h"

#include <windows.h>

#include <utility>

namespace vxut {
namespace {

HWND TopWindow() {
    HWND window = GetActiveWindow();
    while (window && (GetWindowLongPtrW(window, GWL_STYLE) & WS_CHILD) != 0) window = GetParent(window);
    return window;
}

bool Freeze(HWND window) { return window && LockWindowUpdate(window); }

} // namespace

clsScreenFreeze::clsScreenFreeze() : isFrozen_(Freeze(TopWindow())) {}

void clsScreenFreeze::Release() {
    if (std::exchange(isFrozen_, false)) LockWindowUpdate(nullptr);
}

} // namespace vxut
