// The range locks of a file.
#include "files/file.h"

#include "base/debug.h"
#include "base/last_error.h"
#include "base/patience.h"

namespace vxut {
namespace {

constexpr int kLockAttempts = 3;
constexpr uint64_t kLockPatience = 10000; // milliseconds

ULARGE_INTEGER Unsigned(int64_t value) {
    ULARGE_INTEGER result;
    result.QuadPart = static_cast<uint64_t>(value);
    return result;
}

// Whether the range is held by somebody who may free it. Waiting cures nothing else, such as a device that
// knows no locks.
bool IsConflict(DWORD error) { return error == ERROR_LOCK_VIOLATION || error == ERROR_SHARING_VIOLATION; }

} // namespace

clsFileLock* clsFile::LockRange(int64_t offset, int64_t length) {
    if (!IsOpen()) return nullptr;
    auto record = std::make_unique<clsFileLock>();
    record->offset = offset;
    record->length = length;
    const DWORD error = LockPatiently(offset, length);
    if (error == ERROR_SUCCESS) return locks_.Append(std::move(record));
    SetLastError(error);
    return nullptr;
}

DWORD clsFile::LockPatiently(int64_t offset, int64_t length) {
    clsBackOff backOff;
    DWORD error = ERROR_SUCCESS;
    int attempts = 0;
    const auto attempt = [&] {
        error = TryLock(offset, length);
        return error == ERROR_SUCCESS || (++attempts >= kLockAttempts && !IsConflict(error));
    };
    TryPatiently(kLockPatience, attempt, [&] { backOff.Wait(); }, kLockAttempts);
    return error;
}

// Returns the system's error, ERROR_SUCCESS when the range is locked.
DWORD clsFile::TryLock(int64_t offset, int64_t length) {
    const ULARGE_INTEGER from = Unsigned(offset);
    const ULARGE_INTEGER bytes = Unsigned(length);
    if (handle_ && !LockFile(Handle(), from.LowPart, from.HighPart, bytes.LowPart, bytes.HighPart))
        return ErrorOfFailedCall();
    if (!stream_) return ERROR_SUCCESS;
    const HRESULT result = stream_->LockRegion(from, bytes, LOCK_EXCLUSIVE);
    const bool knowsNoLocks = result == STG_E_INVALIDFUNCTION || result == E_NOTIMPL;
    if (SUCCEEDED(result) || knowsNoLocks) return ERROR_SUCCESS;
    if (handle_) UnlockFile(Handle(), from.LowPart, from.HighPart, bytes.LowPart, bytes.HighPart);
    return SystemErrorOf(result);
}

void clsFile::UnlockRange(clsFileLock* token) {
    if (!token) return;
    if (!locks_.Contains(token)) {
        DebugWrite(L"\nFile '%s': %s\n", DisplayName(),
                   L"tried to unlock a lock that has already been removed (or has never existed)");
        return;
    }
    Unlock(*token);
    locks_.Remove(token);
}

void clsFile::Unlock(const clsFileLock& lock) {
    const ULARGE_INTEGER from = Unsigned(lock.offset);
    const ULARGE_INTEGER bytes = Unsigned(lock.length);
    if (handle_) UnlockFile(Handle(), from.LowPart, from.HighPart, bytes.LowPart, bytes.HighPart);
    if (stream_) stream_->UnlockRegion(from, bytes, LOCK_EXCLUSIVE);
}

void clsFile::UnlockAll() {
    while (clsFileLock* const lock = locks_.First()) {
        Unlock(*lock);
        locks_.Remove(lock);
    }
}

} // namespace vxut
