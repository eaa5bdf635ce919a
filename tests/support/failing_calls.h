// Makes file calls of the test program fail: one after the other, or all from one on.
#pragma once

#include "tests/support/failure_counter.h"
#include "tests/support/import_table.h"

#include <windows.h>

namespace vxut::test {

// While an object lives, the file functions below are counted, and those that it names fail with an error.
// For one thread.
class FailingCalls {
public:
    // The number of the call that fails, from 1; with andAllLater the later ones fail too.
    explicit FailingCalls(unsigned number, bool andAllLater = false, DWORD error = ERROR_IO_DEVICE)
        : patch_(GetModuleHandleW(nullptr)) {
        failure = error;
        Replace<0>("CreateFileW", &CreateFileW);
        Replace<1>("ReadFile", &ReadFile);
        Replace<2>("WriteFile", &WriteFile);
        Replace<3>("SetFilePointerEx", &SetFilePointerEx);
        Replace<4>("GetFileSizeEx", &GetFileSizeEx);
        Replace<5>("SetEndOfFile", &SetEndOfFile);
        Replace<6>("FlushFileBuffers", &FlushFileBuffers);
        Replace<7>("SetFileInformationByHandle", &SetFileInformationByHandle);
        Replace<8>("GetFileInformationByHandleEx", &GetFileInformationByHandleEx);
        Replace<9>("GetFileInformationByHandle", &GetFileInformationByHandle);
        Replace<10>("GetFinalPathNameByHandleW", &GetFinalPathNameByHandleW);
        Replace<11>("LockFile", &LockFile);
        counter.Arm(number, andAllLater);
    }
    ~FailingCalls() { counter.Disarm(); }
    FailingCalls(const FailingCalls&) = delete;
    FailingCalls& operator=(const FailingCalls&) = delete;

    // Whether any call has failed.
    static bool HasStruck() { return counter.HasStruck(); }

private:
    template <int kSlot, class Result, class... Arguments>
    static Result WINAPI Call(Arguments... arguments) {
        if (counter.Strikes()) {
            SetLastError(failure);
            if constexpr (sizeof(Result) == sizeof(HANDLE)) return INVALID_HANDLE_VALUE;
            return Result{};
        }
        return reinterpret_cast<Result(WINAPI*)(Arguments...)>(originals[kSlot])(arguments...);
    }

    template <int kSlot, class Result, class... Arguments>
    void Replace(const char* name, Result(WINAPI*)(Arguments...)) {
        originals[kSlot] = patch_.Replace(name, &Call<kSlot, Result, Arguments...>);
    }

    static inline FailureCounter counter;
    static inline DWORD failure = ERROR_SUCCESS;
    static inline void* originals[12]{}; // one for each function

    ImportPatch patch_;
};

} // namespace vxut::test
