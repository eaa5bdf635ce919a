#include "watch.h"

#include "interception.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>

namespace torture {
namespace {

namespace fs = std::filesystem;

constexpr DWORD kHangMilliseconds = 30000;
constexpr DWORD kLookMilliseconds = 5;
constexpr unsigned kMostColdPlansOfShortRun = 2; // a process each
constexpr UINT kCrashExitCode = 78;

// The progress of a scenario, mapped under a name that the child gets.
class SharedProgress {
public:
    explicit SharedProgress(const std::string& name)
        : mapping_(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(Progress),
                                      name.c_str())),
          progress_(static_cast<Progress*>(MapViewOfFile(mapping_, FILE_MAP_WRITE, 0, 0, sizeof(Progress)))) {
        if (progress_ == nullptr) std::abort();
    }
    SharedProgress(const SharedProgress&) = delete;
    SharedProgress& operator=(const SharedProgress&) = delete;
    ~SharedProgress() {
        UnmapViewOfFile(progress_);
        CloseHandle(mapping_);
    }
    Progress& Get() const { return *progress_; }

private:
    HANDLE mapping_;
    Progress* progress_;
};

std::string NameOfMapping() { return "vxut-torture-" + std::to_string(GetCurrentProcessId()); }

// A folder for the files of the runs, removed in the end.
class WorkFolder {
public:
    WorkFolder() : path_(fs::temp_directory_path() / NameOfMapping()) {
        Remove();
        fs::create_directories(path_);
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    ~WorkFolder() { Remove(); }
    const fs::path& Path() const { return path_; }

private:
    void Remove() const {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    fs::path path_;
};

// The log file of the debug channel, as a setting of the machine for as long as it lives.
class LogSetting {
public:
    explicit LogSetting(const fs::path& file) {
        HKEY key = nullptr;
        RegCreateKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr);
        const std::wstring path = file.wstring();
        RegSetValueExW(key, kValue, 0, REG_SZ, reinterpret_cast<const BYTE*>(path.c_str()),
                       static_cast<DWORD>((path.size() + 1) * sizeof(wchar_t)));
        RegCloseKey(key);
    }
    LogSetting(const LogSetting&) = delete;
    LogSetting& operator=(const LogSetting&) = delete;
    ~LogSetting() { RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kKey, kValue); }

private:
    static constexpr wchar_t kKey[] = L"software\\Velmora";
    static constexpr wchar_t kValue[] = L"Debug.LogFilename";
};

enum class End { kDone, kCrash, kHang };

End WaitForEnd(HANDLE process, const Progress& progress) {
    for (;;) {
        const bool hasEnded = WaitForSingleObject(process, kLookMilliseconds) == WAIT_OBJECT_0;
        if (hasEnded) return progress.isDone != 0 ? End::kDone : End::kCrash;
        const LONG started = progress.started;
        if (started == 0 || static_cast<DWORD>(Now()) - static_cast<DWORD>(started) < kHangMilliseconds)
            continue;
        TerminateProcess(process, kCrashExitCode);
        WaitForSingleObject(process, INFINITE);
        return End::kHang;
    }
}

// Starts a child and waits for its end. Crashes and hangs are reported and counted.
End RunOne(const Options& options, const WorkFolder& folder, Progress& progress) {
    progress.isDone = 0;
    progress.started = 0;
    wchar_t program[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    const std::string words = std::string(kChildOption) + " " + NameOfMapping() + " " + options.scenario +
                              " " + options.only.Text() + " " + std::to_string(options.most) + " " +
                              std::to_string(options.from) + (options.isCold ? " cold" : " warm");
    std::wstring line = L"\"" + std::wstring(program) + L"\" " + std::wstring(words.begin(), words.end());
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION information = {};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, folder.Path().c_str(),
                        &startup, &information))
        std::abort();
    const End end = WaitForEnd(information.hProcess, progress);
    DWORD exitCode = 0;
    GetExitCodeProcess(information.hProcess, &exitCode);
    CloseHandle(information.hThread);
    CloseHandle(information.hProcess);
    if (end == End::kDone) return end;
    if (InterlockedIncrement(&progress.faults) > kMostPrintedFaults) return end;
    std::printf("%s %s%s: %s in the phase '%s' (exit code 0x%lX)\n", options.scenario.c_str(),
                progress.planText, options.isCold ? " --cold" : "", end == End::kHang ? "hangs" : "crashes",
                progress.phase, exitCode);
    std::fflush(stdout);
    return end;
}

// A child that has died is followed by one that continues after the fatal plan.
void RunWarm(Options options, const WorkFolder& folder, Progress& progress) {
    progress.plan = -1;
    while (RunOne(options, folder, progress) != End::kDone) {
        if (progress.plan < static_cast<LONG>(options.from)) return; // it did not get that far
        options.from = static_cast<unsigned>(progress.plan) + 1;
    }
}

void RunCold(Options options, const WorkFolder& folder, Progress& progress, unsigned calls) {
    options.isCold = true;
    const unsigned chosen = options.most > 0 ? std::min(calls, kMostColdPlansOfShortRun) : calls;
    for (const bool onwards : {false, true}) {
        for (unsigned i = 0; i < chosen; ++i) {
            options.only = {Domain::kMemory, 1 + i * calls / chosen, onwards};
            RunOne(options, folder, progress);
        }
    }
}

LONG WINAPI EndCrash(EXCEPTION_POINTERS* pointers) {
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    TerminateProcess(GetCurrentProcess(), record.ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

} // namespace

LONG WatchScenario(const Options& options) {
    const LONG64 start = static_cast<LONG64>(GetTickCount64());
    const SharedProgress shared(NameOfMapping());
    Progress& progress = shared.Get();
    progress = {};
    const WorkFolder folder;
    std::optional<LogSetting> log;
    if (Scenarios().at(options.scenario).hasLog) log.emplace(folder.Path() / kLogFile);
    if (options.isCold)
        RunOne(options, folder, progress);
    else
        RunWarm(options, folder, progress);
    if (options.only.call == 0)
        RunCold(options, folder, progress, static_cast<unsigned>(progress.allocations));
    std::printf("%-20s %6ld runs %4ld faults %6.1f s\n", options.scenario.c_str(), progress.runs,
                progress.faults, static_cast<double>(static_cast<LONG64>(GetTickCount64()) - start) / 1000);
    std::fflush(stdout);
    return progress.faults;
}

int RunChild(int count, char** arguments) {
    if (count != 8) return 2;
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    SetUnhandledExceptionFilter(EndCrash);
    const SharedProgress shared(arguments[2]);
    Options options;
    options.scenario = arguments[3];
    options.only.Parse(arguments[4]);
    options.most = static_cast<unsigned>(std::atoi(arguments[5]));
    options.from = static_cast<unsigned>(std::atoi(arguments[6]));
    options.isCold = std::string(arguments[7]) == "cold";
    InterceptCalls();
    RunScenario(options, shared.Get());
    shared.Get().isDone = 1;
    return 0;
}

} // namespace torture
