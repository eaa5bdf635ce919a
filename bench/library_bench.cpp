// What a process pays for the library before its first call.
#include "support.h"

#include <string>

namespace {

// Loads a DLL by its name beside this program. The libraries that it needs are loaded with it.
void LoadByName(const std::wstring& name) {
    if (!LoadLibraryW(name.c_str())) ExitProcess(0);
}

void ColdLoad(benchmark::State& state, const wchar_t* name) { bench::MeasureFresh(state, "load", name); }

void Repeat(benchmark::internal::Benchmark* benchmark) {
    benchmark->UseManualTime()->Iterations(10)->Unit(benchmark::kMicrosecond);
}
BENCHMARK_CAPTURE(ColdLoad, vxut, L"vxut21.dll")->Name("ColdLoad/vxut")->Apply(Repeat);
// Brings in all libraries of the system that this one imports, but for small ones.
BENCHMARK_CAPTURE(ColdLoad, imports, L"oleaut32.dll")->Name("ColdLoad/floor:oleaut32 alone")->Apply(Repeat);

} // namespace

int main(int argc, char** argv) {
    bench::RunFreshTask({{"load", LoadByName}});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
