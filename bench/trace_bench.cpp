// A debug line on its way: to nobody, to the log file, to a viewer's mailslot and to a viewer's window.
#include "files/debug_log.h"
#include "library/load.h"
#include "support.h"
#include "trace/standard_sinks.h"
#include "util/debug.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/basic_file_sink.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

namespace {

using namespace vxut;

constexpr scViewerNames kNames = {L"vxut-bench-block", L"STATIC", L"\\\\.\\mailslot\\vxut-bench"};

// The sinks of the process for a scope.
class SinksScope {
public:
    explicit SinksScope(IclsDebugSinks& sinks) : previous_(SetDebugSinks(&sinks)) {}
    ~SinksScope() { SetDebugSinks(previous_); }
    SinksScope(const SinksScope&) = delete;
    SinksScope& operator=(const SinksScope&) = delete;

private:
    IclsDebugSinks* previous_;
};

// A viewer in this process: its thread answers messages and empties the mailslot, if there is one.
class BenchViewer {
public:
    explicit BenchViewer(bool hasMailslot) : block_(kNames.block, sizeof(UtilTraceBlock)) {
        if (hasMailslot) mailslot_.Reset(CreateMailslotW(kNames.mailslot, 0, 5, nullptr));
        reader_ = std::thread([this] { Read(); });
        pump_ = std::thread([this] { Pump(); });
        while (!isReady_) Sleep(1);
    }
    ~BenchViewer() {
        isOver_ = true;
        pump_.join();
        reader_.join();
    }
    BenchViewer(const BenchViewer&) = delete;
    BenchViewer& operator=(const BenchViewer&) = delete;

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

// Through the DLL, as a host calls it. A call within the program would be no export, and other sinks than the
// DLL's own are asked under a lock.
void ToNobody(benchmark::State& state) {
    static const HMODULE library = LoadLibraryW(L"vxut21.dll");
    auto* const debug =
        reinterpret_cast<decltype(&UtilDebug)>(reinterpret_cast<void*>(GetProcAddress(library, "UtilDebug")));
    if (!debug) return state.SkipWithError("vxut21.dll cannot be loaded");
    for (auto _ : state) debug(L"item %d of %s", 5, L"list");
}
BENCHMARK(ToNobody)->Name("DebugCallNoListener/vxut");

void ToLogFile(benchmark::State& state) {
    const std::wstring name = bench::TemporaryName(L"log.log");
    DeleteFileW(name.c_str());
    {
        clsDebugLogFile log(name.c_str(), false);
        clsStandardSinks sinks(kNames);
        sinks.SetLog(&log);
        const SinksScope scope(sinks);
        WriteLines(state);
    }
    DeleteFileW(name.c_str());
}
BENCHMARK(ToLogFile)->Name("TraceLineToLogFile/vxut");

void ToViewer(benchmark::State& state, bool hasMailslot) {
    const BenchViewer viewer(hasMailslot);
    clsStandardSinks sinks(kNames);
    const SinksScope scope(sinks);
    WriteLines(state);
}
BENCHMARK_CAPTURE(ToViewer, Mailslot, true)->Name("TraceLineToMailslot/vxut");
BENCHMARK_CAPTURE(ToViewer, Window, false)->Name("TraceLineToWindow/vxut");

constexpr wchar_t kLine[] = L"00:00:00.000 00000000/00 0  item 5 of list\r\n";
constexpr char kRecord[] = "00:00:00.000 00000000/00 0  item 5 of list";

// A logger of the kind that programs embed: formats the same line into a file that it keeps open.
void ToSpdlog(benchmark::State& state) {
    const std::wstring name = bench::TemporaryName(L"spdlog.log");
    {
        spdlog::logger log("bench", std::make_shared<spdlog::sinks::basic_file_sink_mt>(
                                        std::filesystem::path(name).string(), true));
        log.set_pattern("%H:%M:%S.%e %t %v");
        log.flush_on(spdlog::level::info);
        for (auto _ : state) log.info("item {} of {}", 5, "list");
    }
    DeleteFileW(name.c_str());
}
BENCHMARK(ToSpdlog)->Name("TraceLineToLogFile/spdlog, file kept open");

void AppendLine(HANDLE file) {
    DWORD written = 0;
    WriteFile(file, kLine, sizeof kLine - sizeof *kLine, &written, nullptr);
}
HANDLE OpenForAppend(const std::wstring& name) {
    return CreateFileW(name.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ, nullptr, OPEN_ALWAYS, 0, nullptr);
}
// The library shares the file with other processes and opens it for each line: so does this.
void ToOpenedFile(benchmark::State& state) {
    const std::wstring name = bench::TemporaryName(L"opened.log");
    for (auto _ : state) {
        const HANDLE file = OpenForAppend(name);
        AppendLine(file);
        CloseHandle(file);
    }
    DeleteFileW(name.c_str());
}
BENCHMARK(ToOpenedFile)->Name("TraceLineToLogFile/floor:CreateFile, WriteFile, CloseHandle");

void ToKeptFile(benchmark::State& state) {
    const std::wstring name = bench::TemporaryName(L"kept.log");
    const HANDLE file = OpenForAppend(name);
    for (auto _ : state) AppendLine(file);
    CloseHandle(file);
    DeleteFileW(name.c_str());
}
BENCHMARK(ToKeptFile)->Name("TraceLineToLogFile/WriteFile, file kept open");

// Record by record through a mailslot that a thread of this process empties.
void ToMailslot(benchmark::State& state) {
    const BenchViewer viewer(true);
    const HANDLE slot =
        CreateFileW(kNames.mailslot, GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    DWORD written = 0;
    for (auto _ : state) WriteFile(slot, kRecord, sizeof kRecord, &written, nullptr);
    CloseHandle(slot);
}
BENCHMARK(ToMailslot)->Name("TraceLineToMailslot/floor:WriteFile");

void ToDebugger(benchmark::State& state) {
    for (auto _ : state) OutputDebugStringW(kLine);
}
BENCHMARK(ToDebugger)->Name("TraceLineToMailslot/OutputDebugStringW");

// What loggers do with a line below their level.
void SpdlogSilent(benchmark::State& state) {
    spdlog::logger log("bench");
    log.set_level(spdlog::level::off);
    for (auto _ : state) log.info("item {} of {}", 5, "list");
}
BENCHMARK(SpdlogSilent)->Name("DebugCallNoListener/spdlog, level off");

std::atomic<int> level{0};
[[gnu::noinline]] void LevelTest(const wchar_t*, ...) {
    if (level.load(std::memory_order_relaxed) > 0) OutputDebugStringW(kLine);
}
void ToLevelTest(benchmark::State& state) {
    for (auto _ : state) LevelTest(L"item %d of %s", 5, L"list");
}
BENCHMARK(ToLevelTest)->Name("DebugCallNoListener/floor:one level test");

// The library as it is when a process has loaded it.
[[maybe_unused]] const bool isLoaded = (Attach(GetModuleHandleW(nullptr)), true);

} // namespace
