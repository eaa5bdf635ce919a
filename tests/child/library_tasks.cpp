#include "base/owners.h"
#include "base/registry.h"
#include "base/unload_steps.h"
#include "checks/validate.h"
#include "library/load.h"
#include "tests/child/tasks.h"
#include "tests/support/debug_listener.h"
#include "util/validate.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

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

// Calls a function of another run-time library with a pointer that it refuses. A run-time without a handler
// ends the process.
const AddChildTask invalidParameter("invalid-parameter", [] {
    const clsAutoFreeLibrary runTime(LoadLibraryW(L"ucrtbase"));
    const auto function = [&](const char* name) {
        return reinterpret_cast<void*>(GetProcAddress(runTime.Get(), name));
    };
    const auto getHandler =
        reinterpret_cast<_invalid_parameter_handler (*)()>(function("_get_invalid_parameter_handler"));
    const auto copy = reinterpret_cast<int (*)(char*, size_t, const char*)>(function("strcpy_s"));
    Detach(); // as this program was attached when it started
    const auto before = getHandler();
    Attach(GetModuleHandleW(nullptr));
    {
        const DebugListener listener;
        const int result = copy(nullptr, 1, "x");
        std::printf("%s, %s, ", result == EINVAL ? "refused" : "taken",
                    listener.Heard(L"INVALID PARAMETER in ") ? "reported" : "silent");
    }
    std::printf("%s, ", getHandler() != before ? "installed" : "absent");
    Detach();
    std::printf("%s, ", getHandler() == before ? "restored" : "left");
    Attach(GetModuleHandleW(nullptr));
    const auto setHandler = reinterpret_cast<_invalid_parameter_handler (*)(_invalid_parameter_handler)>(
        function("_set_invalid_parameter_handler"));
    const _invalid_parameter_handler ofOthers = [](const wchar_t*, const wchar_t*, const wchar_t*, unsigned,
                                                   uintptr_t) {};
    setHandler(ofOthers);
    Detach();
    std::printf("%s", getHandler() == ofOthers ? "kept" : "lost");
    return 0;
});

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
