#include "trace/debug_channel.h"

#include "base/guard.h"
#include "base/identity.h"
#include "base/last_error.h"
#include "base/system_libraries.h"
#include "base/tick_count.h"
#include "trace/line_ring.h"
#include "trace/standard_sinks.h"
#include "trace/thread_names.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cwchar>
#include <utility>

namespace vxut {
namespace {

constexpr LONG kMaxDepth = 50;
constexpr uint32_t kProcessorsInGroup = 64;
// How long, in milliseconds, a thread waits while another one is busy with the sinks.
constexpr DWORD kTurnPatience = 250;
// How long a thread sends the lines that others have left with the channel, and how many units are kept.
constexpr uint64_t kMostSendingForOthers = 500;
constexpr int64_t kMostWaitingUnits = int64_t{64} * 1024;

// Outlives the channel, for writers that run after its end.
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
    : standardSinks_(StandardSinks()),
      sinks_(&StandardSinks()),
      sharedBlock_(BlockName().text, sizeof(ApplicationBlock)),
      processorNumber_(UnknownProcessor) {
    if (sharedBlock_.View()) {
        block_ = static_cast<ApplicationBlock*>(sharedBlock_.View());
    } else {
        OutputDebugStringW(sharedBlock_.HasMapping() ? L"_pTRCWINInfoAppLocal FAIL"
                                                     : L"_hTRCWINInfoAppLocal FAIL");
    }
}

clsDebugChannel::~clsDebugChannel() { isChannelThere = false; }

// Late binding takes locks and may write lines, so it is done before the turn is taken.
void clsDebugChannel::Attach() {
    processorNumber_ = BestProcessorNumber();
    RunInTurn(INFINITE, [&] {
        if (IclsDebugSinks* const sinks = sinks_) Guarded([&] { sinks->Attach(); });
    });
}

void clsDebugChannel::Detach() {
    RunInTurn(INFINITE, [&] {
        SendBatch(nullptr);
        if (IclsDebugSinks* const sinks = sinks_) Guarded([&] { sinks->Detach(); });
    });
    processorNumber_ = UnknownProcessor;
}

IclsDebugSinks* clsDebugChannel::SetSinks(IclsDebugSinks* sinks) {
    IclsDebugSinks* previous = nullptr;
    RunInTurn(INFINITE, [&] { previous = sinks_.exchange(sinks); });
    return previous;
}

void clsDebugChannel::SetLog(IclsDebugLog* log) {
    RunInTurn(INFINITE, [&] { StandardSinks().SetLog(log); });
}

// Reads without a lock. Only the standard sinks live as long as the channel, so others are asked in turn.
bool clsDebugChannel::IsSilent() const noexcept {
    const IclsDebugSinks* const sinks = sinks_.load(std::memory_order_relaxed);
    return !sinks || (sinks == &standardSinks_ && standardSinks_.IsSilent());
}

// A thread that keeps the turn for long is waiting for a listener, so there is one.
bool clsDebugChannel::IsActive() {
    if (IsSilent()) return false;
    bool isActive = true;
    RunInTurn(kTurnPatience, [&] { isActive = HasListener(); });
    return isActive;
}

// Listeners are looked for by the outermost call only: lines that the sinks write while they look, such as
// the join line, are no reason to look again.
bool clsDebugChannel::HasListener() {
    IclsDebugSinks* const sinks = sinks_;
    if (!sinks) return false;
    if (!turn_.IsNested()) sinks->Follow();
    return sinks->IsAttached();
}

// Runs work() with the turn, and then sends what other threads have left meanwhile. Returns false if
// the turn was not obtained in time.
template <class Work>
bool clsDebugChannel::RunInTurn(DWORD patience, Work&& work) {
    if (!turn_.Run(patience, work)) return false;
    SendWaiting();
    return true;
}

void clsDebugChannel::Write(const wchar_t* module, int indentChange, const wchar_t* format,
                            va_list arguments) {
    if (IsRingOn()) [[unlikely]]
        ring::Record(module, block_->indent, format, arguments);
    if (IsSilent()) return;
    const clsLastErrorScope keepLastError;
    if (turn_.IsMine() && turn_.IsSending())
        Drop(indentChange, format != nullptr);
    else if (IsActive())
        FormatAndSend(module, indentChange, format, arguments);
}

// A line that arises while the same thread sends another is dropped, so sinks may use any service of the
// library. It gets its number all the same: the gap shows that a line was lost.
void clsDebugChannel::Drop(int indentChange, bool isLine) {
    const clsCriticalSectionScope scope(linesLock_);
    if (isLine) NextDigit();
    if (indentChange < 0) InterlockedDecrement(&block_->indent);
    if (indentChange > 0) InterlockedIncrement(&block_->indent);
}

// Reads all that the host has passed in before a lock is taken: the host may handle the structured exception
// that a bad argument raises, and no lock may be held then. Not inlined, so that a call without listeners
// stays cheap.
[[gnu::noinline]] void clsDebugChannel::FormatAndSend(const wchar_t* module, int indentChange,
                                                      const wchar_t* format, va_list arguments) {
    Message message;
    message.indentChange = indentChange;
    if (format) Format(message, module, format, arguments);
    ChooseClock();
    if (!RunInTurn(kTurnPatience, [&] { SendBatch(&message); })) SendLater(message);
}

void clsDebugChannel::Format(Message& message, const wchar_t* module, const wchar_t* format,
                             va_list arguments) {
    message.isLine = true;
    if (module) message.text.Append(L"%-8s: ", module);
    message.moduleUnits = static_cast<int>(std::wcslen(message.text.Text()));
    if (const char* threadName = FindThreadName(GetCurrentThreadId()))
        message.text.Append(L"[%hs] ", threadName);
    message.text.AppendV(format, arguments);
}

// Reads the registry, so not under the lock. Two threads may write the first line at once.
void clsDebugChannel::ChooseClock() {
    if (hasClock_.load(std::memory_order_acquire)) return;
    const clsLineClock::Form form = clsLineClock::ConfiguredForm();
    const clsCriticalSectionScope scope(linesLock_);
    if (clock_) return;
    clock_.emplace(form);
    hasClock_.store(true, std::memory_order_release);
}

wchar_t clsDebugChannel::NextDigit() {
    const auto sequence = static_cast<ULONG>(InterlockedIncrement(&block_->sequence) - 1);
    return static_cast<wchar_t>(L'0' + sequence % 10);
}

// Builds the line of a message and applies the change of the indent. Returns the position of the digit.
int64_t clsDebugChannel::Compose(const Message& message, wchar_t digit, clsLineBuffer& line) {
    const clsCriticalSectionScope scope(linesLock_);
    const LONG indent =
        message.indentChange < 0 ? InterlockedDecrement(&block_->indent) : LONG{block_->indent};
    size_t digitAt = 0;
    if (message.isLine) {
        line.Append(L"%.*s", message.moduleUnits, message.text.Text());
        clock_->AppendTime(line);
        line.Append(L" %08x/%02x ", GetCurrentThreadId(), processorNumber_());
        digitAt = std::wcslen(line.Text());
        line.Append(L"%c %*s", digit, static_cast<int>(std::clamp<LONG>(indent, 0, kMaxDepth) + 1), L"");
        line.Append(L"%s", message.text.Text() + message.moduleUnits);
    }
    if (message.indentChange > 0) InterlockedIncrement(&block_->indent);
    return static_cast<int64_t>(digitAt);
}

// Sends, with the turn, the lines that wait and then the message, if there is one. A join line is sent in the
// midst of another call and goes before what waits. Digits count in the order of sending.
void clsDebugChannel::SendBatch(const Message* message) {
    WCValSList<WaitingLine> waiting;
    if (!turn_.IsNested()) TakeWaiting(waiting);
    turn_.SetSending(true);
    for (const WaitingLine& next : waiting) {
        const wchar_t* const text = next.text.Text();
        const int64_t behindDigit = std::min(next.digitAt + 1, next.text.Length());
        clsLineBuffer line;
        line.Append(L"%.*s%c%s", static_cast<int>(next.digitAt), text, NextDigit(), text + behindDigit);
        SendOne(line.Text());
    }
    if (message) {
        clsLineBuffer line;
        Compose(*message, message->isLine ? NextDigit() : L'0', line);
        if (message->isLine) SendOne(line.Text());
    }
    turn_.SetSending(false);
}

void clsDebugChannel::TakeWaiting(WCValSList<WaitingLine>& waiting) {
    const clsCriticalSectionScope scope(linesLock_);
    waiting.swap(waiting_);
    waitingUnits_ = 0;
    hasWaiting_ = false;
}

void clsDebugChannel::SendOne(const wchar_t* line) {
    if (IclsDebugSinks* const sinks = sinks_) Guarded([&] { sinks->Send(line); });
}

// Queues a line for the thread that has the turn, or sends it if the turn has become free. The line gets its
// digit when it is sent.
void clsDebugChannel::SendLater(const Message& message) {
    clsLineBuffer line;
    const int64_t digitAt = Compose(message, L'0', line);
    if (!message.isLine) return;
    if (!AddWaiting({line.Text(), digitAt})) NextDigit(); // the gap shows that a line was lost
    SendWaiting();
}

bool clsDebugChannel::AddWaiting(WaitingLine line) {
    const clsCriticalSectionScope scope(linesLock_);
    const int64_t units = line.text.Length();
    if (waitingUnits_ >= kMostWaitingUnits || !waiting_.append(std::move(line))) return false;
    waitingUnits_ += units;
    hasWaiting_ = true;
    return true;
}

// Sends what waits unless another thread has the turn, which will then do so. Stops after a while: with
// threads that write without end, one of them must not send for all others for ever.
void clsDebugChannel::SendWaiting() {
    if (!hasWaiting_ || turn_.IsMine()) return;
    const uint64_t end = TickCount64() + kMostSendingForOthers;
    while (hasWaiting_ && TickCount64() < end && turn_.Run(0, [&] { SendBatch(nullptr); })) {
    }
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
