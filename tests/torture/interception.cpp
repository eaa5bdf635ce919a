#include "interception.h"

#include "../support/import_table.h"
#include "faults.h"
#include "ledger.h"

#include <windows.h>
// After windows.h, which they need:
#include <objbase.h>
#include <oleauto.h>
#include <process.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <string_view>
#include <tuple>

namespace torture {
namespace {

// A function's name as a template argument.
template <size_t size>
struct Name {
    // NOLINTNEXTLINE(google-explicit-constructor): a literal becomes the argument
    constexpr Name(const char (&literal)[size]) { std::copy_n(literal, size, text); }
    char text[size] = {};
};

// What a function does to the ledger: Before() runs before a call, After() after it with the result,
// Fail() instead of a call that has to fail.
struct NoEffect {
    static void Before(const auto&) {}
    static void After(const char*, auto, const auto&) {}
    static void Fail(const auto&) {}
};

template <Kind kind>
struct Takes : NoEffect {
    static void After(const char* name, auto result, const auto&) {
        Take(kind, (const void*)result, name); // a pointer, or the number of a thread handle
    }
};

template <Kind kind, size_t index>
struct Returns : NoEffect {
    static void Before(const auto& arguments) { Return(kind, std::get<index>(arguments)); }
};

// The address of a resource that the function stores through an argument; the result is 0 on success.
template <Kind kind, size_t index>
struct TakesThrough : NoEffect {
    static void After(const char* name, auto result, const auto& arguments) {
        if (result == 0) Take(kind, *std::get<index>(arguments), name);
    }
};

// The old block counts as returned before the call, as another thread may get its address at once.
template <size_t index>
struct Reallocates : NoEffect {
    static void Before(const auto& arguments) { Return(Kind::kBlock, std::get<index>(arguments)); }
    static void After(const char* name, auto result, const auto& arguments) {
        Take(Kind::kBlock, result ? static_cast<const void*>(result) : std::get<index>(arguments), name);
    }
};

struct ReallocatesText : NoEffect {
    static void Before(const auto& arguments) { Return(Kind::kBlock, *std::get<0>(arguments)); }
    static void After(const char* name, auto, const auto& arguments) {
        Take(Kind::kBlock, *std::get<0>(arguments), name);
    }
};

struct ReturnsTextOfVariant : NoEffect {
    static void Before(const auto& arguments) {
        const VARIANT* const value = std::get<0>(arguments);
        if (value->vt == VT_BSTR) Return(Kind::kBlock, value->bstrVal);
    }
};

// The block belongs to the clipboard then.
struct PassesBlock : NoEffect {
    static void After(const char*, auto result, const auto& arguments) {
        if (result) Return(Kind::kBlock, std::get<1>(arguments));
    }
};

struct TakesOfHeap : NoEffect {
    static void After(const char* name, auto result, const auto& arguments) {
        Take(Kind::kBlock, result, name, std::get<0>(arguments));
    }
};

struct EndsHeap : NoEffect {
    static void Before(const auto& arguments) {
        ReturnAllOf(std::get<0>(arguments));
        Return(Kind::kBlock, std::get<0>(arguments));
    }
};

// A text in a variant is freed inside the system.
struct ReturnsVariant : NoEffect {
    static void Before(const auto& arguments) {
        const VARIANT& value = *std::get<0>(arguments);
        if (V_VT(&value) == VT_BSTR) Return(Kind::kBlock, V_BSTR(&value));
    }
};

using TakesBlock = Takes<Kind::kBlock>;
using TakesHandle = Takes<Kind::kHandle>;

// A write that fails has written half of its bytes, as on a disk that becomes full. A mailslot takes records
// whole.
struct WritesHalf : NoEffect {
    static void Fail(const auto& arguments) {
        if (GetFileType(std::get<0>(arguments)) != FILE_TYPE_DISK) return;
        DWORD written = 0;
        ::WriteFile(std::get<0>(arguments), std::get<1>(arguments), std::get<2>(arguments) / 2, &written,
                    nullptr);
    }
};

template <Name name, class Function>
struct Replacement;

template <Name name, class Result, class... Arguments>
struct Replacement<name, Result(Arguments...)> {
    static inline void* original = nullptr;

    static Result CallOriginal(Arguments... arguments) {
        return reinterpret_cast<Result (*)(Arguments...)>(original)(arguments...);
    }

    template <Domain domain, intptr_t failure, DWORD error, class Effect>
    static Result Call(Arguments... arguments) {
        const std::tuple<Arguments...> all(arguments...);
        if (ShallFail(domain, name.text)) {
            Effect::Fail(all);
            SetLastError(error);
            return (Result)failure; // a pointer or a number
        }
        Effect::Before(all);
        const Result result = CallOriginal(arguments...);
        const DWORD lastError = GetLastError();
        Effect::After(name.text, result, all);
        SetLastError(lastError);
        return result;
    }

    template <class Effect>
    static Result Watch(Arguments... arguments) {
        Effect::Before(std::tuple<Arguments...>(arguments...));
        return CallOriginal(arguments...);
    }
};

struct Row {
    const char* name;
    void* replacement;
    void** original;
};

// A function that fails with a result and a last error when the plan says so.
template <Name name, class Function, Domain domain, intptr_t failure, DWORD error, class Effect = NoEffect>
Row Fails() {
    using Type = Replacement<name, Function>;
    return {name.text, reinterpret_cast<void*>(&Type::template Call<domain, failure, error, Effect>),
            &Type::original};
}

// A function that never fails and returns something to the system.
template <Name name, class Function, class Effect>
Row Watches() {
    using Type = Replacement<name, Function>;
    return {name.text, reinterpret_cast<void*>(&Type::template Watch<Effect>), &Type::original};
}

// The milliseconds by which the clock of the library is ahead of the system's.
std::atomic<ULONGLONG> ahead = 0;

void* originalTickCount = nullptr;
void* originalSleep = nullptr;
void* originalSwitchToThread = nullptr;
void* originalGetProcAddress = nullptr;

// The function of kernelbase, which is another one than that of kernel32.
decltype(&::GetTickCount64) systemTickCount64 = nullptr;

ULONGLONG WINAPI AheadTickCount64() { return systemTickCount64() + ahead; }

DWORD WINAPI AheadTickCount() {
    return reinterpret_cast<decltype(&::GetTickCount)>(originalTickCount)() + static_cast<DWORD>(ahead);
}

// What a yield of the processor counts for: loops that only yield take no more than a thousand rounds. The
// processor is not yielded, as that takes milliseconds on a busy machine.
constexpr DWORD kYieldMilliseconds = 10;

void WINAPI PassTime(DWORD milliseconds) {
    if (IsArmedHere() && milliseconds != INFINITE) {
        ahead += milliseconds == 0 ? kYieldMilliseconds : milliseconds;
        return;
    }
    reinterpret_cast<decltype(&::Sleep)>(originalSleep)(milliseconds);
}

BOOL WINAPI PassTurn() {
    if (!IsArmedHere()) return reinterpret_cast<decltype(&::SwitchToThread)>(originalSwitchToThread)();
    ahead += kYieldMilliseconds;
    return TRUE;
}

FARPROC WINAPI FindReplaced(HMODULE module, LPCSTR name);

template <class Function>
void* Address(Function* function) {
    return reinterpret_cast<void*>(function);
}

constexpr Domain kMemory = Domain::kMemory;
constexpr Domain kFile = Domain::kFile;
constexpr Domain kSystem = Domain::kSystem;

// Functions that fail by their arguments alone, as conversions do, have no row.
const Row kRows[] = {
    Fails<"malloc", decltype(std::malloc), kMemory, 0, ERROR_NOT_ENOUGH_MEMORY, TakesBlock>(),
    Fails<"calloc", decltype(std::calloc), kMemory, 0, ERROR_NOT_ENOUGH_MEMORY, TakesBlock>(),
    Fails<"realloc", decltype(std::realloc), kMemory, 0, ERROR_NOT_ENOUGH_MEMORY, Reallocates<0>>(),
    Fails<"HeapAlloc", decltype(HeapAlloc), kMemory, 0, ERROR_NOT_ENOUGH_MEMORY, TakesOfHeap>(),
    Fails<"HeapReAlloc", decltype(HeapReAlloc), kMemory, 0, ERROR_NOT_ENOUGH_MEMORY, Reallocates<2>>(),
    Fails<"HeapCreate", decltype(HeapCreate), kMemory, 0, ERROR_NOT_ENOUGH_MEMORY, TakesBlock>(),
    Fails<"GlobalAlloc", decltype(GlobalAlloc), kMemory, 0, ERROR_NOT_ENOUGH_MEMORY, TakesBlock>(),
    Fails<"GlobalReAlloc", decltype(GlobalReAlloc), kMemory, 0, ERROR_NOT_ENOUGH_MEMORY, Reallocates<0>>(),
    Fails<"LocalAlloc", decltype(LocalAlloc), kMemory, 0, ERROR_NOT_ENOUGH_MEMORY, TakesBlock>(),
    Fails<"VirtualAlloc", decltype(VirtualAlloc), kMemory, 0, ERROR_NOT_ENOUGH_MEMORY, TakesBlock>(),
    Fails<"CoTaskMemAlloc", decltype(CoTaskMemAlloc), kMemory, 0, ERROR_NOT_ENOUGH_MEMORY, TakesBlock>(),
    Fails<"SysAllocString", decltype(SysAllocString), kMemory, 0, ERROR_NOT_ENOUGH_MEMORY, TakesBlock>(),
    Fails<"SysAllocStringLen", decltype(SysAllocStringLen), kMemory, 0, ERROR_NOT_ENOUGH_MEMORY,
          TakesBlock>(),
    Fails<"SysAllocStringByteLen", decltype(SysAllocStringByteLen), kMemory, 0, ERROR_NOT_ENOUGH_MEMORY,
          TakesBlock>(),
    Fails<"SysReAllocStringLen", decltype(SysReAllocStringLen), kMemory, 0, ERROR_NOT_ENOUGH_MEMORY,
          ReallocatesText>(),
    Fails<"CreateStreamOnHGlobal", decltype(CreateStreamOnHGlobal), kMemory, E_OUTOFMEMORY,
          ERROR_NOT_ENOUGH_MEMORY>(),
    Watches<"VariantClear", decltype(VariantClear), ReturnsVariant>(),
    Watches<"free", decltype(std::free), Returns<Kind::kBlock, 0>>(),
    Watches<"HeapFree", decltype(HeapFree), Returns<Kind::kBlock, 2>>(),
    Watches<"HeapDestroy", decltype(HeapDestroy), EndsHeap>(),
    Watches<"GlobalFree", decltype(GlobalFree), Returns<Kind::kBlock, 0>>(),
    Watches<"LocalFree", decltype(LocalFree), Returns<Kind::kBlock, 0>>(),
    Watches<"VirtualFree", decltype(VirtualFree), Returns<Kind::kBlock, 0>>(),
    Watches<"VariantClear", decltype(VariantClear), ReturnsTextOfVariant>(),
    Watches<"CoTaskMemFree", decltype(CoTaskMemFree), Returns<Kind::kBlock, 0>>(),
    Watches<"SysFreeString", decltype(SysFreeString), Returns<Kind::kBlock, 0>>(),

    Fails<"CreateFileW", decltype(CreateFileW), kFile, -1, ERROR_ACCESS_DENIED, TakesHandle>(),
    Fails<"ReadFile", decltype(::ReadFile), kFile, 0, ERROR_CRC>(),
    Fails<"WriteFile", decltype(::WriteFile), kFile, 0, ERROR_DISK_FULL, WritesHalf>(),
    Fails<"GetFileSizeEx", decltype(GetFileSizeEx), kFile, 0, ERROR_GEN_FAILURE>(),
    Fails<"SetFilePointerEx", decltype(SetFilePointerEx), kFile, 0, ERROR_SEEK>(),
    Fails<"SetEndOfFile", decltype(SetEndOfFile), kFile, 0, ERROR_DISK_FULL>(),
    Fails<"FlushFileBuffers", decltype(FlushFileBuffers), kFile, 0, ERROR_WRITE_FAULT>(),
    Fails<"LockFile", decltype(LockFile), kFile, 0, ERROR_LOCK_VIOLATION>(),
    Fails<"LockFileEx", decltype(LockFileEx), kFile, 0, ERROR_LOCK_VIOLATION>(),
    Fails<"MoveFileW", decltype(MoveFileW), kFile, 0, ERROR_ACCESS_DENIED>(),
    Fails<"MoveFileExW", decltype(MoveFileExW), kFile, 0, ERROR_ACCESS_DENIED>(),
    Fails<"ReplaceFileW", decltype(ReplaceFileW), kFile, 0, ERROR_UNABLE_TO_REMOVE_REPLACED>(),
    Fails<"DeleteFileW", decltype(DeleteFileW), kFile, 0, ERROR_ACCESS_DENIED>(),
    Fails<"GetFileAttributesW", decltype(GetFileAttributesW), kFile, -1, ERROR_ACCESS_DENIED>(),
    Fails<"GetFileAttributesExW", decltype(GetFileAttributesExW), kFile, 0, ERROR_ACCESS_DENIED>(),
    Fails<"SetFileAttributesW", decltype(SetFileAttributesW), kFile, 0, ERROR_ACCESS_DENIED>(),
    Fails<"GetFileTime", decltype(GetFileTime), kFile, 0, ERROR_GEN_FAILURE>(),
    Fails<"GetFileInformationByHandle", decltype(GetFileInformationByHandle), kFile, 0, ERROR_GEN_FAILURE>(),
    Fails<"GetFileInformationByHandleEx", decltype(GetFileInformationByHandleEx), kFile, 0,
          ERROR_GEN_FAILURE>(),
    Fails<"SetFileInformationByHandle", decltype(SetFileInformationByHandle), kFile, 0,
          ERROR_ACCESS_DENIED>(),
    Fails<"GetFinalPathNameByHandleW", decltype(GetFinalPathNameByHandleW), kFile, 0, ERROR_GEN_FAILURE>(),
    Fails<"FindFirstFileW", decltype(FindFirstFileW), kFile, -1, ERROR_ACCESS_DENIED, Takes<Kind::kSearch>>(),
    Fails<"FindNextFileW", decltype(FindNextFileW), kFile, 0, ERROR_GEN_FAILURE>(),
    Fails<"GetTempPathW", decltype(GetTempPathW), kFile, 0, ERROR_GEN_FAILURE>(),
    Fails<"GetTempFileNameW", decltype(GetTempFileNameW), kFile, 0, ERROR_ACCESS_DENIED>(),
    Fails<"GetFullPathNameW", decltype(GetFullPathNameW), kFile, 0, ERROR_GEN_FAILURE>(),
    Fails<"GetVolumeInformationW", decltype(GetVolumeInformationW), kFile, 0, ERROR_GEN_FAILURE>(),
    Fails<"CreateDirectoryW", decltype(CreateDirectoryW), kFile, 0, ERROR_ACCESS_DENIED>(),
    Watches<"CloseHandle", decltype(CloseHandle), Returns<Kind::kHandle, 0>>(),
    Watches<"FindClose", decltype(FindClose), Returns<Kind::kSearch, 0>>(),

    Fails<"CreateFileMappingW", decltype(CreateFileMappingW), kSystem, 0, ERROR_NO_SYSTEM_RESOURCES,
          TakesHandle>(),
    Fails<"MapViewOfFile", decltype(MapViewOfFile), kSystem, 0, ERROR_NO_SYSTEM_RESOURCES,
          Takes<Kind::kView>>(),
    Fails<"CreateEventW", decltype(CreateEventW), kSystem, 0, ERROR_NO_SYSTEM_RESOURCES, TakesHandle>(),
    Fails<"CreateMutexW", decltype(CreateMutexW), kSystem, 0, ERROR_NO_SYSTEM_RESOURCES, TakesHandle>(),
    Fails<"CreateMutexA", decltype(CreateMutexA), kSystem, 0, ERROR_NO_SYSTEM_RESOURCES, TakesHandle>(),
    Fails<"CreateSemaphoreA", decltype(CreateSemaphoreA), kSystem, 0, ERROR_NO_SYSTEM_RESOURCES,
          TakesHandle>(),
    Fails<"_beginthreadex", decltype(_beginthreadex), kSystem, 0, ERROR_NO_SYSTEM_RESOURCES, TakesHandle>(),
    Fails<"TlsAlloc", decltype(TlsAlloc), kSystem, -1, ERROR_NO_SYSTEM_RESOURCES>(),
    Fails<"LoadLibraryW", decltype(LoadLibraryW), kSystem, 0, ERROR_NOT_ENOUGH_MEMORY>(),
    Fails<"LoadLibraryExW", decltype(LoadLibraryExW), kSystem, 0, ERROR_NOT_ENOUGH_MEMORY>(),
    Fails<"GetModuleFileNameW", decltype(GetModuleFileNameW), kSystem, 0, ERROR_GEN_FAILURE>(),
    Fails<"GetEnvironmentVariableW", decltype(GetEnvironmentVariableW), kSystem, 0, ERROR_ENVVAR_NOT_FOUND>(),
    Fails<"ExpandEnvironmentStringsW", decltype(ExpandEnvironmentStringsW), kSystem, 0, ERROR_GEN_FAILURE>(),
    Fails<"FormatMessageW", decltype(FormatMessageW), kSystem, 0, ERROR_GEN_FAILURE>(),
    Fails<"LoadStringW", decltype(LoadStringW), kSystem, 0, ERROR_RESOURCE_NAME_NOT_FOUND>(),
    Fails<"SendMessageTimeoutW", decltype(SendMessageTimeoutW), kSystem, 0, ERROR_TIMEOUT>(),
    Fails<"OpenClipboard", decltype(OpenClipboard), kSystem, 0, ERROR_ACCESS_DENIED>(),
    Fails<"GetClipboardData", decltype(GetClipboardData), kSystem, 0, ERROR_CLIPBOARD_NOT_OPEN>(),
    Fails<"SetClipboardData", decltype(SetClipboardData), kSystem, 0, ERROR_CLIPBOARD_NOT_OPEN,
          PassesBlock>(),
    Fails<"RegOpenKeyExW", decltype(RegOpenKeyExW), kSystem, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED,
          TakesThrough<Kind::kKey, 4>>(),
    Fails<"RegOpenKeyW", decltype(RegOpenKeyW), kSystem, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED,
          TakesThrough<Kind::kKey, 2>>(),
    Fails<"RegCreateKeyExW", decltype(RegCreateKeyExW), kSystem, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED,
          TakesThrough<Kind::kKey, 7>>(),
    Fails<"RegQueryValueExW", decltype(RegQueryValueExW), kSystem, ERROR_ACCESS_DENIED,
          ERROR_ACCESS_DENIED>(),
    Fails<"RegSetValueExW", decltype(RegSetValueExW), kSystem, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED>(),
    Watches<"UnmapViewOfFile", decltype(UnmapViewOfFile), Returns<Kind::kView, 0>>(),
    Watches<"RegCloseKey", decltype(RegCloseKey), Returns<Kind::kKey, 0>>(),

    {"GetTickCount", Address(AheadTickCount), &originalTickCount},
    {"Sleep", Address(PassTime), &originalSleep},
    {"SwitchToThread", Address(PassTurn), &originalSwitchToThread},
    {"GetProcAddress", Address(FindReplaced), &originalGetProcAddress},
};

const Row* FindRow(std::string_view name) {
    const auto* row = std::find_if(std::begin(kRows), std::end(kRows),
                                   [name](const Row& candidate) { return name == candidate.name; });
    return row == std::end(kRows) ? nullptr : row;
}

// Functions that the library asks for by name are replaced as well.
FARPROC WINAPI FindReplaced(HMODULE module, LPCSTR name) {
    const FARPROC found = reinterpret_cast<decltype(&::GetProcAddress)>(originalGetProcAddress)(module, name);
    const bool isName = reinterpret_cast<uintptr_t>(name) > 0xFFFF;
    const Row* const row = found && isName ? FindRow(name) : nullptr;
    if (row == nullptr) return found;
    if (*row->original == nullptr) *row->original = reinterpret_cast<void*>(found);
    return reinterpret_cast<FARPROC>(row->replacement);
}

// Replaces the imports of a module that have a row and that the choice accepts.
template <class Choice>
void ReplaceImports(HMODULE module, Choice isChosen) {
    if (module == nullptr) return;
    vxut::test::ForEachImport(module, [&](std::string_view name, void** entry) {
        const Row* const row = FindRow(name);
        if (row == nullptr || !isChosen(*row)) return;
        if (*row->original == nullptr) *row->original = *entry;
        vxut::test::SetImport(entry, row->replacement);
    });
}

// The library has asked for the address of this function before, and calls it without an import: the function
// itself becomes a jump to the replacement.
void ReplaceClock() {
    systemTickCount64 = reinterpret_cast<decltype(&::GetTickCount64)>(
        GetProcAddress(GetModuleHandleW(L"kernelbase.dll"), "GetTickCount64"));
    auto* const code =
        reinterpret_cast<unsigned char*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetTickCount64"));
    if (systemTickCount64 == nullptr || reinterpret_cast<void*>(systemTickCount64) == code) std::abort();
    unsigned char jump[] = {0x48, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xE0}; // mov rax, address; jmp rax
    void* const target = Address(AheadTickCount64);
    std::memcpy(jump + 2, &target, sizeof target);
    DWORD protection = 0;
    VirtualProtect(code, sizeof jump, PAGE_EXECUTE_READWRITE, &protection);
    std::memcpy(code, jump, sizeof jump);
    VirtualProtect(code, sizeof jump, protection, &protection);
    FlushInstructionCache(GetCurrentProcess(), code, sizeof jump);
}

bool IsOneOf(const Row& row, std::initializer_list<const char*> names) {
    return std::any_of(names.begin(), names.end(),
                       [&](const char* name) { return std::strcmp(name, row.name) == 0; });
}

} // namespace

// Streams in memory grow by the imports of the libraries that implement them. What the library hands to a
// scenario is freed by the program.
void InterceptCalls() {
    ReplaceClock();
    ReplaceImports(GetModuleHandleW(L"vxut21.dll"), [](const Row&) { return true; });
    for (const wchar_t* library : {L"ole32.dll", L"combase.dll"}) {
        ReplaceImports(GetModuleHandleW(library), [](const Row& row) {
            return IsOneOf(row, {"GlobalAlloc", "GlobalReAlloc", "GlobalFree"});
        });
    }
    ReplaceImports(GetModuleHandleW(nullptr),
                   [](const Row& row) { return IsOneOf(row, {"SysFreeString", "CoTaskMemFree"}); });
}

} // namespace torture
