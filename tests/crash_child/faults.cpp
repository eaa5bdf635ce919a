#include "faults.h"

#include "util.h"
#define UTIL_CRASH_HOOKS_DEFINE_PURE_CALL
#include "util/crash_hooks.h"

#include <windows.h>

#include <cstdlib>
#include <cstring>
#include <exception>

namespace crash_child {
namespace {

using Action = void (*)();

struct Named {
    const char* name;
    Action act;
};

unsigned char data[16] = {0xC3};

// Parameters and locals that a walk finds, of several types.
[[gnu::noinline]] void ReadNowhere(volatile int* where, const char* narrow, const wchar_t* wide,
                                   double number) {
    volatile int numbers[4] = {1, 2, 3, 4};
    volatile int sum = *where + numbers[1] + narrow[0] + wide[0] + static_cast<int>(number);
    static_cast<void>(sum);
}

class Abstract {
public:
    Abstract() { CallIt(); }
    virtual ~Abstract() = default;
    virtual void It() = 0;
    [[gnu::noinline]] void CallIt() { It(); }
};
class Concrete : public Abstract {
public:
    void It() override {}
};

[[gnu::noinline]] int Overflow(int depth) {
    volatile char space[4096];
    for (size_t i = 0; i < sizeof space; i += 256) space[i] = static_cast<char>(depth);
    return depth < 0 ? 0 : Overflow(depth + 1) + space[depth % 4096];
}

void Raise(DWORD code) { RaiseException(code, 0, 0, nullptr); }

template <DWORD code>
void RaiseCode() {
    Raise(code);
}

constexpr Named kFaults[] = {
    {"read", [] { ReadNowhere(nullptr, "narrow", L"wide", 1.5); }},
    {"write", [] { *reinterpret_cast<volatile int*>(16) = 1; }},
    {"execute", [] { reinterpret_cast<void (*)()>(data)(); }},
    {"execute-null",
     [] {
         volatile Action nowhere = nullptr;
         nowhere();
     }},
    {"divide",
     [] {
         __asm__ volatile("xorl %%ecx, %%ecx; xorl %%edx, %%edx; movl $1, %%eax; idivl %%ecx"
                          :
                          :
                          : "eax", "ecx", "edx");
     }},
    {"illegal", [] { __asm__ volatile("ud2"); }},
    {"privileged", [] { __asm__ volatile("hlt"); }},
    {"breakpoint", [] { __asm__ volatile("int3"); }},
    {"overflow", [] { Overflow(0); }},
    {"heap", RaiseCode<0xC0000374>},
    {"noncontinuable", RaiseCode<0xC0000025>},
    {"unnamed", RaiseCode<0xC00002FF>},
    {"application", RaiseCode<0xE06D7363>},
    {"fast-fail", [] { __asm__ volatile("int $0x29"
                                        :
                                        : "c"(7)); }},
    {"abort", [] { std::abort(); }},
    {"terminate", [] { std::terminate(); }},
    {"pure", [] { Concrete(); }},
    {"invalid",
     [] {
         const auto copy = reinterpret_cast<int (*)(char*, size_t, const char*)>(
             reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"ucrtbase"), "strcpy_s")));
         copy(nullptr, 1, "x");
     }},
};

Action fault = nullptr;
Action before = nullptr;

void InThread(LPTHREAD_START_ROUTINE routine) {
    const HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    CreateThread(nullptr, 0, routine, ready, 0, nullptr);
    WaitForSingleObject(ready, INFINITE);
}

void LockLoader() {
    using LockLoaderLock = LONG(WINAPI*)(ULONG, ULONG*, ULONG_PTR*);
    const auto lock = reinterpret_cast<LockLoaderLock>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll"), "LdrLockLoaderLock")));
    ULONG disposition;
    ULONG_PTR cookie;
    lock(0, &disposition, &cookie);
}

constexpr Named kConditions[] = {
    {"heap-locked", [] { before = [] { HeapLock(GetProcessHeap()); }; }},
    {"loader-locked", [] { before = LockLoader; }},
    {"loader-locked-elsewhere",
     [] {
         before = [] {
             InThread([](void* ready) -> DWORD {
                 LockLoader();
                 SetEvent(ready);
                 Sleep(INFINITE);
                 return 0;
             });
         };
     }},
    {"engine-locked",
     [] {
         before = [] {
             InThread([](void* ready) -> DWORD {
                 struct _RTL_CRITICAL_SECTION* section;
                 UtilGetDBGHELPThreadingCS(&section);
                 EnterCriticalSection(section);
                 SetEvent(ready);
                 Sleep(INFINITE);
                 return 0;
             });
         };
     }},
    {"pack-always", [] { UtilExHandlerSetOption(UTIL_EXHANDLER_PACK_ALWAYS, 1); }},
    // What the stand-in for the companion library does.
    {"companion-absent", [] { SetEnvironmentVariableA("COMPANION", "absent"); }},
    {"companion-aborts", [] { SetEnvironmentVariableA("COMPANION", "abort"); }},
    {"companion-faults", [] { SetEnvironmentVariableA("COMPANION", "fault"); }},
    {"stack-reserve", [] { UtilExHandlerSetOption(UTIL_EXHANDLER_STACK_RESERVE, 256 * 1024); }},
    {"trace-ring",
     [] {
         UtilExHandlerSetOption(UTIL_EXHANDLER_TRACE_LINES, 8);
         for (int i = 0; i < 20; ++i)
             UtilDebugExt(L"CHILD", 0, L"line %d of %s and %hs", i, L"wide", "narrow");
     }},
    {"hooks",
     [] {
         LoadLibraryW(L"ucrtbase");
         UtilCrashHooksSet();
     }},
    {"denied",
     [] {
         HKEY key;
         const unsigned long no = 0;
         RegCreateKeyW(HKEY_CURRENT_USER, L"Software\\Velmora\\vxut_crash_child", &key);
         RegSetValueExW(key, L"GenerateFullGPFInfo", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&no),
                        sizeof no);
     }},
    {"disabled",
     [] {
         HKEY key;
         RegCreateKeyW(HKEY_CURRENT_USER, L"SOFTWARE\\Velmora", &key);
         RegSetValueExW(key, L"ForceUseGPFHandler", 0, REG_SZ, reinterpret_cast<const BYTE*>(L"0"), 4);
     }},
    {"opened-twice", [] { UtilExHandlerJobOpen(); }},
    {"ended", [] { before = [] { UtilExHandlerEndProtection(0); }; }},
    {"no-temp",
     [] {
         SetEnvironmentVariableA("TEMP", "Z:\\nowhere");
         SetEnvironmentVariableA("TMP", "Z:\\nowhere");
     }},
    {"previous-filter",
     [] { SetUnhandledExceptionFilter([](EXCEPTION_POINTERS*) -> LONG { ExitProcess(77); }); }},
};

} // namespace

void SetSetting(const wchar_t* name, unsigned long number) {
    HKEY key;
    if (RegCreateKeyW(HKEY_CURRENT_USER, L"Software\\Velmora", &key) != ERROR_SUCCESS) return;
    RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
    RegCloseKey(key);
}

bool SetFault(const char* name) {
    for (const Named& entry : kFaults)
        if (std::strcmp(entry.name, name) == 0) fault = entry.act;
    return fault != nullptr;
}

void Fault() {
    if (before) before();
    fault();
}

bool SetCondition(const char* name) {
    for (const Named& entry : kConditions) {
        if (std::strcmp(entry.name, name) != 0) continue;
        entry.act();
        return true;
    }
    return false;
}

} // namespace crash_child
