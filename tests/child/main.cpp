// Tasks that would end or change the process of the tests. Prints what a test wants to see.
#include "frame/load.h"
#include "frame/settings.h"
#include "frame/validate.h"
#include "util/validate.h"

#include <cstdio>
#include <functional>
#include <map>
#include <string>

using namespace vxut;

namespace {

int TellUserRoot() {
    const clsUserRoot root(true);
    std::printf("%s", root.Get() == HKEY_CURRENT_USER ? "current user" : "opened");
    return 0;
}

// Answers the box of an assertion, where there is a display to show one.
DWORD WINAPI PressButton(void* button) {
    for (;; Sleep(20)) {
        const HWND box = FindWindowW(nullptr, L"Assertion Failure");
        if (box) PostMessageW(box, WM_COMMAND, reinterpret_cast<WPARAM>(button), 0);
    }
}

int FailAssertionAndPress(uintptr_t button) {
    CreateThread(nullptr, 0, PressButton, reinterpret_cast<void*>(button), 0, nullptr);
    std::printf("before ");
    std::fflush(stdout);
    UtilAssert(L"1 == 2", L"arithmetic.cpp", 12);
    std::printf("behind");
    return 0;
}

int Unload() {
    SetUnloadStep(UnloadStep::kProfileItemPool, [] { std::printf("pool "); });
    SetUnloadStep(UnloadStep::kHandleLists, [] { std::printf("handles "); });
    Detach();
    std::printf("| ");
    Detach(); // the library is not there any more
    return 0;
}

const std::map<std::string, std::function<int()>> kTasks = {
    {"user-root", TellUserRoot},
    {"developer", [] { return IsDeveloperLogin() ? 1 : 0; }},
    {"assert-and-retry", [] { return FailAssertionAndPress(IDRETRY); }},
    {"assert-and-cancel", [] { return FailAssertionAndPress(IDCANCEL); }},
    {"unload", Unload},
};

} // namespace

int main(int argc, char** argv) {
    constexpr int kUnknownTask = 99;
    const auto task = kTasks.find(argc == 2 ? argv[1] : "");
    if (task == kTasks.end()) return kUnknownTask;
    Attach(GetModuleHandleW(nullptr));
    const int exitCode = task->second();
    std::fflush(stdout);
    Detach();
    return exitCode;
}
