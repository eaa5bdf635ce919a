// The exported string functions with the parameter-check switch off, beside the run-time library's own, both
// called through an import as a host does. Under Wine the run-time is Wine's: the rows show regressions and
// nothing else. The sizes are units of text, or bytes of memory.
#include "support.h"
#include "util/strings.h"

#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

namespace {

// Two equal texts, and space for a third.
struct Texts {
    explicit Texts(size_t units) : source(units, L'\0'), other(units, L'\0'), dest(2 * units + 1) {
        for (size_t i = 0; i < units; ++i) source[i] = other[i] = static_cast<wchar_t>(L'a' + i % 20);
    }

    std::wstring source, other;
    std::vector<wchar_t> dest;
};

template <class Call>
void Measure(const char* name, Call call) {
    auto* const benchmark = benchmark::RegisterBenchmark(name, [call](benchmark::State& state) {
        Texts texts(static_cast<size_t>(state.range(0)));
        for (auto _ : state) {
            // Nothing is known of the texts: the compiler may not keep a result.
            benchmark::DoNotOptimize(texts.source.data());
            benchmark::ClobberMemory();
            benchmark::DoNotOptimize(call(texts, static_cast<uint32_t>(state.range(0))));
        }
    });
    for (const int size : {4, 16, 64, 1024}) benchmark->Arg(size);
}

const bool registered = [] {
    using T = Texts&;
    Measure("CheckedStrlen/vxut", [](T t, uint32_t) { return UtilStrlen(t.source.c_str()); });
    Measure("CheckedStrlen/wcslen", [](T t, uint32_t) { return std::wcslen(t.source.c_str()); });
    Measure("CheckedStrcpy/vxut", [](T t, uint32_t) { return UtilStrcpy(t.dest.data(), t.source.c_str()); });
    Measure("CheckedStrcpy/wcscpy",
            [](T t, uint32_t) { return std::wcscpy(t.dest.data(), t.source.c_str()); });
    Measure("CheckedStrcat/vxut", [](T t, uint32_t) {
        t.dest[0] = 0;
        return UtilStrcat(t.dest.data(), t.source.c_str());
    });
    Measure("CheckedStrcat/wcscat", [](T t, uint32_t) {
        t.dest[0] = 0;
        return std::wcscat(t.dest.data(), t.source.c_str());
    });
    Measure("CheckedStrcmp/vxut",
            [](T t, uint32_t) { return UtilStrcmp(t.source.c_str(), t.other.c_str()); });
    Measure("CheckedStrcmp/wcscmp",
            [](T t, uint32_t) { return std::wcscmp(t.source.c_str(), t.other.c_str()); });
    Measure("CheckedStricmp/vxut",
            [](T t, uint32_t) { return UtilStricmp(t.source.c_str(), t.other.c_str()); });
    Measure("CheckedStricmp/_wcsicmp",
            [](T t, uint32_t) { return _wcsicmp(t.source.c_str(), t.other.c_str()); });
    Measure("CheckedStrrchr/vxut", [](T t, uint32_t) { return UtilStrrchr(t.source.c_str(), L'#'); });
    Measure("CheckedStrrchr/wcsrchr", [](T t, uint32_t) { return std::wcsrchr(t.source.c_str(), L'#'); });
    Measure("CheckedStrstr/vxut", [](T t, uint32_t) { return UtilStrstr(t.source.c_str(), L"xyz"); });
    Measure("CheckedStrstr/wcsstr", [](T t, uint32_t) { return std::wcsstr(t.source.c_str(), L"xyz"); });
    Measure("CheckedMemcpy/vxut",
            [](T t, uint32_t n) { return UtilMemcpy(t.dest.data(), t.source.data(), n); });
    Measure("CheckedMemcpy/memcpy",
            [](T t, uint32_t n) { return std::memcpy(t.dest.data(), t.source.data(), n); });
    Measure("CheckedMemset/vxut", [](T t, uint32_t n) { return UtilMemset(t.dest.data(), 'x', n); });
    Measure("CheckedMemset/memset", [](T t, uint32_t n) { return std::memset(t.dest.data(), 'x', n); });
    return true;
}();

} // namespace
