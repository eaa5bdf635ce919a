// Objects of tracked heaps, of system heaps and of the run-time library.
#include "util/heap.h"

#include <benchmark/benchmark.h>

#include <windows.h>

#include <cstdlib>

namespace {

constexpr int32_t kSize = 40;

class Heap {
public:
    explicit Heap(uint32_t flags)
        : job_(UtilJobOpen(L"BENCH", 0)), heap_(UtilHeapCreate(job_, L"BENCH", flags)) {}
    ~Heap() { UtilJobClose(job_); }
    Heap(const Heap&) = delete;
    Heap& operator=(const Heap&) = delete;

    operator HUTILHEAP() const { return heap_; }

private:
    HUTILJOB job_;
    HUTILHEAP heap_;
};

void AllocateAndFree(benchmark::State& state, HUTILHEAP heap, uint32_t flags) {
    for (auto _ : state) {
        void* object = UtilHeapObjectAlloc(heap, kSize, flags);
        benchmark::DoNotOptimize(object);
        UtilHeapObjectFree(heap, object);
    }
}

void PlainVxut(benchmark::State& state) { AllocateAndFree(state, Heap(0), 0); }
BENCHMARK(PlainVxut)->Name("PlainObject/vxut");

// The floor: each call of the library holds a lock of its own around that of the system.
void PlainSystemLocked(benchmark::State& state) {
    CRITICAL_SECTION lock;
    InitializeCriticalSection(&lock);
    const HANDLE heap = HeapCreate(0, 32768, 0);
    for (auto _ : state) {
        EnterCriticalSection(&lock);
        void* object = HeapAlloc(heap, 0, kSize);
        LeaveCriticalSection(&lock);
        benchmark::DoNotOptimize(object);
        EnterCriticalSection(&lock);
        HeapFree(heap, 0, object);
        LeaveCriticalSection(&lock);
    }
    HeapDestroy(heap);
    DeleteCriticalSection(&lock);
}
BENCHMARK(PlainSystemLocked)->Name("PlainObject/HeapAllocAndLock");

void PlainSystem(benchmark::State& state) {
    const HANDLE heap = HeapCreate(0, 32768, 0);
    for (auto _ : state) {
        void* object = HeapAlloc(heap, 0, kSize);
        benchmark::DoNotOptimize(object);
        HeapFree(heap, 0, object);
    }
    HeapDestroy(heap);
}
BENCHMARK(PlainSystem)->Name("PlainObject/HeapAlloc");

void PlainRuntime(benchmark::State& state) {
    for (auto _ : state) {
        void* object = std::malloc(kSize);
        benchmark::DoNotOptimize(object);
        std::free(object);
    }
}
BENCHMARK(PlainRuntime)->Name("PlainObject/malloc");

void LooseVxut(benchmark::State& state) { AllocateAndFree(state, nullptr, 0); }
BENCHMARK(LooseVxut)->Name("LooseObject/vxut");
BENCHMARK(PlainRuntime)->Name("LooseObject/malloc");

void DebugVxut(benchmark::State& state) {
    AllocateAndFree(state, Heap(UTIL_HEAP_DEBUG), UTIL_OBJECT_NO_STACK);
}
BENCHMARK(DebugVxut)->Name("DebugObject/vxut");
BENCHMARK(PlainSystem)->Name("DebugObject/HeapAlloc");

void DebugWithStackVxut(benchmark::State& state) { AllocateAndFree(state, Heap(UTIL_HEAP_DEBUG), 0); }
BENCHMARK(DebugWithStackVxut)->Name("DebugObjectWithStack/vxut");

// A program that records the call stack of each object itself.
void DebugWithStackSystem(benchmark::State& state) {
    const HANDLE heap = HeapCreate(0, 32768, 0);
    for (auto _ : state) {
        auto** object = static_cast<void**>(HeapAlloc(heap, 0, kSize + 30 * sizeof(void*)));
        benchmark::DoNotOptimize(RtlCaptureStackBackTrace(1, 30, object, nullptr));
        HeapFree(heap, 0, object);
    }
    HeapDestroy(heap);
}
BENCHMARK(DebugWithStackSystem)->Name("DebugObjectWithStack/HeapAllocAndRtlCaptureStackBackTrace");

} // namespace
