// A debug line without a listener, to the log file, to a viewer's mailslot and to a viewer's window.
#include "files/debug_log.h"
#include "library/load.h"
#include "trace/standard_sinks.h"
#include "util/debug.h"

#include <benchmark/benchmark.h>
#include <windows.h>

#include <atomic>
#include <cstdio>
#include <thread>

namespace {

using namespace vxut;

constexpr ViewerNames kNames = {L"vxut-bench-block", L"STATIC", L"\\\\.\\mailslot\\vxut-bench"};

// Replaces the sinks of the process as long as the object lives.
class clsSinksScope {
public:
    explicit clsSinksScope(IclsDebugSinks& sinks) : previous_(SetDebugSinks(&sinks)) {}
    ~clsSinksScope() { SetDebugSinks(previous_); }
    clsSinksScope(const clsSinksScope&) = delete;
    clsSinksScope& operator=(const clsSinksScope&) = delete;

private:
    IclsDebugSinks* previous_;
};

// A viewer in this process: its thread handles messages and reads the mailslot, if there is one.
class clsBenchViewer {
public:
    explicit clsBenchViewer(bool hasMailslot) : block_(kNames.block, sizeof(UtilTraceBlock)) {
        if (hasMailslot) mailslot_.Reset(CreateMailslotW(kNames.mailslot, 0, 5, nullptr));
        reader_ = std::thread([this] { Read(); });
        pump_ = std::thread([this] { Pump(); });
        while (!isReady_) Sleep(1);
    }
    ~clsBenchViewer() {
        isOver_ = true;
        pump_.join();
        reader_.join();
    }
    clsBenchViewer(const clsBenchViewer&) = delete;
    clsBenchViewer& operator=(const clsBenchViewer&) = delete;

private:
    void Read() {
        char record[1024];
        for (DWORD bytes = 0; mailslot_ && !isOver_;)
            ReadFile(mailslot_.Get(), record, sizeof record, &bytes, nullptr);
    }
    void Pump() {
        const HWND window = CreateWindowExW(0, kNames.windowClass, L"", WS_POPUP, 0, 0, 0, 0, nullptr,
                                            nullptr, nullptr, nullptr);
        auto& block = *static_cast<UtilTraceBlock*>(block_.View());
        block.window = reinterpret_cast<uintptr_t>(window);
        isReady_ = true;
        for (MSG message; !isOver_; MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT))
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        block.window = 0;
        DestroyWindow(window);
    }

    clsSharedBlock block_;
    clsAutoCloseFile mailslot_;
    std::atomic<bool> isReady_{false};
    std::atomic<bool> isOver_{false};
    std::thread reader_, pump_;
};

void WriteLines(benchmark::State& state) {
    for (auto _ : state) UtilDebug(L"item %d of %s", 5, L"list");
}

void ToNobody(benchmark::State& state) {
    clsStandardSinks sinks(kNames);
    const clsSinksScope scope(sinks);
    WriteLines(state);
}
BENCHMARK(ToNobody)->Name("DebugCallNoListener/vxut");

void ToLogFile(benchmark::State& state) {
    wchar_t path[MAX_PATH];
    GetTempPathW(MAX_PATH, path);
    wcscat(path, L"vxut-bench.log");
    DeleteFileW(path);
    {
        clsDebugLogFile log(path, false);
        clsStandardSinks sinks(kNames);
        sinks.SetLog(&log);
        const clsSinksScope scope(sinks);
        WriteLines(state);
    }
    DeleteFileW(path);
}
BENCHMARK(ToLogFile)->Name("TraceLineToLogFile/vxut");

void ToViewer(benchmark::State& state, bool hasMailslot) {
    const clsBenchViewer viewer(hasMailslot);
    clsStandardSinks sinks(kNames);
    const clsSinksScope scope(sinks);
    WriteLines(state);
}
BENCHMARK_CAPTURE(ToViewer, Mailslot, true)->Name("TraceLineToMailslot/vxut");
BENCHMARK_CAPTURE(ToViewer, Window, false)->Name("TraceLineToWindow/vxut");

// The floor: a file that is opened for each line.
void ToFileByHand(benchmark::State& state) {
    wchar_t path[MAX_PATH];
    GetTempPathW(MAX_PATH, path);
    wcscat(path, L"vxut-bench-hand.log");
    for (auto _ : state) {
        FILE* const file = _wfopen(path, L"a, ccs=UTF-16LE");
        fwprintf(file, L"%s\n", L"00:00:00.000 00000000/00 0  item 5 of list");
        fclose(file);
    }
    DeleteFileW(path);
}
BENCHMARK(ToFileByHand)->Name("TraceLineToLogFile/fopen_fprintf_fclose");

// OutputDebugStringW with a line of the same length.
void ToSystem(benchmark::State& state) {
    for (auto _ : state) OutputDebugStringW(L"00:00:00.000 00000000/00 0  item 5 of list\n");
}
BENCHMARK(ToSystem)->Name("DebugCallNoListener/OutputDebugStringW");
BENCHMARK(ToSystem)->Name("TraceLineToLogFile/OutputDebugStringW");
BENCHMARK(ToSystem)->Name("TraceLineToMailslot/OutputDebugStringW");
BENCHMARK(ToSystem)->Name("TraceLineToWindow/OutputDebugStringW");

// The sinks as they are after the load of the library.
[[maybe_unused]] const bool isLoaded = (Attach(GetModuleHandleW(nullptr)), true);

} // namespace
