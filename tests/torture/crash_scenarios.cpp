#include "profile_sample.h"
#include "scenario.h"
#include "util/debug_help.h"
#include "util/environment.h"
#include "util/exception_handler.h"

#include <windows.h>

#include <cstring>
#include <string>

namespace torture {
namespace {

// A job that opens, or fails in all calls; lists that are whole or missing; the lock free at the end. The
// work is done on the thread that has the failures.
class CrashLists : public Scenario {
public:
    void Run() override {
        const HUTILDEBUGHELP job = UtilDebugHelpJobOpen();
        isOpened_ = job != nullptr;
        UtilDebugHelpSetOption(job, UTIL_DEBUGHELP_USE_THREAD, 0);
        UtilDebugHelpSetOption(job, UTIL_DEBUGHELP_MOST_FRAMES, 5);
        UtilDebugHelpSetOption(job, UTIL_DEBUGHELP_FRAME_MODE, 0);
        IDBGStackTraceList* frames = nullptr;
        isWalked_ = UtilDebugHelpGetStackTrace(job, &frames, nullptr) != 0;
        if (frames) {
            frames->GetCount(&frames_);
            IDBGStackTraceList* copy = nullptr;
            if (frames->Clone(&copy) == S_OK) copy->Release();
            frames->Release();
        }
        UtilDebugHelpJobClose(job);
    }
    void Check(Verdict& verdict) override {
        const bool any = verdict.AnyFailed();
        verdict.Expect(any || (isOpened_ && isWalked_), "opened %d, walked %d", isOpened_, isWalked_);
        verdict.Expect(any || frames_ == 5, "%lu frames", frames_);
        struct _RTL_CRITICAL_SECTION* section = nullptr;
        UtilGetDBGHELPThreadingCS(&section);
        const bool isFree = TryEnterCriticalSection(section) != FALSE;
        if (isFree) LeaveCriticalSection(section);
        verdict.Expect(isFree, "the lock of the engine is held");
    }

private:
    bool isOpened_ = false;
    bool isWalked_ = false;
    ULONG frames_ = 0;
};

const AddScenario<CrashLists> crashLists("crash-lists");

// A dump that is reported as written is in its archive, or still there if that failed.
class CrashDump : public Scenario {
public:
    void Prepare() override {
        UtilExHandlerSetOption(UTIL_EXHANDLER_PACK_ALWAYS, 1);
        SetMode();
    }
    void Run() override {
        const HUTILDEBUGHELP job = UtilDebugHelpJobOpen();
        UtilDebugHelpSetOption(job, UTIL_DEBUGHELP_USE_THREAD, 0);
        EXCEPTION_RECORD record = {};
        record.ExceptionCode = 0xC0000005;
        CONTEXT context;
        RtlCaptureContext(&context);
        EXCEPTION_POINTERS exception = {&record, &context};
        isWritten_ = UtilDebugHelpWriteMiniDump(job, name_, MAX_PATH, &exception) != 0;
        UtilDebugHelpJobClose(job);
    }
    void Check(Verdict& verdict) override {
        const std::string archive = BytesOf(L"Velmora.dmp.zip");
        const std::string dump = BytesOf(L"a.dmp");
        verdict.Expect(verdict.AnyFailed() || isWritten_, "no dump");
        const bool isPacked = isWritten_ && std::wcsstr(name_, L".zip") != nullptr;
        verdict.Expect(verdict.AnyFailed() || isPacked, "the name %ls", name_);
        verdict.Expect(!isPacked || archive.find("velmora64.dmp") != std::string::npos,
                       "an archive without a dump");
        verdict.Expect(!isWritten_ || isPacked || dump.starts_with("MDMP"), "the dump is lost");
        DeleteFileW(L"Velmora.dmp.zip");
        DeleteFileW(L"a.dmp");
    }

private:
    static void SetMode() {
        HKEY key = nullptr;
        const DWORD normal = 0;
        if (RegCreateKeyW(HKEY_CURRENT_USER, L"Software\\Velmora", &key) != ERROR_SUCCESS) return;
        RegSetValueExW(key, L"GPFMiniDumpMode", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&normal),
                       sizeof normal);
        RegCloseKey(key);
    }

    wchar_t name_[MAX_PATH] = L".\\a.dmp";
    bool isWritten_ = false;
};

const AddScenario<CrashDump> crashDump("crash-dump");

} // namespace
} // namespace torture
