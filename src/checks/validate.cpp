#include "checks/validate.h"

#include "base/debug.h"
#include "base/registry.h"
#include "base/shield.h"
#include "base/system_libraries.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace vxut {
namespace {

constexpr wchar_t kModuleName[] = L""; // never set; banners show an empty name

constexpr wchar_t kDeveloper[] = L"qzr";
constexpr DWORD kDeveloperUnits = 3;

// Written without a lock, as all writers store the same answer for the same facts.
enum DebuggerState { kDebuggerUnknown = 0, kDebuggerSeen = 1, kNoDebugger = 2 };
std::atomic<int> debuggerState{kDebuggerUnknown};

// A probe of a bad pointer raises a fault inside the system, at which a debugger would stop. So nothing is
// probed once a debugger has been seen; one that is attached later is noticed at the next probe.
bool IsGoodUnprobed(const void* pointer) {
    if (pointer == nullptr || debuggerState == kDebuggerSeen) return true;
    debuggerState = IsDebuggerPresent() ? kDebuggerSeen : kNoDebugger;
    return debuggerState == kDebuggerSeen;
}

// The functions of the system return true for a bad pointer. Without them all pointers are good.
template <class Probe, class Pointer>
bool IsGood(Probe& probe, Pointer pointer, size_t size) {
    if (IsGoodUnprobed(pointer) || !probe.IsAvailable()) return true;
    bool isBad = true; // stays so if the probe itself faults, as it does on a guard page
    Shielded([&] { isBad = probe(pointer, size) != FALSE; });
    return !isBad;
}

} // namespace

bool ProbeRead(const void* pointer, size_t bytes) { return IsGood(Kernel32().IsBadReadPtr, pointer, bytes); }

bool ProbeWrite(void* pointer, size_t bytes) { return IsGood(Kernel32().IsBadWritePtr, pointer, bytes); }

bool ProbeStringW(const wchar_t* text, size_t maxUnits) {
    return IsGood(Kernel32().IsBadStringPtr, text, maxUnits);
}

bool ProbeStringA(const char* text, size_t maxUnits) {
    return IsGood(Kernel32().IsBadStringPtrA, text, maxUnits);
}

uint32_t parameterCheckSwitch = 0;

void WriteBanner(const wchar_t* function, const wchar_t* parameter, const void* pointer, uint32_t lastError) {
    DebugWriteAs(nullptr, 0, L"\nVL32UTIL['%s']: error in '%s': %s\n ptr=0x%08x\n err=%d\n", kModuleName,
                 function, parameter, static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pointer)), lastError);
}

bool IsRPtr(const wchar_t* function, const void* pointer, const wchar_t* parameter, uint32_t size) {
    if (ProbeRead(pointer, size)) return true;
    WriteBanner(function, parameter, pointer, GetLastError());
    DebugWriteAs(nullptr, 0, L" -> does not point to %d byte(s) of readable memory\n", size);
    return false;
}

bool IsStringPtr(const wchar_t* function, const wchar_t* pointer, const wchar_t* parameter) {
    if (!IsRPtr(function, pointer, parameter, 1)) return false;
    if (ProbeStringW(pointer, kMostProbedUnits)) return true;
    WriteBanner(function, parameter, pointer, GetLastError());
    DebugWriteAs(nullptr, 0, L" -> does not point to valid string\n");
    return false;
}

bool IsWPtr(const wchar_t* function, void* pointer, const wchar_t* parameter, uint32_t size) {
    if (ProbeWrite(pointer, size)) return true;
    WriteBanner(function, parameter, pointer, GetLastError());
    if (!ProbeWrite(pointer, 2)) {
        DebugWriteAs(nullptr, 0, L" -> does not point to writeable memory at all\n");
    } else {
        DebugWriteAs(nullptr, 0, L" -> does not point to enough (%d Bytes) writeable memory\n", size);
    }
    return false;
}

int32_t SafeStrlen(const wchar_t* function, const wchar_t* text) {
    for (int32_t count = 0; count < INT32_MAX; ++count) {
        const wchar_t* unit = text + count;
        if (!ProbeRead(unit, sizeof *unit)) {
            WriteBanner(function, L"bad string (unterminated)\n", unit, GetLastError());
            return count > 0 ? count - 1 : 0;
        }
        if (*unit == L'\0') return count;
    }
    return INT32_MAX;
}

void ReportError(const wchar_t* function, const wchar_t* text) {
    // The format has a field more than there are texts; it stays empty.
    DebugWriteAs(nullptr, 0, L"\nVL32UTIL['%s']: error in '%s' (%s): %s\n", kModuleName, function, text, L"");
}

void FailAssertion(const wchar_t* expression, const wchar_t* fileName, uint32_t line) {
    constexpr UINT kRetryCancelStop = MB_RETRYCANCEL | MB_ICONSTOP | MB_TASKMODAL;
    wchar_t text[81] = L"";
    _snwprintf(text, std::size(text) - 1, L"line %u in file %s:\n\"%s\"", line, fileName, expression);
    // The box has no OK button, and may fail: an assertion never continues.
    if (MessageBoxW(nullptr, text, L"Assertion Failure", kRetryCancelStop) != IDOK) std::exit(-1);
}

void ResetDebuggerState() noexcept { debuggerState = kDebuggerUnknown; }

bool IsDeveloperLogin() {
    enum { kNotAsked = -1 };
    static std::atomic<int> answer{kNotAsked};
    if (answer == kNotAsked) {
        // A longer name does not fit, and does not match.
        wchar_t user[kDeveloperUnits + 1] = L"";
        const DWORD length = GetEnvironmentVariableW(kEnvironmentUser, user, kDeveloperUnits + 1);
        answer = length == kDeveloperUnits && _wcsicmp(user, kDeveloper) == 0;
    }
    return answer == 1;
}

} // namespace vxut
