#include "crash/exception_protection.h"

#include "base/guard.h"
#include "base/shield.h"
#include "base/system_libraries.h"
#include "base/unload_steps.h"
#include "crash/gpf_protection.h"
#include "crash/stack_overflow.h"
#include "text/settings.h"

#include <cwchar>

namespace vxut {
namespace {

// Made at load, so that nothing is constructed after a fault.
clsExceptionProtection theProtection;

bool Enables(wchar_t unit) { return unit != L'F' && unit != L'0'; }

} // namespace

// Only these four letters of the first setting are final; any other enables the handler until the second one
// is read.
bool DecideHandler(const wchar_t* forceUse, const wchar_t* use) {
    if (forceUse && forceUse[0] && std::wcschr(L"01FT", forceUse[0])) return Enables(forceUse[0]);
    return !use || Enables(use[0]);
}

clsExceptionProtection& clsExceptionProtection::Instance() { return theProtection; }

bool clsExceptionProtection::IsEnabled() {
    const clsCriticalSectionScope scope(lock_);
    if (state_ == kNotDecided) {
        const clsSettingText forceUse(kSettingForceUseGpfHandler);
        const clsSettingText use(kSettingUseGpfHandler);
        const bool isEnabled =
            DecideHandler(forceUse.Exists() ? forceUse.Text() : nullptr, use.Exists() ? use.Text() : nullptr);
        state_ = isEnabled ? kEnabled : kDisabled;
    }
    return state_ == kEnabled;
}

void clsExceptionProtection::Open() {
    if (!IsEnabled()) return;
    const clsCriticalSectionScope scope(lock_);
    SetUnloadStep(UnloadStep::kExceptionProtection, [] { Instance().Shutdown(); });
    const auto previous = SetUnhandledExceptionFilter(Filter);
    if (!savedFilters_.insert(previous)) SetUnhandledExceptionFilter(previous);
}

void clsExceptionProtection::Close() {
    if (!IsEnabled()) return;
    const clsCriticalSectionScope scope(lock_);
    if (savedFilters_.isEmpty()) return;
    const auto previous = savedFilters_.get(0);
    savedFilters_.remove(0);
    SetUnhandledExceptionFilter(previous);
}

// A filter that was installed after ours stays.
void clsExceptionProtection::Shutdown() {
    const clsCriticalSectionScope scope(lock_);
    if (savedFilters_.isEmpty()) return;
    const auto oldest = savedFilters_.get(savedFilters_.entries() - 1);
    savedFilters_.clear();
    const auto current = SetUnhandledExceptionFilter(oldest);
    if (current != Filter) SetUnhandledExceptionFilter(current);
}

// The count of reporting threads is tested without the lock, which a reporting thread holds.
void clsExceptionProtection::Start() {
    if (inFilter_ != 0 || !IsEnabled()) return;
    PrepareForStackOverflow();
    const clsCriticalSectionScope scope(lock_);
    ++protectedThreads_[GetCurrentThreadId()];
}

void clsExceptionProtection::End() {
    if (inFilter_ != 0 || !IsEnabled()) return;
    const clsCriticalSectionScope scope(lock_);
    const unsigned long thread = GetCurrentThreadId();
    int* const count = protectedThreads_.find(thread);
    if (count && --*count == 0) protectedThreads_.remove(thread);
}

// Under the lock.
bool clsExceptionProtection::IsProtected() { return protectedThreads_.contains(GetCurrentThreadId()); }

// Under the lock, for a protected thread.
template <class Work>
auto clsExceptionProtection::InReporter(Work work) {
    ++inFilter_;
    reporter_ = GetCurrentThreadId();
    const auto result = work();
    reporter_ = 0;
    --inFilter_;
    return result;
}

LONG WINAPI clsExceptionProtection::Filter(EXCEPTION_POINTERS* exception) {
    return Instance().FilterFault(exception);
}

LONG clsExceptionProtection::FilterFault(EXCEPTION_POINTERS* exception) {
    // A fault of the reporter itself: the system ends the process.
    if (reporter_ == GetCurrentThreadId()) return EXCEPTION_CONTINUE_SEARCH;
    lock_.Enter();
    if (!IsProtected()) {
        lock_.Leave();
        return CallSavedFilter(exception);
    }
    const LONG result = InReporter([&] {
        return Guarded<LONG>(EXCEPTION_CONTINUE_SEARCH,
                             [&] { return clsGPFProtection().HandleException(exception); });
    });
    lock_.Leave();
    chainIndex_ = 0;
    return result;
}

// A saved filter may be this one, from an earlier open; the index then leads to those behind it.
LONG clsExceptionProtection::CallSavedFilter(EXCEPTION_POINTERS* exception) {
    LPTOP_LEVEL_EXCEPTION_FILTER saved = nullptr;
    {
        const clsCriticalSectionScope scope(lock_);
        while (!saved && chainIndex_ < savedFilters_.entries()) saved = savedFilters_.get(chainIndex_++);
    }
    const LONG result = saved ? saved(exception) : EXCEPTION_EXECUTE_HANDLER;
    chainIndex_ = 0;
    return result;
}

void clsExceptionProtection::ReportFatal(DWORD code, const wchar_t* title, const wchar_t* detail) {
    if (reporter_ == GetCurrentThreadId() || !IsEnabled()) return;
    CONTEXT context = {};
    auto& capture = Kernel32().RtlCaptureContext;
    if (capture.IsAvailable()) capture(&context);
    EXCEPTION_RECORD record = {};
    record.ExceptionCode = code;
    record.ExceptionFlags = EXCEPTION_NONCONTINUABLE;
    record.ExceptionAddress = reinterpret_cast<void*>(context.Rip); // NOLINT(performance-no-int-to-ptr)
    EXCEPTION_POINTERS pointers = {&record, &context};
    const clsCriticalSectionScope scope(lock_);
    if (!IsProtected()) return;
    InReporter([&] {
        clsGPFProtection().GenerateExceptionReport({&pointers, title, detail}, true);
        return 0;
    });
}

} // namespace vxut
