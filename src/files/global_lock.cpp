#include "files/global_lock.h"

#include "base/debug.h"
#include "text/string.h"

#include <new>
#include <utility>

namespace vxut {

clsGlobalLock::clsGlobalLock(HGLOBAL memory, bool freeAtEnd, bool reportFailures)
    : memory_(memory), freeAtEnd_(freeAtEnd), reportFailures_(reportFailures) {
    Lock();
}

clsGlobalLock::~clsGlobalLock() {
    Unlock();
    if (freeAtEnd_) Free();
}

// All three texts name the same method: tools that read the trace search for them.
void* clsGlobalLock::Lock() {
    if (!memory_ || pointer_) return pointer_;
    pointer_ = GlobalLock(memory_);
    if (!pointer_) Report(L"clsGlobalLock::Lock(): Failed to lock handle (%s)");
    return pointer_;
}

void clsGlobalLock::Unlock() {
    if (!std::exchange(pointer_, nullptr)) return;
    SetLastError(NO_ERROR);
    const bool isUnlocked = !GlobalUnlock(memory_);
    // Fixed memory, as the clipboard may return it, counts no locks and is never said to be unlocked.
    const bool hasFailed =
        isUnlocked ? GetLastError() != NO_ERROR : (GlobalFlags(memory_) & GMEM_LOCKCOUNT) != 0;
    if (hasFailed) {
        Report(L"clsGlobalLock::Lock(): Failed to unlock handle, or it's still locked by someone else (%s)");
    }
}

void clsGlobalLock::Free() {
    if (memory_ && GlobalFree(memory_)) Report(L"clsGlobalLock::Lock(): Failed to free handle (%s)");
    memory_ = nullptr;
}

HGLOBAL clsGlobalLock::Detach() {
    Unlock();
    return std::exchange(memory_, nullptr);
}

// Without memory for the error's text the line is dropped: destructors report too.
void clsGlobalLock::Report(const wchar_t* format) const noexcept {
    if (!reportFailures_) return;
    try {
        DebugWrite(format, String::FromError(GetLastError()).Text());
    } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch)
    }
}

} // namespace vxut
