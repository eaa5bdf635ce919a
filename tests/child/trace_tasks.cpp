#include "tests/child/tasks.h"
#include "util/debug.h"

#include <windows.h>

#include <thread>
#include <vector>

namespace vxut::test {
namespace {

// Writes lines from several threads.
const AddChildTask traceLines("trace-lines", [] {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 3; ++thread) {
        threads.emplace_back([] {
            for (int i = 0; i < 100; ++i)
                UtilDebugExt(L"CHILD", 0, L"line %d %0*d of %u", i, 20 + i, i, GetCurrentProcessId());
        });
    }
    for (std::thread& thread : threads) thread.join();
    return 0;
});

// Ends the process while threads write lines through the DLL.
const AddChildTask exitWhileTracing("exit-while-tracing", [] {
    const HMODULE library = LoadLibraryW(L"vxut21.dll");
    static auto* const debug =
        reinterpret_cast<decltype(&UtilDebug)>(reinterpret_cast<void*>(GetProcAddress(library, "UtilDebug")));
    if (!debug) return 1;
    for (int thread = 0; thread < 4; ++thread) {
        std::thread([] {
            for (;;) debug(L"%0300d", 1);
        }).detach();
    }
    Sleep(50);
    ExitProcess(0);
});

} // namespace
} // namespace vxut::test
