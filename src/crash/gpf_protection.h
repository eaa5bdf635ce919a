// What is done about one fault.
#pragma once

#include "crash/crash_log.h"

#include <windows.h>

#include <cstdint>

namespace vxut {

// A fault as it is reported.
struct scReportedFault {
    EXCEPTION_POINTERS* exception = nullptr;
    const wchar_t* title = nullptr;  // null: the name of the exception
    const wchar_t* detail = nullptr; // a further line of the report; null for none
};

// Lives on the stack for the duration of a fault, on the thread that reports it.
class clsGPFProtection {
public:
    clsGPFProtection() = default;
    clsGPFProtection(const clsGPFProtection&) = delete;
    clsGPFProtection& operator=(const clsGPFProtection&) = delete;

    // The virtual operations, in this order.
    virtual ~clsGPFProtection() = default;
    // Reports a fault if it is one that is to be reported. Returns a filter result.
    virtual LONG HandleException(EXCEPTION_POINTERS* exception);
    // Writes a line of the report. mode is kOutput...
    virtual void Output(uint32_t mode, const wchar_t* format, ...);
    virtual uint32_t GetOutputMode() const { return kOutputDebug | kOutputLog; }

    // Reports a fault, by a short text and a minidump or by the full text too. One thread at a time reports;
    // others wait.
    void GenerateExceptionReport(const scReportedFault& fault, bool createMinidumpOnly);

    bool MayAskUser() const { return (flags_ & kMayAskUser) != 0; }

private:
    static constexpr uint32_t kMayAskUser = 1;
    static constexpr uint32_t kWantsReport = 2;

    void Report(EXCEPTION_POINTERS* exception, bool createMinidumpOnly);
    void ReportExecution(EXCEPTION_POINTERS* exception);
    LONG HandleStackOverflow(EXCEPTION_POINTERS* exception) const;

    uint32_t flags_ = kMayAskUser | kWantsReport;
};

// Whether an exception code is one of the system.
constexpr bool IsSystemException(DWORD code) { return (code & 0x3FFFFC00) == 0; }

} // namespace vxut
