// Keyboard and mouse of a thread and of the one that started it.
#include "base/debug.h"
#include "threads/thread.h"

namespace vxut {

bool clsThreadBase::ThreadAttachInput(bool attach) {
    const DWORD threadId = threadId_;
    const DWORD other = startingThreadId_;
    if (threadId == 0 || other == 0 || threadId == other) return false;
    if (threadId == GetCurrentThreadId()) GetQueueStatus(QS_ALLINPUT); // the system attaches message queues
    if (AttachThreadInput(threadId, other, attach)) return true;
    DebugWrite(L"clsThreadBase(%hs)::ThreadAttachInput(): %08x", Name(), GetLastError());
    return false;
}

} // namespace vxut
