#include "diagnostics/debug.h"
#include "diagnostics/standard_sinks.h"
#include "files/debug_log.h"
#include "frame/settings.h"
#include "tests/child/tasks.h"
#include "util/debug.h"

#include <thread>
#include <vector>

namespace vxut::test {
namespace {

const AddChildTask greetViewer("greet-viewer", [] {
    const String block = EnvironmentText(L"VXUT_TEST_BLOCK");
    const String mailslot = EnvironmentText(L"VXUT_TEST_MAILSLOT");
    clsStandardSinks sinks({block.Text(), L"vxut-test-no-class", mailslot.Text()});
    SetDebugSinks(&sinks);
    UtilDebug(L"here");
    sinks.Detach();
    SetDebugSinks(nullptr);
    return 0;
});

// Traces from several threads, two of which have names, to whoever listens.
const AddChildTask traceLines("trace-lines", [] {
    constexpr int kLines = 60;
    static constexpr const char* kNames[] = {"reader", "writer", nullptr};
    std::vector<std::thread> threads;
    for (const char* name : kNames) {
        threads.emplace_back([name] {
            DebugSetThreadName(name);
            for (int i = 0; i < kLines; ++i) UtilDebugExt(L"CHILD", 0, L"line %d", i);
            DebugSetThreadName(nullptr);
        });
    }
    for (std::thread& thread : threads) thread.join();
    return 0;
});

// Writes lines from several threads into the log that the environment names.
const AddChildTask fillLog("fill-log", [] {
    constexpr int kThreads = 3;
    constexpr int kLines = 250;
    clsDebugLogFile log(EnvironmentText(L"VXUT_TEST_LOG"), false);
    clsStandardSinks sinks;
    sinks.SetLog(&log);
    SetDebugSinks(&sinks);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([thread] {
            for (int i = 0; i < kLines; ++i)
                UtilDebug(L"<%u/%d/%d %0*d>", GetCurrentProcessId(), thread, i, 20 + i, i);
        });
    }
    for (std::thread& thread : threads) thread.join();
    sinks.Detach();
    SetDebugSinks(nullptr);
    return 0;
});

} // namespace
} // namespace vxut::test
