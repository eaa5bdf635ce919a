// String beside what a C++ or C programmer could use: std::wstring, std::shared_ptr, fmt, _snwprintf.
#include "support.h"
#include "text/string.h"

#include <fmt/xchar.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

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
void CopySharedPtr(benchmark::State& state) {
    const auto source = std::make_shared<std::wstring>(kText);
    for (auto _ : state) {
        std::shared_ptr<std::wstring> copy(source);
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(Copy<String>)->Name("StringCopy/vxut");
BENCHMARK(Copy<std::wstring>)->Name("StringCopy/std::wstring");
BENCHMARK(CopySharedPtr)->Name("StringCopy/std::shared_ptr");

template <class Text>
void Append(benchmark::State& state) {
    for (auto _ : state) {
        Text text;
        for (int64_t i = 0; i < state.range(0); ++i) text += L"twelve units";
        benchmark::DoNotOptimize(text);
    }
}
void AppendFloor(benchmark::State& state) {
    const auto target = std::make_unique<wchar_t[]>(static_cast<size_t>(state.range(0)) * 12);
    for (auto _ : state) {
        for (int64_t i = 0; i < state.range(0); ++i)
            std::memcpy(target.get() + i * 12, L"twelve units", 12 * sizeof(wchar_t));
        benchmark::DoNotOptimize(target.get());
        benchmark::ClobberMemory();
    }
}
void Pieces(benchmark::internal::Benchmark* benchmark) {
    for (const int pieces : {100, 10000, 50000}) benchmark->Arg(pieces);
}
BENCHMARK(Append<String>)->Name("StringAppend/vxut")->Apply(Pieces);
BENCHMARK(Append<std::wstring>)->Name("StringAppend/std::wstring")->Apply(Pieces);
BENCHMARK(AppendFloor)->Name("StringAppend/floor:memcpy")->Apply(Pieces);

// Keys that differ late, as names of settings do.
std::wstring Key(int64_t number) { return L"Settings." + std::to_wstring(number * 7919 % 1000); }

template <class Text>
void MapFind(benchmark::State& state) {
    std::map<Text, int64_t> map;
    std::vector<Text> keys;
    for (int64_t i = 0; i < 1000; ++i) keys.emplace_back(Key(i).c_str());
    for (const Text& key : keys) map.emplace(key, 1);
    int64_t found = 0;
    for (auto _ : state)
        for (const Text& key : keys) found += map.find(key)->second;
    benchmark::DoNotOptimize(found);
}
BENCHMARK(MapFind<String>)->Name("StringMapFind1000/vxut");
BENCHMARK(MapFind<std::wstring>)->Name("StringMapFind1000/std::wstring");

template <class Text>
void MapFill(benchmark::State& state) {
    std::vector<std::wstring> keys;
    for (int64_t i = 0; i < 1000; ++i) keys.push_back(Key(i));
    for (auto _ : state) {
        std::map<Text, int64_t> map;
        for (const std::wstring& key : keys) map.emplace(key.c_str(), 1);
        benchmark::DoNotOptimize(map);
    }
}
BENCHMARK(MapFill<String>)->Name("StringMapFill1000/vxut");
BENCHMARK(MapFill<std::wstring>)->Name("StringMapFill1000/std::wstring");

// Each candidate formats the same values, which the compiler does not know.
struct Values {
    const wchar_t* name = L"profile";
    int count = 1000;
    unsigned mask = 0xBEEF;
};

template <class Work>
void Format(benchmark::State& state, Work work) {
    Values values;
    for (auto _ : state) {
        benchmark::DoNotOptimize(values);
        auto text = work(values);
        benchmark::DoNotOptimize(text);
    }
}
String FormatVxut(const Values& v) {
    String text;
    text.Format(L"%s has %d items (%08x)", v.name, v.count, v.mask);
    return text;
}
std::wstring FormatFmt(const Values& v) {
    return fmt::format(L"{} has {} items ({:08x})", v.name, v.count, v.mask);
}
std::wstring FormatPlain(const Values& v) {
    wchar_t buffer[100];
    _snwprintf(buffer, 100, L"%s has %d items (%08x)", v.name, v.count, v.mask);
    return buffer;
}
int FormatInto(const Values& v) {
    wchar_t buffer[100];
    return _snwprintf(buffer, 100, L"%s has %d items (%08x)", v.name, v.count, v.mask);
}
BENCHMARK_CAPTURE(Format, vxut, FormatVxut)->Name("StringFormat/vxut");
BENCHMARK_CAPTURE(Format, fmt, FormatFmt)->Name("StringFormat/fmt");
BENCHMARK_CAPTURE(Format, snwprintf, FormatPlain)->Name("StringFormat/_snwprintf and std::wstring");
BENCHMARK_CAPTURE(Format, floor, FormatInto)->Name("StringFormat/floor:_snwprintf");

} // namespace
