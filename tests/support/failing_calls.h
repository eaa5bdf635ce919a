// Makes file calls of the test program fail: one after the other, or all from one on.
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstring>

namespace vxut::test {

// While an object lives, the file functions below are counted, and those that it names fail with an error.
// For one thread.
class FailingCalls {
public:
    static constexpr int kNever = 0;

    // The number of the call that fails, from 1; with andAllLater the later ones fail too.
    explicit FailingCalls(int number, bool andAllLater = false, DWORD error = ERROR_IO_DEVICE) {
        state = {0, number, andAllLater, error};
        Patch<0>("CreateFileW", &CreateFileW);
        Patch<1>("ReadFile", &ReadFile);
        Patch<2>("WriteFile", &WriteFile);
        Patch<3>("SetFilePointerEx", &SetFilePointerEx);
        Patch<4>("GetFileSizeEx", &GetFileSizeEx);
        Patch<5>("SetEndOfFile", &SetEndOfFile);
        Patch<6>("FlushFileBuffers", &FlushFileBuffers);
        Patch<7>("SetFileInformationByHandle", &SetFileInformationByHandle);
        Patch<8>("GetFileInformationByHandleEx", &GetFileInformationByHandleEx);
        Patch<9>("GetFileInformationByHandle", &GetFileInformationByHandle);
        Patch<10>("GetFinalPathNameByHandleW", &GetFinalPathNameByHandleW);
        Patch<11>("LockFile", &LockFile);
    }
    ~FailingCalls() {
        for (int i = 0; i < kSlots; ++i)
            if (slots[i]) Write(slots[i], originals[i]);
    }
    FailingCalls(const FailingCalls&) = delete;
    FailingCalls& operator=(const FailingCalls&) = delete;

    // Whether any call has failed.
    static bool HasStruck() { return state.number != kNever && state.calls >= state.number; }

private:
    static constexpr int kSlots = 12;
    struct State {
        int calls;
        int number;
        bool andAllLater;
        DWORD error;
    };
    static inline State state{};
    static inline void** slots[kSlots]{};
    static inline void* originals[kSlots]{};

    static bool Strikes() {
        ++state.calls;
        const bool fails = HasStruck() && (state.andAllLater || state.calls == state.number);
        if (fails) SetLastError(state.error);
        return fails;
    }

    template <int kSlot, class Result, class... Arguments>
    static Result WINAPI Call(Arguments... arguments) {
        if (Strikes()) {
            if constexpr (sizeof(Result) == sizeof(HANDLE)) return INVALID_HANDLE_VALUE;
            return Result{};
        }
        return reinterpret_cast<Result(WINAPI*)(Arguments...)>(originals[kSlot])(arguments...);
    }

    template <int kSlot, class Result, class... Arguments>
    static void Patch(const char* name, Result(WINAPI*)(Arguments...)) {
        slots[kSlot] = FindSlot(name);
        if (!slots[kSlot]) return;
        originals[kSlot] = *slots[kSlot];
        Write(slots[kSlot], reinterpret_cast<void*>(&Call<kSlot, Result, Arguments...>));
    }

    static void Write(void** slot, void* function) {
        DWORD old = 0;
        VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &old);
        *slot = function;
        VirtualProtect(slot, sizeof(*slot), old, &old);
    }

    // The entry of the program's import table for a function; null if it is not imported.
    static void** FindSlot(const char* name) {
        auto* const base = reinterpret_cast<BYTE*>(GetModuleHandleW(nullptr));
        const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
        const auto* const nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
        const DWORD start = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
        for (auto* row = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + start); row->Name; ++row) {
            auto* names = reinterpret_cast<const IMAGE_THUNK_DATA64*>(base + row->OriginalFirstThunk);
            auto** slot = reinterpret_cast<void**>(base + row->FirstThunk);
            for (; names->u1.AddressOfData; ++names, ++slot) {
                if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) continue;
                const auto* const import =
                    reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
                if (std::strcmp(reinterpret_cast<const char*>(import->Name), name) == 0) return slot;
            }
        }
        return nullptr;
    }
};

} // namespace vxut::test
