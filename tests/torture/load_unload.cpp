// Loads and unloads the library again and again, as hosts of plug-ins do: nothing of the process may be used
// up.
//
//   vxut_load_unload [CYCLES]
//
// Thread-local slots, handles and memory after the cycles have to be what they were after the first ones. The
// program does not import the library.
#include <windows.h>
// After windows.h, which it needs:
#include <psapi.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kDefaultCycles = 5000;
constexpr int kWarmUpCycles = 20;
constexpr int kCyclesPerReport = 500;
constexpr SIZE_T kMostGrowth = 4 * 1024 * 1024; // of memory: what the system's heaps may keep

// What a process runs out of. New handles and slots get the lowest free number, which shows how many are in
// use.
struct Usage {
    DWORD slot = 0;
    uintptr_t handle = 0;
    SIZE_T memory = 0;
};

Usage Measure() {
    Usage usage;
    usage.slot = TlsAlloc();
    TlsFree(usage.slot);
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    usage.handle = reinterpret_cast<uintptr_t>(event);
    CloseHandle(event);
    PROCESS_MEMORY_COUNTERS counters = {};
    counters.cb = sizeof counters;
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    usage.memory = counters.PagefileUsage;
    return usage;
}

template <class Function>
Function Find(HMODULE library, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

// One cycle, with a call that throws and one that writes a debug line, so that what they take is returned as
// well.
bool Cycle() {
    const HMODULE library = LoadLibraryW(L"vxut21.dll");
    if (library == nullptr) return false;
    const auto open = Find<void* (*)(const wchar_t*)>(library, "ProfJobOpenW");
    const auto close = Find<void (*)(void*)>(library, "ProfJobClose");
    const auto debug = Find<void (*)(const wchar_t*, ...)>(library, "UtilDebug");
    close(open(L"no such file.prf"));
    debug(L"cycle");
    return FreeLibrary(library) && GetModuleHandleW(L"vxut21.dll") == nullptr;
}

// The same on a thread that ends after the library.
DWORD WINAPI RunCycle(void*) { return Cycle() ? 1 : 0; }

bool CycleOnThread() {
    const HANDLE thread = CreateThread(nullptr, 0, RunCycle, nullptr, 0, nullptr);
    if (thread == nullptr) return false;
    WaitForSingleObject(thread, INFINITE);
    DWORD result = 0;
    GetExitCodeThread(thread, &result);
    CloseHandle(thread);
    return result == 1;
}

void Print(int cycle, const Usage& usage) {
    std::printf("%5d cycles: next slot %lu, next handle %#llx, %zu KB\n", cycle, usage.slot,
                static_cast<unsigned long long>(usage.handle), static_cast<size_t>(usage.memory / 1024));
    std::fflush(stdout);
}

bool RunCycles(int count) {
    for (int i = 1; i <= count; ++i) {
        if (!(i % 2 ? Cycle() : CycleOnThread())) {
            std::printf("cycle %d failed, error %lu\n", i, GetLastError());
            return false;
        }
        if (i % kCyclesPerReport == 0) Print(i, Measure());
    }
    return true;
}

} // namespace

int main(int count, char** arguments) {
    const int cycles = count > 1 ? std::atoi(arguments[1]) : kDefaultCycles;
    if (cycles <= 0 || !RunCycles(kWarmUpCycles)) return 1;
    const Usage before = Measure();
    Print(0, before);
    if (!RunCycles(cycles)) return 1;
    const Usage after = Measure();
    Print(cycles, after);
    const bool isSame = after.slot == before.slot && after.handle == before.handle;
    const bool isSmall = after.memory < before.memory + kMostGrowth;
    std::printf("%s\n", isSame && isSmall ? "nothing is used up" : "the cycles use something up");
    return isSame && isSmall ? 0 : 1;
}
