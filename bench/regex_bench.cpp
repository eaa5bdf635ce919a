// clsRegEx and std::wregex.
#include "text/regex.h"
#include "text/string.h"

#include <benchmark/benchmark.h>

#include <regex>
#include <string>

namespace {

using vxut::clsRegEx;
using vxut::clsRegExMatchList;
using vxut::String;

constexpr wchar_t kPattern[] = L"([a-z]+)-([0-9]+)";

std::wstring Subject() {
    std::wstring subject;
    for (int i = 0; i < 200; ++i) subject += L"some words, then item-" + std::to_wstring(i) + L"; ";
    return subject;
}

void MatchVxut(benchmark::State& state) {
    clsRegEx expression(kPattern);
    const String subject(Subject().c_str());
    for (auto _ : state) {
        clsRegExMatchList matches;
        benchmark::DoNotOptimize(expression.Match(subject, &matches));
    }
}
BENCHMARK(MatchVxut)->Name("RegExMatch/vxut");

void MatchStd(benchmark::State& state) {
    const std::wregex expression(kPattern);
    const std::wstring subject = Subject();
    for (auto _ : state) {
        std::wsmatch matches;
        benchmark::DoNotOptimize(std::regex_search(subject, matches, expression));
    }
}
BENCHMARK(MatchStd)->Name("RegExMatch/std::wregex");

void ReplaceVxut(benchmark::State& state) {
    clsRegEx expression(kPattern);
    const String subject(Subject().c_str());
    const String replacement(L"\\2:\\1");
    for (auto _ : state) benchmark::DoNotOptimize(expression.GSub(subject, replacement));
}
BENCHMARK(ReplaceVxut)->Name("RegExReplace/vxut");

void ReplaceStd(benchmark::State& state) {
    const std::wregex expression(kPattern);
    const std::wstring subject = Subject();
    for (auto _ : state) benchmark::DoNotOptimize(std::regex_replace(subject, expression, L"$2:$1"));
}
BENCHMARK(ReplaceStd)->Name("RegExReplace/std::wregex");

} // namespace
