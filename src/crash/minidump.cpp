#include "crash/minidump.h"

#include "base/debug.h"
#include "base/last_error.h"
#include "base/registry.h"
#include "crash/debug_privilege.h"
#include "crash/minidump_notes.h"
#include "files/file.h"
#include "threads/thread.h"

#include <memory>

namespace vxut {
namespace {

constexpr uint32_t kDefaultMode = 670375;
// The kinds of data that an old dbghelp refuses.
constexpr uint32_t kNewerKinds = 0x33C00;

constexpr scPrivilegeTexts kPrivilegeTexts = {L"ERROR: Unable to open process token.",
                                              L"ERROR: Unable to adjust token privileges.",
                                              L"ERROR: Unable to adjust token privileges."};

// Keeps dbghelp from loading symbols for a scope: some versions load those of all modules for a dump, which
// needs none.
class NoSymbolsScope {
public:
    explicit NoSymbolsScope(clsRPDBGHELP& library)
        : library_(library),
          isChanged_(library.SymGetOptions.IsAvailable() && library.SymSetOptions.IsAvailable()),
          options_(isChanged_ ? library.SymGetOptions() : 0) {
        if (isChanged_) library_.SymSetOptions(options_ | SYMOPT_DEFERRED_LOADS);
    }
    ~NoSymbolsScope() {
        if (isChanged_) library_.SymSetOptions(options_);
    }
    NoSymbolsScope(const NoSymbolsScope&) = delete;
    NoSymbolsScope& operator=(const NoSymbolsScope&) = delete;

private:
    clsRPDBGHELP& library_;
    const bool isChanged_;
    const DWORD options_;
};

// One call of the system's function, on any thread.
class DumpCall {
public:
    DumpCall(clsRPDBGHELP& library, HANDLE process, const scMinidump& dump, HANDLE file)
        : library_(library), process_(process), dump_(dump), file_(file) {}

    // Returns whether it succeeded, else with the reason as last error.
    bool Run(uint32_t mode) {
        MINIDUMP_EXCEPTION_INFORMATION information = {dump_.faultingThread, dump_.exception, FALSE};
        const auto notes = std::make_unique<clsMinidumpNotes>(WriterToLeaveOut());
        MINIDUMP_CALLBACK_INFORMATION callback = {clsMinidumpNotes::Callback, notes.get()};
        const NoSymbolsScope noSymbols(library_);
        const BOOL isWritten = library_.MiniDumpWriteDump(
            process_, GetCurrentProcessId(), file_, static_cast<MINIDUMP_TYPE>(mode),
            dump_.exception ? &information : nullptr, nullptr, &callback);
        const DWORD error = isWritten ? static_cast<DWORD>(ERROR_SUCCESS) : ErrorOfFailedCall();
        notes->Report();
        SetLastError(error);
        return isWritten;
    }

private:
    // A thread that only writes the dump is no part of what is reported.
    DWORD WriterToLeaveOut() const {
        const DWORD writer = GetCurrentThreadId();
        return dump_.exception && writer != dump_.faultingThread ? writer : 0;
    }

    clsRPDBGHELP& library_;
    const HANDLE process_;
    const scMinidump& dump_;
    const HANDLE file_;
};

bool RestartFile(clsFile& file) { return file.SetPosition(0) == 0 && file.SetEOF(); }

bool WriteWithException(DumpCall& call, uint32_t mode, clsFile& file) {
    if (call.Run(mode)) return true;
    DebugWrite(L"first attempt failed (%s), retrying", String::FromError(GetLastError()).Text());
    return RestartFile(file) && call.Run(mode & ~kNewerKinds);
}

} // namespace

// Calls the system's function in the place of the thread that asks for a dump.
class clsMiniDump : public clsThreadBase {
public:
    clsMiniDump(DumpCall& call, uint32_t mode)
        : clsThreadBase("DebugHelp::GetMiniDump"), call_(call), mode_(mode) {}
    ~clsMiniDump() override { ThreadEnd(false, -1, false); }

    bool Run() {
        if (!ThreadStart()) return false;
        ThreadEnd(false, -1, false);
        SetLastError(error_);
        return error_ == ERROR_SUCCESS;
    }

protected:
    uint32_t ThreadBody() override {
        SetDebugPrivilege(true, kPrivilegeTexts);
        error_ = call_.Run(mode_) ? static_cast<DWORD>(ERROR_SUCCESS) : GetLastError();
        SetDebugPrivilege(false, kPrivilegeTexts);
        return 0;
    }
    uint32_t ThreadStackSize() const override { return 256 * 1024; }

private:
    DumpCall& call_;
    const uint32_t mode_;
    DWORD error_ = ERROR_GEN_FAILURE;
};

HRESULT WriteMinidump(clsRPDBGHELP& library, HANDLE process, const scMinidump& dump) {
    if (!library.MiniDumpWriteDump.IsAvailable()) return E_FAIL;
    const uint32_t mode = ReadSettingNumber(kSettingMiniDumpMode, kDefaultMode);
    DebugWriteIndented(1, L">clsDBGHELP::WriteMiniDump(%s,0x%08x,%#p)", dump.path.Text(), mode,
                       dump.exception);
    const auto leave = [](HRESULT result, const wchar_t* text) {
        DebugWriteIndented(-1, L"<clsDBGHELP::WriteMiniDump -> %s", text);
        return result;
    };
    clsFile file;
    if (file.Open(dump.path, kAccessReadWrite, kDispositionCreateAlways, kShareNone) != 0) {
        const String reason = String::FromError(GetLastError());
        DebugWrite(L"DBGHELP::WriteMiniDump(%s): error creating dump file: %s", dump.path.Text(),
                   reason.Text());
        return leave(E_UNEXPECTED, reason.Text());
    }
    DumpCall call(library, process, dump, file.Handle());
    const bool isWritten =
        dump.exception ? WriteWithException(call, mode, file) : clsMiniDump(call, mode).Run();
    if (isWritten) return leave(S_OK, L"OK");
    return leave(E_FAIL, String::FromError(GetLastError()).Text());
}

} // namespace vxut
