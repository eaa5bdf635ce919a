// Replaces functions that a loaded module imports.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

namespace vxut::test {

template <class T>
T* AtOffset(HMODULE module, size_t offset) {
    return reinterpret_cast<T*>(reinterpret_cast<BYTE*>(module) + offset);
}

// Calls visit(name, entry) for each function that a module imports by name. The entry holds its address.
template <class Visit>
void ForEachImport(HMODULE module, Visit visit) {
    const auto* dos = AtOffset<IMAGE_DOS_HEADER>(module, 0);
    const auto* headers = AtOffset<IMAGE_NT_HEADERS>(module, static_cast<size_t>(dos->e_lfanew));
    const DWORD start = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    if (start == 0) return;
    for (auto* library = AtOffset<IMAGE_IMPORT_DESCRIPTOR>(module, start); library->Name; ++library) {
        if (library->OriginalFirstThunk == 0) continue;
        // The linker aligns neither table to the size of an entry.
        for (size_t at = 0;; at += sizeof(IMAGE_THUNK_DATA)) {
            IMAGE_THUNK_DATA name;
            std::memcpy(&name, AtOffset<BYTE>(module, library->OriginalFirstThunk + at), sizeof name);
            if (name.u1.AddressOfData == 0) break;
            if (IMAGE_SNAP_BY_ORDINAL(name.u1.Ordinal)) continue;
            const auto* import =
                AtOffset<char>(module, name.u1.AddressOfData + offsetof(IMAGE_IMPORT_BY_NAME, Name));
            visit(std::string_view(import), AtOffset<void*>(module, library->FirstThunk + at));
        }
    }
}

// Makes a module call another function. Calls from other modules are not affected.
inline void SetImport(void** entry, void* function) {
    DWORD protection;
    VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &protection);
    std::memcpy(reinterpret_cast<BYTE*>(entry), &function, sizeof function);
    VirtualProtect(entry, sizeof *entry, protection, &protection);
}

// Replacements in one module for the time of a test.
class ImportPatch {
public:
    explicit ImportPatch(HMODULE module) : module_(module) {}
    ~ImportPatch() { Restore(); }
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

    // Makes the module call the replacement. Returns the function that it called before; null if it does not
    // import one of that name.
    template <class Function>
    void* Replace(std::string_view name, Function* replacement) {
        void* original = nullptr;
        ForEachImport(module_, [&](std::string_view imported, void** entry) {
            if (imported != name) return;
            std::memcpy(&original, reinterpret_cast<const BYTE*>(entry), sizeof original);
            saved_.push_back({entry, original});
            SetImport(entry, reinterpret_cast<void*>(replacement));
        });
        return original;
    }

    void Restore() {
        for (; !saved_.empty(); saved_.pop_back()) SetImport(saved_.back().entry, saved_.back().function);
    }

private:
    struct Saved {
        void** entry;
        void* function;
    };

    HMODULE module_;
    std::vector<Saved> saved_;
};

// Counts the calls that the test program makes of a function, and lets them go on. One object at a time for
// each type of function.
template <class Function>
class CallCount;

template <class Result, class... Arguments>
class CallCount<Result WINAPI(Arguments...)> {
public:
    explicit CallCount(std::string_view name) : patch_(GetModuleHandleW(nullptr)) {
        calls = 0;
        original = patch_.Replace(name, Call);
    }
    unsigned Calls() const { return calls; }

private:
    static Result WINAPI Call(Arguments... arguments) {
        ++calls;
        return reinterpret_cast<Result(WINAPI*)(Arguments...)>(original)(arguments...);
    }

    static inline std::atomic<unsigned> calls{0};
    static inline void* original = nullptr;

    ImportPatch patch_;
};

} // namespace vxut::test
