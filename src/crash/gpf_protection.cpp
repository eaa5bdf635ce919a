#include "crash/gpf_protection.h"

#include "base/debug.h"
#include "base/identity.h"
#include "crash/stack_overflow.h"

#include <cwchar>

namespace vxut {
namespace {

// A viewer that never asks its user.
constexpr wchar_t kSilentViewer[] = L"rpview";

constexpr DWORD kInvalidUnwindTarget = 0xC0000029;

bool IsSilentViewer() {
    return Identity().osVersion >= kWindowsVista &&
           _wcsnicmp(Identity().processFileName, kSilentViewer, std::size(kSilentViewer) - 1) == 0;
}

bool IsExecutionOfData(const EXCEPTION_RECORD& record) {
    constexpr ULONG_PTR kExecution = 8;
    return record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record.NumberParameters > 0 &&
           record.ExceptionInformation[0] == kExecution;
}

} // namespace

LONG clsGPFProtection::HandleException(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    const DWORD code = record.ExceptionCode;
    if (!IsSystemException(code)) {
        DebugWrite(L"Not system exception: let it pass!");
        return EXCEPTION_CONTINUE_SEARCH;
    }
    if (IsSilentViewer()) flags_ &= ~kMayAskUser;
    if (IsExecutionOfData(record)) {
        ReportExecution(exception);
        return EXCEPTION_CONTINUE_SEARCH;
    }
    if (code == EXCEPTION_BREAKPOINT) {
        ++exception->ContextRecord->Rip;
        return EXCEPTION_CONTINUE_EXECUTION;
    }
    if (code == EXCEPTION_STACK_OVERFLOW) return HandleStackOverflow(exception);
    Report(exception, true);
    if (code == EXCEPTION_NONCONTINUABLE_EXCEPTION) DebugWrite(L"[noncontinuable exception...]");
    if (code == kInvalidUnwindTarget) DebugWrite(L"[no handler active to catch throw()?]");
    return EXCEPTION_CONTINUE_SEARCH;
}

void clsGPFProtection::ReportExecution(EXCEPTION_POINTERS* exception) {
    DebugWriteIndented(1, L">>>NX violation exception!!!");
    Report(exception, false);
    DebugWriteIndented(-1, L"<<<NX violation exception!!!");
}

void clsGPFProtection::Report(EXCEPTION_POINTERS* exception, bool createMinidumpOnly) {
    if (flags_ & kWantsReport) GenerateExceptionReport({.exception = exception}, createMinidumpOnly);
}

// There is no stack left for a report: another thread writes it, if the host has asked for that.
LONG clsGPFProtection::HandleStackOverflow(EXCEPTION_POINTERS* exception) const {
    if (flags_ & kWantsReport) ReportStackOverflow(exception);
    return EXCEPTION_CONTINUE_SEARCH;
}

void clsGPFProtection::Output(uint32_t mode, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    WriteReportLine(mode, format, arguments);
    va_end(arguments);
}

} // namespace vxut
