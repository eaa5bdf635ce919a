// The one debug channel of the process: builds lines and hands them to the sinks.
#pragma once

#include "base/critical_section.h"
#include "base/debug.h"
#include "base/line_buffer.h"
#include "trace/debug_log.h"
#include "trace/debug_sinks.h"
#include "trace/line_clock.h"
#include "trace/shared_block.h"

#include <cstdarg>
#include <cstdint>
#include <optional>

namespace vxut {

// Its recursive lock is the innermost of the library: lines are written while any other lock is held, so
// nothing below Write() takes another one, and the loader's lock neither.
class clsDebugChannel {
public:
    // Null once the process has begun to tear its statics down.
    static clsDebugChannel* Instance();

    clsDebugChannel();
    ~clsDebugChannel();
    clsDebugChannel(const clsDebugChannel&) = delete;
    clsDebugChannel& operator=(const clsDebugChannel&) = delete;

    // A null module leaves the module column out, a null format the whole line. The thread's last error
    // stays.
    void Write(const wchar_t* module, int indentChange, const wchar_t* format, va_list arguments);
    bool IsActive();

    void Attach();
    void Detach();
    IclsDebugSinks* SetSinks(IclsDebugSinks* sinks);
    void SetLog(IclsDebugLog* log); // of the standard sinks

private:
    // The block that all channels in the process share, whatever module they are linked into.
    struct ApplicationBlock {
        volatile LONG indent;
        volatile LONG sequence;
    };
    static_assert(sizeof(ApplicationBlock) == 8);

    bool HasListener() { return sinks_ != nullptr && sinks_->IsAttached(); }
    void WriteLine(const wchar_t* module, LONG indent, const wchar_t* format, va_list arguments);
    void BuildLine(const wchar_t* module, LONG indent, LONG sequence, const wchar_t* format,
                   va_list arguments);

    clsCriticalSection lock_; // guards all below
    clsSharedBlock sharedBlock_;
    ApplicationBlock ownBlock_ = {}; // serves when the shared one cannot be had
    ApplicationBlock* block_ = &ownBlock_;
    IclsDebugSinks* sinks_;
    uint32_t (*processorNumber_)();
    std::optional<clsLineClock> clock_; // chosen at the first line
    clsLineBuffer line_;
    volatile LONG sending_ = 0;
};

// The writer behind all others. Nothing that a sink throws leaves it.
void DebugWriteV(const wchar_t* module, int indentChange, const wchar_t* format, va_list arguments) noexcept;

} // namespace vxut
