#include "tests/child/tasks.h"
#include "trace/debug_sinks.h"
#include "util/handle_tracking.h"

#include <windows.h>

#include <cstdio>
#include <cwchar>

namespace vxut::test {
namespace {

// Prints what listings of handles say, and at the unload whether a handle has a frame without a symbol.
class Printer final : public IclsDebugSinks {
public:
    bool IsAttached() override { return true; }
    void Send(const wchar_t* line) override {
        const bool isAddress = std::wcsstr(line, L"  0X") || std::wcsstr(line, L"  0x");
        if (const wchar_t* lost = std::wcsstr(line, L"LOST ")) {
            std::printf("%.*ls ", static_cast<int>(std::wcscspn(lost + 5, L" ")) + 5, lost);
            wantsAddress_ = isUnloading;
        } else if (wantsAddress_ && isAddress) {
            std::printf("address ");
            wantsAddress_ = false;
        }
        std::fflush(stdout);
    }
    void Attach() override {}
    void Detach() override {}

    bool isUnloading = false;

private:
    bool wantsAddress_ = false;
};

const AddChildTask unload("handle-unload", [] {
    static Printer printer;
    SetDebugSinks(&printer);
    const auto add = [](uint32_t type, uintptr_t handle) {
        UtilHandleListMgr(type, UTIL_HANDLES_ADD, reinterpret_cast<void*>(handle));
    };
    UtilHandleListMgr(OBJ_PEN, UTIL_HANDLES_LIST, nullptr); // an empty list counts as listed
    add(OBJ_PEN, 1);
    add(OBJ_BITMAP, 2);
    add(OBJ_MEMDC, 3);
    add(OBJ_MEMDC, 4);
    std::printf("| ");
    UtilHandleListMgr(OBJ_BITMAP, UTIL_HANDLES_LIST, nullptr);
    std::printf("| ");
    printer.isUnloading = true;
    return 0;
});

} // namespace
} // namespace vxut::test
