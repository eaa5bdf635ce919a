// Start and end of a thread object, and of a thread by system calls alone.
#include "threads/thread.h"

#include <benchmark/benchmark.h>

#include <windows.h>

namespace {

class EmptyThread : public vxut::clsThreadBase {
public:
    EmptyThread() : clsThreadBase("bench") {}
    ~EmptyThread() override { ThreadEnd(false, -1, false); }

protected:
    uint32_t ThreadBody() override { return 0; }
    bool ThreadOwnsWindows() const override { return false; }
};

void StartAndEndVxut(benchmark::State& state) {
    EmptyThread thread;
    for (auto _ : state) {
        if (!thread.ThreadStart()) state.SkipWithError("the thread did not start");
        thread.ThreadEnd(false, -1, false);
    }
}
BENCHMARK(StartAndEndVxut)->Name("ThreadStartAndEnd/vxut");

DWORD WINAPI DoNothing(void*) { return 0; }

void StartAndEndSystem(benchmark::State& state) {
    for (auto _ : state) {
        HANDLE thread = CreateThread(nullptr, 16384, DoNothing, nullptr, 0, nullptr);
        WaitForSingleObject(thread, INFINITE);
        CloseHandle(thread);
    }
}
BENCHMARK(StartAndEndSystem)->Name("ThreadStartAndEnd/floor:CreateThread");

} // namespace
