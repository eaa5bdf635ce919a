// Makes file calls of the test program fail: one after the other, or all from one on.
#pragma once

#include "tests/support/import_table.h"

#include <windows.h>

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
    void Patch(const char* name, Result(WINAPI*)(Arguments...)) {
        originals[kSlot] = reinterpret_cast<void*>(patch_.Replace(name, &Call<kSlot, Result, Arguments...>));
    }

    ImportPatch patch_{GetModuleHandleW(nullptr)};
};

} // namespace vxut::test
