// Replaces functions that a loaded module imports.
#pragma once

#include <windows.h>

#include <cstring>
#include <string_view>
#include <vector>

namespace vxut::test {

// The entries of one module's import table, for the time of a test. Calls from other modules are not
// affected.
class ImportPatch {
public:
    explicit ImportPatch(HMODULE module) : base_(reinterpret_cast<BYTE*>(module)) {}
    ~ImportPatch() { Restore(); }
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

    // Makes the module call the replacement. Returns the function that it called before, or null if it does
    // not import one of that name.
    template <class Function>
    Function* Replace(std::string_view name, Function* replacement) {
        void** const entry = Find(name);
        if (!entry) return nullptr;
        saved_.push_back({entry, *entry});
        Write(entry, reinterpret_cast<void*>(replacement));
        return reinterpret_cast<Function*>(saved_.back().function);
    }

    void Restore() {
        for (; !saved_.empty(); saved_.pop_back()) Write(saved_.back().entry, saved_.back().function);
    }

private:
    struct Saved {
        void** entry;
        void* function;
    };

    template <class T>
    T* At(size_t offset) const {
        return reinterpret_cast<T*>(base_ + offset);
    }

    void** Find(std::string_view name) const {
        const auto* headers = At<IMAGE_NT_HEADERS>(static_cast<size_t>(At<IMAGE_DOS_HEADER>(0)->e_lfanew));
        const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
        for (auto* library = At<IMAGE_IMPORT_DESCRIPTOR>(directory.VirtualAddress); library->Name;
             ++library) {
            const auto* names = At<IMAGE_THUNK_DATA>(library->OriginalFirstThunk);
            auto* entries = At<IMAGE_THUNK_DATA>(library->FirstThunk);
            for (; names->u1.AddressOfData; ++names, ++entries) {
                if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
                if (name == At<IMAGE_IMPORT_BY_NAME>(names->u1.AddressOfData)->Name)
                    return reinterpret_cast<void**>(&entries->u1.Function);
            }
        }
        return nullptr;
    }

    static void Write(void** entry, void* function) {
        DWORD protection;
        VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &protection);
        *entry = function;
        VirtualProtect(entry, sizeof *entry, protection, &protection);
    }

    BYTE* base_;
    std::vector<Saved> saved_;
};

} // namespace vxut::test
