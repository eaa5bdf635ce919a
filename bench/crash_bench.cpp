// Crash reports: a packed minidump against the bare system function and zlib, and debug lines that are kept
// in memory.
#include "support.h"
#include "util.h"

#include <windows.h>
// After windows.h, which it needs:
#include <dbghelp.h>
#include <zlib.h>

#include <fstream>
#include <iterator>
#include <vector>

namespace {

void SetMode(DWORD mode) {
    HKEY key;
    if (RegCreateKeyW(HKEY_CURRENT_USER, L"Software\\Velmora", &key) != ERROR_SUCCESS) return;
    RegSetValueExW(key, L"GPFMiniDumpMode", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&mode), sizeof mode);
    RegCloseKey(key);
}

// The state's argument is the kind of dump. Logs are not watched if there are none.
void PackedDump(benchmark::State& state) {
    SetMode(static_cast<DWORD>(state.range(0)));
    UtilExHandlerSetOption(UTIL_EXHANDLER_PACK_ALWAYS, 1);
    const HUTILDEBUGHELP job = UtilDebugHelpJobOpen();
    EXCEPTION_RECORD record = {};
    record.ExceptionCode = 0xC0000005;
    CONTEXT context;
    RtlCaptureContext(&context);
    EXCEPTION_POINTERS exception = {&record, &context};
    for (auto _ : state) {
        wchar_t name[MAX_PATH] = L"";
        if (!UtilDebugHelpWriteMiniDump(job, name, MAX_PATH, &exception)) state.SkipWithError("no dump");
    }
    UtilDebugHelpJobClose(job);
}

void BareDump(benchmark::State& state) {
    const std::wstring path = bench::TemporaryName(L"bare.dmp");
    std::vector<Bytef> packed;
    for (auto _ : state) {
        const HANDLE file =
            CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        MiniDumpWriteDump(GetCurrentProcess(), GetCurrentProcessId(), file,
                          static_cast<MINIDUMP_TYPE>(state.range(0)), nullptr, nullptr, nullptr);
        CloseHandle(file);
        std::ifstream stream(path.c_str(), std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
        uLongf size = compressBound(static_cast<uLong>(bytes.size()));
        packed.resize(size);
        compress(packed.data(), &size, reinterpret_cast<const Bytef*>(bytes.data()),
                 static_cast<uLong>(bytes.size()));
        benchmark::DoNotOptimize(packed.data());
    }
    DeleteFileW(path.c_str());
}

// The full report's share: opening a job, modules with versions, a walk with symbols.
void ModulesAndStack(benchmark::State& state) {
    for (auto _ : state) {
        const HUTILDEBUGHELP job = UtilDebugHelpJobOpen();
        IDBGModuleList* modules = nullptr;
        IDBGStackTraceList* frames = nullptr;
        if (UtilDebugHelpGetModuleList(job, &modules)) modules->Release();
        if (UtilDebugHelpGetStackTrace(job, &frames, nullptr)) frames->Release();
        UtilDebugHelpJobClose(job);
    }
}

// Lines that nobody hears, with and without the ring.
template <class Write>
void Line(benchmark::State& state, uint32_t ringLines, Write write) {
    UtilExHandlerSetOption(UTIL_EXHANDLER_TRACE_LINES, ringLines);
    for (auto _ : state) write();
    UtilExHandlerSetOption(UTIL_EXHANDLER_TRACE_LINES, 0);
}

void WriteNumbers() { UtilDebug(L"numbers %d and %u", 1, 2u); }
void WriteText() { UtilDebug(L"a text '%s'", L"of some words"); }

BENCHMARK(PackedDump)->Name("DumpAndPackNormal/vxut")->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(BareDump)->Name("DumpAndPackNormal/floor:system+zlib")->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(PackedDump)->Name("DumpAndPackDefault/vxut")->Arg(670375)->Unit(benchmark::kMillisecond);
BENCHMARK(BareDump)->Name("DumpAndPackDefault/floor:system+zlib")->Arg(670375)->Unit(benchmark::kMillisecond);
BENCHMARK(ModulesAndStack)->Name("ModulesAndStack/vxut")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Line, off, 0, WriteNumbers)->Name("SilentLineNumbers/floor:ring off");
BENCHMARK_CAPTURE(Line, on, 1000, WriteNumbers)->Name("SilentLineNumbers/vxut");
BENCHMARK_CAPTURE(Line, off, 0, WriteText)->Name("SilentLineText/floor:ring off");
BENCHMARK_CAPTURE(Line, on, 1000, WriteText)->Name("SilentLineText/vxut");

} // namespace
