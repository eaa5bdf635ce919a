#include "base/debug.h"
#include "threads/deadline.h"
#include "threads/thread.h"

#include <algorithm>

namespace vxut {
namespace {

DWORD WaitInOneForm(bool forMessages, bool alertably, DWORD count, const HANDLE* handles, DWORD timeout) {
    if (forMessages && alertably) {
        return MsgWaitForMultipleObjectsEx(count, handles, timeout, QS_ALLINPUT, MWMO_ALERTABLE);
    }
    if (forMessages) return MsgWaitForMultipleObjects(count, handles, FALSE, timeout, QS_ALLINPUT);
    if (alertably) return WaitForMultipleObjectsEx(count, handles, FALSE, timeout, TRUE);
    return WaitForMultipleObjects(count, handles, FALSE, timeout);
}

// Returns the position among the handles, or a number from count on if the result is of another kind.
DWORD PositionOf(DWORD result, DWORD count) {
    const bool isAbandoned = result >= WAIT_ABANDONED_0 && result < WAIT_ABANDONED_0 + count;
    return isAbandoned ? result - WAIT_ABANDONED_0 : result - WAIT_OBJECT_0;
}

// Dispatches messages. A message that ends the program is meant for an outer loop: it is posted again at the
// end of the scope.
class MessageLoop {
public:
    ~MessageLoop() {
        if (hasQuit_) PostQuitMessage(exitCode_);
    }

    template <class IsOver>
    void Dispatch(IsOver isOver) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == WM_QUIT) {
                hasQuit_ = true;
                exitCode_ = static_cast<int>(message.wParam);
            }
            TranslateMessage(&message);
            DispatchMessageW(&message);
            if (isOver()) return;
        }
    }

private:
    bool hasQuit_ = false;
    int exitCode_ = 0;
};

} // namespace

bool clsThreadBase::ThreadWait(int32_t timeout, int32_t& index, uint32_t count, const HANDLE* handles) const {
    HANDLE all[MAXIMUM_WAIT_OBJECTS];
    if (count >= MAXIMUM_WAIT_OBJECTS) {
        SetLastError(ERROR_INVALID_PARAMETER);
        index = kWaitFailed;
        return true;
    }
    all[0] = stopEvent_.Get();
    std::copy_n(handles, count, all + 1);
    const DWORD allCount = count + 1;
    // The wait is repeated when it ends for a reason that has no index, such as a timeout that the system
    // reports just before the deadline. A subclass may change its settings meanwhile, so they are read each
    // time.
    for (const clsDeadline deadline(timeout);;) {
        const bool forMessages = ThreadWaitsForMessages();
        const DWORD result =
            WaitInOneForm(forMessages, ThreadWaitsAlertably(), allCount, all, deadline.Remaining());
        const DWORD position = PositionOf(result, allCount);
        if (position == 0) {
            index = kWaitStopped;
            return false;
        }
        if (position < allCount) {
            index = static_cast<int32_t>(position) - 1;
        } else if (forMessages && position == allCount) {
            index = kWaitMessage;
        } else if (result == WAIT_IO_COMPLETION && ThreadWaitsAlertably()) {
            index = kWaitAlerted;
        } else if (result == WAIT_TIMEOUT && deadline.HasPassed()) {
            index = kWaitTimeout;
        } else if (result == WAIT_FAILED) {
            index = kWaitFailed;
        } else {
            continue;
        }
        return true;
    }
}

bool clsThreadBase::WaitWithMessages(HANDLE thread, int32_t timeout) {
    const clsDeadline deadline(timeout);
    const auto hasEnded = [=] { return WaitForSingleObject(thread, 0) == WAIT_OBJECT_0; };
    MessageLoop loop;
    for (;;) {
        const DWORD result = MsgWaitForMultipleObjects(1, &thread, FALSE, deadline.Remaining(), QS_ALLINPUT);
        if (result == WAIT_OBJECT_0) return true;
        if (result == WAIT_ABANDONED_0) DebugWrite(L"abandoned...");
        if (result == WAIT_FAILED) return false;
        loop.Dispatch([&] { return hasEnded() || deadline.HasPassed(); });
        if (deadline.HasPassed()) return hasEnded();
    }
}

} // namespace vxut
