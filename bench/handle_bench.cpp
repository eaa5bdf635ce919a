// Tracking of GDI handles, next to the bare capture of a call stack, which is most of the work of an add.
#include "support.h"
#include "util/handle_tracking.h"

namespace {

constexpr uint32_t kType = OBJ_PEN;
constexpr uintptr_t kLive = 10'000;
constexpr uintptr_t kBatch = 1000; // handles that are added before the clock is stopped to remove them
constexpr int kDepth = 24;         // more callers than are captured

void* Handle(uintptr_t number) { return reinterpret_cast<void*>(number * 0x10); }

class LiveHandles {
public:
    LiveHandles() { Run(UTIL_HANDLES_ADD); }
    ~LiveHandles() { Run(UTIL_HANDLES_REMOVE); }
    LiveHandles(const LiveHandles&) = delete;
    LiveHandles& operator=(const LiveHandles&) = delete;

private:
    static void Run(uint32_t command) {
        for (uintptr_t i = 1; i <= kLive; ++i) UtilHandleListMgr(kType, command, Handle(i));
    }
};

// Runs work under a stack that is deeper than what is captured.
template <class Work>
[[gnu::noinline]] int AtDepth(int depth, Work& work) {
    volatile int below = depth; // keeps the recursion one
    if (depth > 0) return AtDepth(depth - 1, work) + below;
    work();
    return depth;
}

void AddVxut(benchmark::State& state) {
    const LiveHandles live;
    auto work = [&] {
        while (state.KeepRunningBatch(kBatch)) {
            for (uintptr_t i = 1; i <= kBatch; ++i)
                UtilHandleListMgr(kType, UTIL_HANDLES_ADD, Handle(kLive + i));
            state.PauseTiming();
            for (uintptr_t i = 1; i <= kBatch; ++i)
                UtilHandleListMgr(kType, UTIL_HANDLES_REMOVE, Handle(kLive + i));
            state.ResumeTiming();
        }
    };
    AtDepth(kDepth, work);
}
BENCHMARK(AddVxut)->Name("HandleAdd/vxut");

void Capture(benchmark::State& state) {
    auto work = [&] {
        void* frames[20];
        for (auto _ : state) benchmark::DoNotOptimize(RtlCaptureStackBackTrace(0, 20, frames, nullptr));
    };
    AtDepth(kDepth, work);
}
BENCHMARK(Capture)->Name("HandleAdd/floor:RtlCaptureStackBackTrace");

// One command on live handles in turn. Adds and removes of references are measured as a pair.
void OnLive(benchmark::State& state, uint32_t command, uint32_t inverse) {
    const LiveHandles live;
    uintptr_t at = 0;
    for (auto _ : state) {
        at = at % kLive + 1;
        benchmark::DoNotOptimize(UtilHandleListMgr(kType, command, Handle(at)));
        if (inverse != command) UtilHandleListMgr(kType, inverse, Handle(at));
    }
}
BENCHMARK_CAPTURE(OnLive, test, UTIL_HANDLES_IS_LIVE, UTIL_HANDLES_IS_LIVE)->Name("HandleIsLive/vxut/10000");
BENCHMARK_CAPTURE(OnLive, pair, UTIL_HANDLES_ADD, UTIL_HANDLES_REMOVE)
    ->Name("HandleAddAndRemoveReference/vxut/10000");

} // namespace
