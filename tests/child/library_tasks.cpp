#include "base/registry.h"
#include "base/unload_steps.h"
#include "checks/validate.h"
#include "library/load.h"
#include "tests/child/tasks.h"
#include "util/validate.h"

#include <cstdio>

namespace vxut::test {
namespace {

const AddChildTask userRoot("user-root", [] {
    const clsUserRoot root(true);
    std::printf("%s", root.Get() == HKEY_CURRENT_USER ? "current user" : "opened");
    return 0;
});

const AddChildTask developer("developer", [] { return IsDeveloperLogin() ? 1 : 0; });

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

const AddChildTask assertAndRetry("assert-and-retry", [] { return FailAssertionAndPress(IDRETRY); });
const AddChildTask assertAndCancel("assert-and-cancel", [] { return FailAssertionAndPress(IDCANCEL); });

const AddChildTask unload("unload", [] {
    SetUnloadStep(UnloadStep::kProfileItemPool, [] { std::printf("pool "); });
    SetUnloadStep(UnloadStep::kHandleLists, [] { std::printf("handles "); });
    Detach();
    std::printf("| ");
    Detach(); // the library is not there any more
    return 0;
});

} // namespace
} // namespace vxut::test
