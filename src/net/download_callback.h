// The callback of the host, which two threads of a download call.
#pragma once

#include "base/critical_section.h"
#include "util/download.h"

#include <cstdint>

namespace vxut {

// No lock is held during a call.
class clsDownloadCallback {
public:
    // host may be null: then nothing is called.
    explicit clsDownloadCallback(UtilDownloadCallback* host) noexcept : host_(host) {}
    clsDownloadCallback(const clsDownloadCallback&) = delete;
    clsDownloadCallback& operator=(const clsDownloadCallback&) = delete;

    // Whether a host's pointer leads to an object with a function that can be called, or is null.
    static bool IsCallable(const UtilDownloadCallback* host);

    // For the thread of the caller.
    void Report(uint32_t kind, int32_t value, const wchar_t* text);

    // For the thread of the transfer: nothing is called once the callback is closed.
    void ReportProgress(int32_t percent, const wchar_t* text);
    void Close();
    // Whether a call of ReportProgress() is still in progress.
    bool IsBusy();

private:
    bool Enter();
    void Leave();

    UtilDownloadCallback* const host_;
    clsCriticalSection lock_; // guards what follows
    bool isOpen_ = true;
    int calls_ = 0;
};

} // namespace vxut
