#include "windowing/cbt_hook.h"

#include "base/debug.h"
#include "base/identity.h"
#include "base/system_libraries.h"
#include "base/unload_steps.h"
#include "text/string.h"

#include <atomic>

namespace vxut {
namespace {

constinit std::atomic<HHOOK> installed{nullptr};
constinit std::atomic<UtilCBTCallback> hostCallback{nullptr};

// The callback is read before each call: the host may have removed it in the meantime.
LRESULT CALLBACK HookProcedure(int code, WPARAM wParam, LPARAM lParam) {
    if (const UtilCBTCallback callback = hostCallback) callback(code, wParam, lParam, 1, nullptr);
    LRESULT result = CallNextHookEx(installed, code, wParam, lParam);
    if (const UtilCBTCallback callback = hostCallback) callback(code, wParam, lParam, 0, &result);
    return result;
}

void Remove() {
    if (const HHOOK hook = installed.exchange(nullptr)) UnhookWindowsHookEx(hook);
}

void Install() {
    SetUnloadStep(UnloadStep::kCbtHook, Remove); // the hook's procedure is unloaded too
    installed = SetWindowsHookExW(WH_CBT, HookProcedure, Identity().library, 0);
    if (installed) return;
    const DWORD error = GetLastError();
    DebugWrite(L"WRN: UtilSetCBTHook(): SetWindowsHookEx() failed: %s", String::FromError(error).Text());
}

bool IsDebugged() {
    auto& isDebuggerPresent = Kernel32().IsDebuggerPresent;
    return isDebuggerPresent.IsAvailable() && isDebuggerPresent();
}

} // namespace

void SetCbtHook(UtilCBTCallback callback) {
    if (IsDebugged()) return;
    if (callback) Remove();
    hostCallback = callback;
    if (callback)
        Install();
    else
        Remove();
}

} // namespace vxut
