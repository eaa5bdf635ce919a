// String, and what a C++ or C program would use instead: std::wstring, std::shared_ptr, _snwprintf.
#include "text/string.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <string>

namespace {

using vxut::String;

constexpr wchar_t kText[] = L"A text of a length that does not fit any small-string buffer";

template <class Text>
void Copy(benchmark::State& state) {
    const Text source(kText);
    for (auto _ : state) {
        Text copy(source);
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(Copy<String>)->Name("StringCopy/vxut");
BENCHMARK(Copy<std::wstring>)->Name("StringCopy/std::wstring");

void CopySharedPtr(benchmark::State& state) {
    const auto source = std::make_shared<std::wstring>(kText);
    for (auto _ : state) {
        std::shared_ptr<std::wstring> copy(source);
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(CopySharedPtr)->Name("StringCopy/std::shared_ptr");

template <class Text>
void Append(benchmark::State& state) {
    for (auto _ : state) {
        Text text;
        for (int i = 0; i < 16; ++i) text += L"twelve units";
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(Append<String>)->Name("StringAppend/vxut");
BENCHMARK(Append<std::wstring>)->Name("StringAppend/std::wstring");

void FormatVxut(benchmark::State& state) {
    for (auto _ : state) {
        String text;
        text.Format(L"%s has %d items (%08x)", L"profile", 1000, 0xBEEF);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(FormatVxut)->Name("StringFormat/vxut");

void FormatPlain(benchmark::State& state) {
    for (auto _ : state) {
        wchar_t buffer[100];
        _snwprintf(buffer, 100, L"%s has %d items (%08x)", L"profile", 1000, 0xBEEF);
        std::wstring text(buffer);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(FormatPlain)->Name("StringFormat/_snwprintf+std::wstring");

} // namespace
