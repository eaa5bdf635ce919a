#include "support.h"

#include <cstring>
#include <cwchar>

namespace bench {
namespace {

constexpr wchar_t kSwitch[] = L"--fresh=";

// The word of the command line that follows the switch, quotes removed; empty if there is no switch.
std::wstring SwitchValue(const wchar_t* commandLine) {
    const wchar_t* const found = std::wcsstr(commandLine, kSwitch);
    if (!found) return {};
    const std::wstring rest(found + std::wcslen(kSwitch));
    return rest.substr(0, rest.find(L'"'));
}

// A child ends with the time of its task as exit code, in these.
constexpr double kTicksPerSecond = 1e7;

// Starts this program again and returns the seconds that its task took; 0 if it fails.
double RunChild(const std::string& task, const std::wstring& argument) {
    wchar_t own[MAX_PATH];
    GetModuleFileNameW(nullptr, own, MAX_PATH);
    std::wstring command = std::wstring(L"\"") + own + L"\" \"" + kSwitch +
                           std::wstring(task.begin(), task.end()) + L"=" + argument + L"\"";
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(own, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process))
        return 0;
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD ticks = 0;
    GetExitCodeProcess(process.hProcess, &ticks);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return ticks / kTicksPerSecond;
}

bool Write(const std::wstring& name, const void* bytes, size_t count, bool isFlushed) {
    const HANDLE file = CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    const bool done = WriteFile(file, bytes, static_cast<DWORD>(count), &written, nullptr) &&
                      (!isFlushed || FlushFileBuffers(file));
    CloseHandle(file);
    return done && written == count;
}

} // namespace

std::vector<char> ReadBytes(const std::wstring& name) {
    const HANDLE file =
        CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    LARGE_INTEGER size = {};
    GetFileSizeEx(file, &size);
    std::vector<char> bytes(static_cast<size_t>(size.QuadPart));
    DWORD read = 0;
    ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    CloseHandle(file);
    bytes.resize(read);
    return bytes;
}

bool WriteBytes(const std::wstring& name, const void* bytes, size_t count) {
    return Write(name, bytes, count, false);
}

bool WriteBytesSafely(const std::wstring& name, const void* bytes, size_t count) {
    const std::wstring sibling = name + L".new";
    return Write(sibling, bytes, count, true) &&
           MoveFileExW(sibling.c_str(), name.c_str(), MOVEFILE_REPLACE_EXISTING);
}

void RunFreshTask(std::initializer_list<FreshTask> tasks) {
    const std::wstring value = SwitchValue(GetCommandLineW());
    const size_t separator = value.find(L'=');
    if (separator == std::wstring::npos) return;
    const std::wstring name = value.substr(0, separator);
    const std::wstring argument = value.substr(separator + 1);
    for (const FreshTask& task : tasks) {
        if (std::wstring(task.name, task.name + std::strlen(task.name)) != name) continue;
        const Stopwatch watch;
        task.run(argument);
        const auto ticks = static_cast<UINT>(watch.Seconds() * kTicksPerSecond);
        TerminateProcess(GetCurrentProcess(), ticks); // nothing of the task is released
    }
    ExitProcess(0);
}

void MeasureFresh(benchmark::State& state, const std::string& task, const std::wstring& argument) {
    for (auto _ : state) {
        const double seconds = RunChild(task, argument);
        if (seconds <= 0) return state.SkipWithError("the task failed");
        state.SetIterationTime(seconds);
    }
}

} // namespace bench
