// Objects of tracked heaps, next to those of the system and of the run-time library.
#include "support.h"
#include "util/heap.h"

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

// What a program would write itself: a heap without a lock of its own, and one lock round each call.
void PlainSystemLocked(benchmark::State& state) {
    CRITICAL_SECTION lock;
    InitializeCriticalSection(&lock);
    const HANDLE heap = HeapCreate(HEAP_NO_SERIALIZE, 32768, 0);
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
BENCHMARK(PlainSystemLocked)->Name("PlainObject/unlocked heap and one lock");

void PlainSystem(benchmark::State& state) {
    const HANDLE heap = HeapCreate(0, 32768, 0);
    for (auto _ : state) {
        void* object = HeapAlloc(heap, 0, kSize);
        benchmark::DoNotOptimize(object);
        HeapFree(heap, 0, object);
    }
    HeapDestroy(heap);
}
BENCHMARK(PlainSystem)->Name("PlainObject/floor:HeapAlloc");

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
BENCHMARK(PlainRuntime)->Name("LooseObject/floor:malloc");

void DebugVxut(benchmark::State& state) {
    AllocateAndFree(state, Heap(UTIL_HEAP_DEBUG), UTIL_OBJECT_NO_STACK);
}
BENCHMARK(DebugVxut)->Name("DebugObject/vxut");
BENCHMARK(PlainSystem)->Name("DebugObject/floor:HeapAlloc");

void DebugWithStackVxut(benchmark::State& state) { AllocateAndFree(state, Heap(UTIL_HEAP_DEBUG), 0); }
BENCHMARK(DebugWithStackVxut)->Name("DebugObjectWithStack/vxut");

// What a program would do itself to know where an object was allocated.
void DebugWithStackSystem(benchmark::State& state) {
    const HANDLE heap = HeapCreate(0, 32768, 0);
    for (auto _ : state) {
        auto** object = static_cast<void**>(HeapAlloc(heap, 0, kSize + 30 * sizeof(void*)));
        benchmark::DoNotOptimize(RtlCaptureStackBackTrace(1, 30, object, nullptr));
        HeapFree(heap, 0, object);
    }
    HeapDestroy(heap);
}
BENCHMARK(DebugWithStackSystem)->Name("DebugObjectWithStack/HeapAlloc and RtlCaptureStackBackTrace");

} // namespace
