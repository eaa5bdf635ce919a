// The one debug channel of the process: builds lines and hands them to the sinks.
#pragma once

#include "base/critical_section.h"
#include "base/debug.h"
#include "base/line_buffer.h"
#include "containers/list.h"
#include "text/string.h"
#include "trace/debug_log.h"
#include "trace/debug_sinks.h"
#include "trace/line_clock.h"
#include "trace/send_turn.h"
#include "trace/shared_block.h"
#include "trace/standard_sinks.h"

#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <optional>

namespace vxut {

// For use by all threads, which may hold any other lock: what the channel calls takes none of those, nor the
// loader's lock.
//
// Two locks share the work. The turn at the sinks is held while listeners are looked for and while a line is
// sent, which may mean waiting for a viewer. The lock of the lines is held for an instant, while a line gets
// its number, time and indent. A thread that does not get the turn in kTurnPatience leaves its line with the
// channel; the thread that has the turn, or the next one to get it, sends the line in its place. What hosts
// pass in is read before either lock is taken.
class clsDebugChannel {
public:
    // Null once the process has begun to destroy its statics.
    static clsDebugChannel* Instance();

    clsDebugChannel();
    ~clsDebugChannel();
    clsDebugChannel(const clsDebugChannel&) = delete;
    clsDebugChannel& operator=(const clsDebugChannel&) = delete;

    // Writes a line. A null module leaves out the module column, a null format the whole line, so that only
    // the indent changes. Formats nothing if nobody listens. Keeps the thread's last error.
    void Write(const wchar_t* module, int indentChange, const wchar_t* format, va_list arguments);
    // Whether anybody listens. While another thread is busy with the sinks, this is the answer that they gave
    // last.
    bool IsActive();

    void Attach();
    // At unload. Nothing may call the channel's sinks later.
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

    // What a caller passes in, formatted.
    struct Message {
        clsLineBuffer text; // the module column, then what follows the indent
        int moduleUnits = 0;
        int indentChange = 0;
        bool isLine = false;
    };

    // A line that waits for the turn.
    struct WaitingLine {
        String text;
        int64_t digitAt; // the position of the digit
    };

    bool IsSilent() const noexcept;
    bool HasListener();
    template <class Work>
    bool RunInTurn(DWORD patience, Work&& work);

    void Drop(int indentChange, bool isLine);
    void FormatAndSend(const wchar_t* module, int indentChange, const wchar_t* format, va_list arguments);
    static void Format(Message& message, const wchar_t* module, const wchar_t* format, va_list arguments);
    void ChooseClock();
    wchar_t NextDigit();
    int64_t Compose(const Message& message, wchar_t digit, clsLineBuffer& line);
    void SendBatch(const Message* message);
    void SendOne(const wchar_t* line);
    void TakeWaiting(WCValSList<WaitingLine>& waiting);
    void SendLater(const Message& message);
    bool AddWaiting(WaitingLine line);
    void SendWaiting();

    const clsStandardSinks& standardSinks_;
    std::atomic<IclsDebugSinks*> sinks_; // changed by the thread that has the turn
    clsSendTurn turn_;

    clsCriticalSection linesLock_; // guards all below
    clsSharedBlock sharedBlock_;
    ApplicationBlock ownBlock_ = {}; // in use if the shared one cannot be made
    ApplicationBlock* block_ = &ownBlock_;
    uint32_t (*processorNumber_)();
    std::optional<clsLineClock> clock_; // chosen at the first line, then constant
    std::atomic<bool> hasClock_{false};
    WCValSList<WaitingLine> waiting_;
    int64_t waitingUnits_ = 0;
    std::atomic<bool> hasWaiting_{false};
};

// All other writers call this one. It catches whatever a sink throws.
void DebugWriteV(const wchar_t* module, int indentChange, const wchar_t* format, va_list arguments) noexcept;

} // namespace vxut
