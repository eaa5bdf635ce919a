#include "trace/send_turn.h"

#include "base/tick_count.h"

namespace vxut {

clsSendTurn::clsSendTurn() : released_(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {}

bool clsSendTurn::Enter(DWORD patience) {
    const clsCriticalSectionScope scope(lock_);
    for (;;) {
        // The owner of a turn that is taken at process end has been terminated.
        if (owner_ == 0 || (IsProcessEnding() && !IsMine())) {
            owner_ = GetCurrentThreadId();
            depth_ = 0;
            isSending_ = false;
            takenAt_ = TickCount64();
        }
        if (IsMine()) {
            ++depth_;
            return true;
        }
        const uint64_t held = TickCount64() - takenAt_;
        if (held >= patience) return false;
        ++waiters_;
        {
            const clsCriticalSectionGap gap(lock_);
            WaitForRelease(patience == INFINITE ? INFINITE : static_cast<DWORD>(patience - held));
        }
        --waiters_;
    }
}

// Polls if there is no event, which happens when the process is out of handles.
void clsSendTurn::WaitForRelease(DWORD milliseconds) const {
    if (released_)
        WaitForSingleObject(released_.Get(), milliseconds);
    else
        Sleep(1);
}

void clsSendTurn::Leave() {
    const clsCriticalSectionScope scope(lock_);
    if (--depth_ > 0) return;
    owner_ = 0;
    isSending_ = false;
    if (waiters_ > 0 && released_) SetEvent(released_.Get());
}

// Not inlined: a caller has the C++ run-time's handler instead of this one.
[[gnu::noinline]] void clsSendTurn::RunAndLeave(void (*work)(void*), void* argument) {
    __try {
        work(argument);
    } __finally {
        Leave();
    }
}

} // namespace vxut
