#include "tests/child/tasks.h"
#include "util/debug.h"

#include <windows.h>

#include <thread>
#include <vector>

namespace vxut::test {
namespace {

// Traces from several threads to whoever listens.
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

} // namespace
} // namespace vxut::test
