// The chain of help objects and the hook that watches for F1.
#include "base/debug.h"
#include "base/guard.h"
#include "base/unload_steps.h"
#include "containers/list.h"
#include "windowing/help.h"

#include <new>

namespace vxut {
namespace {

WCValSList<HelpOwner>& Chain() {
    static WCValSList<HelpOwner> chain;
    return chain;
}

HHOOK installed = nullptr;

// The window above: the parent, or the owner of a window without one.
HWND WindowAbove(HWND window) {
    const HWND parent = GetParent(window);
    return parent ? parent : GetWindow(window, GW_OWNER);
}

HelpOwner HelpOfActiveWindow() {
    for (HWND window = GetActiveWindow(); window; window = WindowAbove(window))
        if (HelpOwner help = FindHelpOfWindow(window)) return help;
    return nullptr;
}

bool IsPressOfF1(int code, WPARAM key, LPARAM state) {
    constexpr LPARAM kReleased = LPARAM{1} << 31;
    return code == HC_ACTION && key == VK_F1 && !(state & kReleased);
}

// Returns whether the key was for a help object. With Shift or Ctrl alone, it is and nothing is shown.
bool TakeF1() {
    const HelpOwner help = HelpOfActiveWindow();
    if (!help) return false;
    const bool shift = IsKeyDown(VK_SHIFT);
    const bool control = IsKeyDown(VK_CONTROL);
    if ((!shift && !control) || (shift && control && IsKeyDown(VK_MENU)))
        help->Display(UTIL_HELP_FIND_NUMBER);
    return true;
}

LRESULT CALLBACK WatchKeys(int code, WPARAM key, LPARAM state) {
    if (IsPressOfF1(code, key, state) && Guarded(false, TakeF1)) return 0;
    return CallNextHookEx(installed, code, key, state);
}

void RemoveHook() {
    if (installed) UnhookWindowsHookEx(installed);
    installed = nullptr;
}

void ShutDown() {
    RemoveHook();
    for (const HelpOwner& help : Chain()) help->ForgetHost();
}

void InstallHook() {
    if (installed) return;
    SetUnloadStep(UnloadStep::kHelpHook, ShutDown);
    installed = SetWindowsHookExW(WH_KEYBOARD, WatchKeys, nullptr, GetCurrentThreadId());
    if (installed) return;
    const DWORD error = GetLastError();
    DebugWrite(L"WRN: UtilHelpOpen(): SetWindowsHookEx() failed: %s", String::FromError(error).Text());
}

template <class Match>
HelpOwner FirstHelp(Match match) {
    for (const HelpOwner& help : Chain())
        if (match(*help)) return help;
    return nullptr;
}

} // namespace

void LinkHelp(const HelpOwner& help) {
    if (!Chain().append(help)) throw std::bad_alloc();
    InstallHook();
}

HelpOwner FindHelp(HUTILHELP handle) {
    return FirstHelp([=](const clsHelp& help) { return &help == reinterpret_cast<const clsHelp*>(handle); });
}

HelpOwner FindHelpOfWindow(HWND window) {
    return FirstHelp([=](const clsHelp& help) { return help.Window() == window; });
}

bool UnlinkHelp(const HelpOwner& help) {
    if (Chain().removeIf([&](const HelpOwner& linked) { return linked == help; }) == 0) return false;
    if (Chain().isEmpty()) RemoveHook();
    return true;
}

} // namespace vxut
