// clsRegEx beside PCRE2 itself with its machine code, used as its documentation says: pattern compiled once,
// match data kept. The peer that copies puts each group into a std::wstring, which is what a list of groups
// is for.
#include "support.h"
#include "text/regex.h"
#include "text/string.h"

#define PCRE2_CODE_UNIT_WIDTH 16
#include <pcre2.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using vxut::clsRegEx;
using vxut::clsRegExMatchList;
using vxut::String;

constexpr wchar_t kPattern[] = L"([a-z]+)-([0-9]+)";

// Words without a match up to the very end.
std::wstring LateMatch(int64_t units) {
    std::wstring subject;
    while (static_cast<int64_t>(subject.size()) < units - 7) subject += L"some words; ";
    return subject.substr(0, static_cast<size_t>(units) - 7) + L" item-1";
}

std::wstring ManyMatches() {
    std::wstring subject;
    for (int i = 0; i < 200; ++i) subject += L"some words, then item-" + std::to_wstring(i) + L"; ";
    return subject;
}

PCRE2_SPTR Units(const std::wstring& text) { return reinterpret_cast<PCRE2_SPTR>(text.c_str()); }

class Pcre2 {
public:
    Pcre2() {
        int error = 0;
        PCRE2_SIZE offset = 0;
        code_.reset(pcre2_compile(reinterpret_cast<PCRE2_SPTR>(kPattern), PCRE2_ZERO_TERMINATED, 0, &error,
                                  &offset, nullptr));
        pcre2_jit_compile(code_.get(), PCRE2_JIT_COMPLETE);
        data_.reset(pcre2_match_data_create_from_pattern(code_.get(), nullptr));
    }

    bool Match(const std::wstring& subject) const {
        return pcre2_match(code_.get(), Units(subject), subject.size(), 0, 0, data_.get(), nullptr) > 0;
    }
    String Text(const std::wstring& subject, size_t group) const {
        const PCRE2_SIZE* const offsets = pcre2_get_ovector_pointer(data_.get());
        String text;
        text.Append(subject.c_str() + offsets[2 * group],
                    static_cast<int64_t>(offsets[2 * group + 1] - offsets[2 * group]));
        return text;
    }
    std::wstring Group(const std::wstring& subject, size_t group) const {
        const PCRE2_SIZE* const offsets = pcre2_get_ovector_pointer(data_.get());
        return subject.substr(offsets[2 * group], offsets[2 * group + 1] - offsets[2 * group]);
    }
    size_t Substitute(const std::wstring& subject, const std::wstring& replacement, std::wstring& out) const {
        PCRE2_SIZE length = out.size();
        pcre2_substitute(code_.get(), Units(subject), subject.size(), 0, PCRE2_SUBSTITUTE_GLOBAL, data_.get(),
                         nullptr, Units(replacement), replacement.size(),
                         reinterpret_cast<PCRE2_UCHAR*>(out.data()), &length);
        return length;
    }

private:
    struct Free {
        void operator()(pcre2_code* code) const { pcre2_code_free(code); }
        void operator()(pcre2_match_data* data) const { pcre2_match_data_free(data); }
    };
    std::unique_ptr<pcre2_code, Free> code_;
    std::unique_ptr<pcre2_match_data, Free> data_;
};

void MatchVxut(benchmark::State& state) {
    clsRegEx expression(kPattern);
    const String subject(LateMatch(state.range(0)).c_str());
    for (auto _ : state) {
        clsRegExMatchList matches;
        if (!expression.Match(subject, &matches)) state.SkipWithError("no match");
    }
}
void MatchPcre2(benchmark::State& state) {
    const Pcre2 expression;
    const std::wstring subject = LateMatch(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(expression.Match(subject));
}
void MatchAndCopyPcre2(benchmark::State& state) {
    const Pcre2 expression;
    const std::wstring subject = LateMatch(state.range(0));
    for (auto _ : state) {
        expression.Match(subject);
        const std::vector<std::wstring> groups = {expression.Group(subject, 0), expression.Group(subject, 1),
                                                  expression.Group(subject, 2)};
        benchmark::DoNotOptimize(groups.data());
    }
}
void Subjects(benchmark::internal::Benchmark* benchmark) {
    for (const int units : {30, 260, 2600, 5000}) benchmark->Arg(units);
}
void TestVxut(benchmark::State& state) {
    clsRegEx expression(kPattern);
    const String subject(LateMatch(state.range(0)).c_str());
    for (auto _ : state) benchmark::DoNotOptimize(expression.Match(subject));
}
void MatchVxutAgain(benchmark::State& state) {
    clsRegEx expression(kPattern);
    const String subject(LateMatch(state.range(0)).c_str());
    clsRegExMatchList matches;
    for (auto _ : state) benchmark::DoNotOptimize(expression.Match(subject, &matches));
}
// The floor of a list of String: its texts alone.
void MatchAndCopyStrings(benchmark::State& state) {
    const Pcre2 expression;
    const std::wstring subject = LateMatch(state.range(0));
    for (auto _ : state) {
        expression.Match(subject);
        const String groups[] = {expression.Text(subject, 0), expression.Text(subject, 1),
                                 expression.Text(subject, 2)};
        benchmark::DoNotOptimize(groups);
    }
}
BENCHMARK(MatchVxut)->Name("RegExMatch/vxut")->Apply(Subjects);
BENCHMARK(MatchAndCopyPcre2)->Name("RegExMatch/PCRE2 JIT and copies")->Apply(Subjects);
BENCHMARK(MatchAndCopyStrings)->Name("RegExMatch/floor:PCRE2 JIT and Strings")->Apply(Subjects);
BENCHMARK(MatchPcre2)->Name("RegExMatch/floor:PCRE2 JIT")->Apply(Subjects);
BENCHMARK(MatchVxutAgain)->Name("RegExMatchKeptList/vxut")->Apply(Subjects);
BENCHMARK(MatchAndCopyPcre2)->Name("RegExMatchKeptList/PCRE2 JIT and copies")->Apply(Subjects);
BENCHMARK(MatchAndCopyStrings)->Name("RegExMatchKeptList/floor:PCRE2 JIT and Strings")->Apply(Subjects);
BENCHMARK(TestVxut)->Name("RegExTest/vxut")->Apply(Subjects);
BENCHMARK(MatchPcre2)->Name("RegExTest/PCRE2 JIT")->Apply(Subjects);

void ReplaceVxut(benchmark::State& state) {
    clsRegEx expression(kPattern);
    const String subject(ManyMatches().c_str());
    const String replacement(L"\\2:\\1");
    for (auto _ : state) benchmark::DoNotOptimize(expression.GSub(subject, replacement));
}
void ReplacePcre2(benchmark::State& state) {
    const Pcre2 expression;
    const std::wstring subject = ManyMatches();
    std::wstring out(2 * subject.size(), L'\0');
    for (auto _ : state) benchmark::DoNotOptimize(expression.Substitute(subject, L"$2:$1", out));
}
BENCHMARK(ReplaceVxut)->Name("RegExReplace/vxut");
BENCHMARK(ReplacePcre2)->Name("RegExReplace/pcre2_substitute");

} // namespace
