#include "trace/debug_channel.h"

#include "base/guard.h"
#include "base/identity.h"
#include "base/last_error.h"
#include "base/system_libraries.h"
#include "trace/standard_sinks.h"
#include "trace/thread_names.h"

#include <algorithm>
#include <atomic>
#include <cstdio>

namespace vxut {
namespace {

constexpr LONG kMaxDepth = 50;
constexpr uint32_t kProcessorsInGroup = 64;

// Outlives the channel: tells writers that run later that it is gone.
constinit std::atomic<bool> isChannelThere{true};

// The channel's blocks are made at start-up, before anything else of the library runs.
[[maybe_unused]] clsDebugChannel* const madeAtStartUp = clsDebugChannel::Instance();

struct BlockName {
    wchar_t text[64] = {};
    BlockName() {
        const auto processId = reinterpret_cast<void*>(static_cast<uintptr_t>(GetCurrentProcessId()));
        _snwprintf(text, 63, L"QzrTRCWINAppLocalData_%#p", processId);
    }
};

uint32_t UnknownProcessor() { return 1; }

uint32_t ProcessorOfGroup() {
    PROCESSOR_NUMBER number = {};
    Kernel32().GetCurrentProcessorNumberEx(&number);
    return number.Group * kProcessorsInGroup + number.Number;
}

uint32_t ProcessorOfMachine() { return Kernel32().GetCurrentProcessorNumber(); }

// Counts up for a scope and tells whether nobody else was in one.
class clsSoleScope {
public:
    explicit clsSoleScope(volatile LONG& count) : count_(count), isSole_(InterlockedIncrement(&count) == 1) {}
    ~clsSoleScope() { InterlockedDecrement(&count_); }
    clsSoleScope(const clsSoleScope&) = delete;
    clsSoleScope& operator=(const clsSoleScope&) = delete;

    bool IsSole() const { return isSole_; }

private:
    volatile LONG& count_;
    bool isSole_;
};

auto BestProcessorNumber() {
    if (Kernel32().GetCurrentProcessorNumberEx.IsAvailable()) return ProcessorOfGroup;
    return Kernel32().GetCurrentProcessorNumber.IsAvailable() ? ProcessorOfMachine : UnknownProcessor;
}

} // namespace

clsDebugChannel* clsDebugChannel::Instance() {
    if (!isChannelThere.load(std::memory_order_relaxed)) return nullptr;
    static clsDebugChannel channel;
    return &channel;
}

clsDebugChannel::clsDebugChannel()
    : sharedBlock_(BlockName().text, sizeof(ApplicationBlock)),
      sinks_(&StandardSinks()),
      processorNumber_(UnknownProcessor) {
    if (sharedBlock_.View()) {
        block_ = static_cast<ApplicationBlock*>(sharedBlock_.View());
    } else {
        OutputDebugStringW(sharedBlock_.HasMapping() ? L"_pTRCWINInfoAppLocal FAIL"
                                                     : L"_hTRCWINInfoAppLocal FAIL");
    }
}

clsDebugChannel::~clsDebugChannel() { isChannelThere = false; }

// Late binding takes locks and may write lines: it is done here, outside the road of a line.
void clsDebugChannel::Attach() {
    const auto processorNumber = BestProcessorNumber();
    const clsCriticalSectionScope scope(lock_);
    processorNumber_ = processorNumber;
    if (sinks_) Guarded([&] { sinks_->Attach(); });
}

void clsDebugChannel::Detach() {
    const clsCriticalSectionScope scope(lock_);
    if (sinks_) Guarded([&] { sinks_->Detach(); });
    processorNumber_ = UnknownProcessor;
}

IclsDebugSinks* clsDebugChannel::SetSinks(IclsDebugSinks* sinks) {
    const clsCriticalSectionScope scope(lock_);
    return std::exchange(sinks_, sinks);
}

void clsDebugChannel::SetLog(IclsDebugLog* log) {
    const clsCriticalSectionScope scope(lock_);
    StandardSinks().SetLog(log);
}

bool clsDebugChannel::IsActive() {
    const clsCriticalSectionScope scope(lock_);
    return HasListener();
}

void clsDebugChannel::Write(const wchar_t* module, int indentChange, const wchar_t* format,
                            va_list arguments) {
    const clsLastErrorScope keepLastError;
    const clsCriticalSectionScope scope(lock_);
    if (!HasListener()) return;
    const LONG indent = indentChange < 0 ? InterlockedDecrement(&block_->indent) : block_->indent;
    if (format) WriteLine(module, indent, format, arguments);
    if (indentChange > 0) InterlockedIncrement(&block_->indent);
}

// A line that arises while another is being sent is dropped, so sinks may use any service of the library. It
// has its number all the same: the gap shows that a line was lost.
void clsDebugChannel::WriteLine(const wchar_t* module, LONG indent, const wchar_t* format,
                                va_list arguments) {
    const LONG sequence = InterlockedIncrement(&block_->sequence) - 1;
    const clsSoleScope sending(sending_);
    if (!sending.IsSole()) return;
    BuildLine(module, indent, sequence, format, arguments);
    sinks_->Send(line_.Text());
}

void clsDebugChannel::BuildLine(const wchar_t* module, LONG indent, LONG sequence, const wchar_t* format,
                                va_list arguments) {
    if (!clock_) clock_.emplace(clsLineClock::ConfiguredForm());
    const DWORD threadId = GetCurrentThreadId();
    line_.Clear();
    if (module) line_.Append(L"%-8s: ", module);
    clock_->AppendTime(line_);
    line_.Append(L" %08x/%02x %c %*s", threadId, processorNumber_(),
                 static_cast<wchar_t>(L'0' + static_cast<ULONG>(sequence) % 10),
                 static_cast<int>(std::clamp<LONG>(indent, 0, kMaxDepth) + 1), L"");
    if (const char* threadName = FindThreadName(threadId)) line_.Append(L"[%hs] ", threadName);
    line_.AppendV(format, arguments);
}

IclsDebugSinks* SetDebugSinks(IclsDebugSinks* sinks) {
    clsDebugChannel* channel = clsDebugChannel::Instance();
    return channel ? channel->SetSinks(sinks) : nullptr;
}

void SetDebugLog(IclsDebugLog* log) {
    if (clsDebugChannel* channel = clsDebugChannel::Instance()) channel->SetLog(log);
}

void DebugWriteV(const wchar_t* module, int indentChange, const wchar_t* format, va_list arguments) noexcept {
    clsDebugChannel* channel = clsDebugChannel::Instance();
    if (channel) Guarded([&] { channel->Write(module, indentChange, format, arguments); });
}

void DebugWrite(const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    DebugWriteV(Identity().libraryBaseName, 0, format, arguments);
    va_end(arguments);
}

void DebugWriteIndented(int indentChange, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    DebugWriteV(Identity().libraryBaseName, indentChange, format, arguments);
    va_end(arguments);
}

void DebugWriteAs(const wchar_t* module, int indentChange, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    DebugWriteV(module, indentChange, format, arguments);
    va_end(arguments);
}

bool DebugIsActive() {
    clsDebugChannel* channel = clsDebugChannel::Instance();
    return channel && Guarded(false, [&] { return channel->IsActive(); });
}

} // namespace vxut
