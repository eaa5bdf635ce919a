// The protection of threads, and the filter for unhandled exceptions of the process.
#pragma once

#include "base/critical_section.h"
#include "containers/list.h"
#include "containers/skip_list.h"

#include <windows.h>

#include <atomic>
#include <cstdint>

namespace vxut {

// One for the process. For use by all threads. The lock is held while a fault of a protected thread is
// reported, so that faults are reported one after the other; while one is reported, protection is neither
// started nor ended.
class clsExceptionProtection {
public:
    static clsExceptionProtection& Instance();

    // Installs the filter, unless reports are disabled, and saves the previous one.
    void Open();
    // Installs the filter again that the last open has saved, if there is one.
    void Close();
    // Count for the calling thread.
    void Start();
    void End();

    // Reports a fault of the calling thread that is no exception, if the thread is protected.
    void ReportFatal(DWORD code, const wchar_t* title, const wchar_t* detail);

    // Puts the oldest saved filter in place of ours. For unload.
    void Shutdown();

private:
    // Decided once, from the registry.
    enum HandlerState { kNotDecided = 0, kEnabled = 1, kDisabled = 2 };

    static LONG WINAPI Filter(EXCEPTION_POINTERS* exception);

    bool IsEnabled();
    bool IsProtected();
    LONG FilterFault(EXCEPTION_POINTERS* exception);
    LONG CallSavedFilter(EXCEPTION_POINTERS* exception);
    template <class Work>
    auto InReporter(Work work);

    clsCriticalSection lock_; // guards the fields below
    HandlerState state_ = kNotDecided;
    WCValSkipListDict<unsigned long, int> protectedThreads_; // entries have a count above 0
    WCValSList<LPTOP_LEVEL_EXCEPTION_FILTER> savedFilters_;  // the newest first; null for none
    std::atomic<int> chainIndex_{0};                         // of the saved filter that is called next
    std::atomic<int> inFilter_{0};                           // threads in the reporter
    std::atomic<DWORD> reporter_{0};                         // the thread in the reporter
};

// Whether the texts of the two settings enable the handler; null for a setting that is missing.
bool DecideHandler(const wchar_t* forceUse, const wchar_t* use);

} // namespace vxut
