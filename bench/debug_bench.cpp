// A debug call when nobody listens: what it costs to leave the calls in release code.
#include "util/debug.h"

#include <benchmark/benchmark.h>

#include <windows.h>

namespace {

void SilentVxut(benchmark::State& state) {
    for (auto _ : state) UtilDebug(L"item %d of %s", 5, L"list");
}
BENCHMARK(SilentVxut)->Name("DebugCallNoListener/vxut");

void SilentSystem(benchmark::State& state) {
    for (auto _ : state) OutputDebugStringW(L"item 5 of list");
}
BENCHMARK(SilentSystem)->Name("DebugCallNoListener/OutputDebugStringW");

} // namespace
