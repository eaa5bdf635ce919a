// What becomes of a process that loads and unloads the DLL, and of a call that finds no memory.
#include "base/owners.h"
#include "prof/job.h"
#include "tests/child/tasks.h"
#include "tests/support/import_table.h"
#include "util/path.h"

#include <oleauto.h>

#include <atomic>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace vxut::test {
namespace {

// The DLL beside this program.
std::wstring LibraryPath() {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring own(path);
    return own.substr(0, own.find_last_of(L'\\') + 1) + L"vxut21.dll";
}

class Library {
public:
    Library() : module_(LoadLibraryW(LibraryPath().c_str())) {}

    explicit operator bool() const { return static_cast<bool>(module_); }
    HMODULE Module() const { return module_.Get(); }

    template <class Signature>
    Signature* Export(const char* name) const {
        return reinterpret_cast<Signature*>(reinterpret_cast<void*>(GetProcAddress(Module(), name)));
    }

    // Whether opening a profile finds no memory, and says so.
    bool OpenFails() const {
        return Export<decltype(ProfJobOpenW)>("ProfJobOpenW")(L"C:\\absent.prf") == nullptr;
    }

    // Lets every allocation of the DLL fail, from the first one of its call on.
    static void Starve(ImportPatch& imports) {
        imports.Replace("malloc", +[](size_t) -> void* { return nullptr; });
        imports.Replace("calloc", +[](size_t, size_t) -> void* { return nullptr; });
        imports.Replace("realloc", +[](void*, size_t) -> void* { return nullptr; });
        imports.Replace("HeapAlloc", +[](HANDLE, DWORD, SIZE_T) WINAPI -> void* { return nullptr; });
        imports.Replace("HeapReAlloc", +[](HANDLE, DWORD, void*, SIZE_T) WINAPI -> void* { return nullptr; });
        imports.Replace("LocalAlloc", +[](UINT, SIZE_T) WINAPI -> HLOCAL { return nullptr; });
        imports.Replace("GlobalAlloc", +[](UINT, SIZE_T) WINAPI -> HGLOBAL { return nullptr; });
        imports.Replace("VirtualAlloc", +[](void*, SIZE_T, DWORD, DWORD) WINAPI -> void* { return nullptr; });
        imports.Replace("TlsAlloc", +[]() WINAPI -> DWORD { return TLS_OUT_OF_INDEXES; });
    }

private:
    clsAutoFreeLibrary module_;
};

// The first throw of the process, or of a thread, happens where no memory is left.
int ThrowStarved(bool onThread, bool isThreadOlder) {
    std::atomic<bool> isReady{!isThreadOlder};
    std::atomic<bool> failed{false};
    const Library* library = nullptr;
    const auto open = [&] {
        while (!isReady) Sleep(1);
        failed = library->OpenFails();
    };
    std::thread older;
    if (isThreadOlder) older = std::thread(open);
    const Library loaded;
    if (!loaded) return 2;
    library = &loaded;
    std::thread younger;
    ImportPatch imports(loaded.Module());
    if (onThread && !isThreadOlder) {
        isReady = false;
        younger = std::thread(open);
    }
    Library::Starve(imports);
    isReady = true;
    if (!onThread) open();
    if (older.joinable()) older.join();
    if (younger.joinable()) younger.join();
    imports.Restore();
    std::printf("%s, %s", failed ? "fails" : "opens", loaded.OpenFails() ? "fails" : "opens");
    return 0;
}

const AddChildTask starvedMain("starved", [] { return ThrowStarved(false, false); });
const AddChildTask starvedThread("starved-thread", [] { return ThrowStarved(true, false); });
const AddChildTask starvedOlderThread("starved-older-thread", [] { return ThrowStarved(true, true); });

// More threads throw at the same time than there are blocks for exceptions.
const AddChildTask starvedCrowd("starved-crowd", [] {
    constexpr int kThreads = 200;
    const Library library;
    if (!library) return 2;
    ImportPatch imports(library.Module());
    std::atomic<bool> isStarved{false};
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] {
            while (!isStarved) Sleep(1);
            for (int round = 0; round < 20; ++round) failures += library.OpenFails();
        });
    }
    Library::Starve(imports);
    isStarved = true;
    for (std::thread& thread : threads) thread.join();
    imports.Restore();
    std::printf("%d", failures.load());
    return 0;
});

// What a process holds.
struct Holdings {
    int slots = 0; // of thread-local storage
    int handles = 0;
    int regions = 0; // of memory
    long long heapBytes = 0;

    static Holdings Now() {
        Holdings now;
        now.CountSlots();
        for (uintptr_t value = 4; value < 40000; value += 4) {
            DWORD flags;
            now.handles += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != FALSE;
        }
        MEMORY_BASIC_INFORMATION region;
        for (uintptr_t at = 0;
             VirtualQuery(reinterpret_cast<void*>(at), &region, sizeof region) == sizeof region;
             at = reinterpret_cast<uintptr_t>(region.BaseAddress) + region.RegionSize)
            now.regions += region.State != MEM_FREE;
        PROCESS_HEAP_ENTRY entry = {};
        while (HeapWalk(GetProcessHeap(), &entry))
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) now.heapBytes += entry.cbData;
        return now;
    }

private:
    void CountSlots() {
        std::vector<DWORD> free;
        for (DWORD slot; (slot = TlsAlloc()) != TLS_OUT_OF_INDEXES;) free.push_back(slot);
        for (const DWORD slot : free) TlsFree(slot);
        slots = TLS_MINIMUM_AVAILABLE + 1024 - static_cast<int>(free.size());
    }
};

// One life of the DLL in the process.
using Life = void (*)(const Library& library);

int LoadAgainAndAgain(int cycles, Life live) {
    for (int i = 0; i < 10; ++i) live(Library());
    const Holdings before = Holdings::Now();
    for (int i = 0; i < cycles; ++i) {
        const Library library;
        if (!library) {
            std::printf("the load %d failed: error %lu", i, GetLastError());
            return 1;
        }
        live(library);
    }
    const Holdings after = Holdings::Now();
    std::printf("slots %d, handles %d, regions %d, heap %lld", after.slots - before.slots,
                after.handles - before.handles, after.regions - before.regions,
                (after.heapBytes - before.heapBytes) / cycles);
    return 0;
}

// What a cycle leaves behind shows in any number of them.
const AddChildTask loadOnly("load-cycles", [] { return LoadAgainAndAgain(300, [](const Library&) {}); });

// Long enough for the pattern engine to make machine code.
std::wstring LongPath() { return L"%Personal%\\" + std::wstring(5000, L'x') + L"%Personal%"; }

// A life with a throw, machine code for a pattern, and libraries that are bound late.
const AddChildTask loadAndWork("load-and-work-cycles", [] {
    return LoadAgainAndAgain(50, [](const Library& library) {
        ImportPatch imports(library.Module());
        Library::Starve(imports);
        library.OpenFails();
        imports.Restore();
        wchar_t path[MAX_PATH];
        library.Export<decltype(UtilFullpath)>("UtilFullpath")(path, L".", MAX_PATH);
        BSTR expanded = nullptr;
        library.Export<decltype(UtilExpandDefaultTokensOfFolderPath)>("UtilExpandDefaultTokensOfFolderPath")(
            LongPath().c_str(), &expanded);
        SysFreeString(expanded);
    });
});

} // namespace
} // namespace vxut::test
