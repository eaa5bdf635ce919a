// The range locks of a file.
#include "files/file.h"

#include "base/debug.h"

namespace vxut {
namespace {

constexpr int kLockAttempts = 3;
constexpr uint64_t kLockPatience = 10000; // milliseconds

ULARGE_INTEGER Unsigned(int64_t value) {
    ULARGE_INTEGER result;
    result.QuadPart = static_cast<uint64_t>(value);
    return result;
}

} // namespace

clsFileLock* clsFile::LockRange(int64_t offset, int64_t length) {
    if (!IsOpen()) return nullptr;
    auto record = std::make_unique<clsFileLock>();
    record->offset = offset;
    record->length = length;
    clsBackOff backOff;
    for (int attempt = 1;; ++attempt) {
        if (TryLock(offset, length)) return locks_.Append(std::move(record));
        if (attempt >= kLockAttempts && backOff.Elapsed() >= kLockPatience) return nullptr;
        backOff.Wait();
    }
}

bool clsFile::TryLock(int64_t offset, int64_t length) {
    const ULARGE_INTEGER from = Unsigned(offset);
    const ULARGE_INTEGER bytes = Unsigned(length);
    if (handle_ && !LockFile(handle_.Get(), from.LowPart, from.HighPart, bytes.LowPart, bytes.HighPart))
        return false;
    if (!stream_) return true;
    const HRESULT result = stream_->LockRegion(from, bytes, LOCK_EXCLUSIVE);
    const bool knowsNoLocks = result == STG_E_INVALIDFUNCTION || result == E_NOTIMPL;
    if (SUCCEEDED(result) || knowsNoLocks) return true;
    if (handle_) UnlockFile(handle_.Get(), from.LowPart, from.HighPart, bytes.LowPart, bytes.HighPart);
    return false;
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
    if (handle_) UnlockFile(handle_.Get(), from.LowPart, from.HighPart, bytes.LowPart, bytes.HighPart);
    if (stream_) stream_->UnlockRegion(from, bytes, LOCK_EXCLUSIVE);
}

void clsFile::UnlockAll() {
    while (clsFileLock* const lock = locks_.First()) {
        Unlock(*lock);
        locks_.Remove(lock);
    }
}

} // namespace vxut
