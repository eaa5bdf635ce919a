#include "files/overwrite.h"

#include <new>
#include "base/last_error.h"

namespace vxut {
namespace {

DWORD FailureOf(const clsFile& file, DWORD otherwise) {
    return file.Failure() != ERROR_SUCCESS ? file.Failure() : otherwise;
}

// What a file held before it was overwritten.
class OldContent {
public:
    // Returns the system's error if a file cannot be read, or if memory is short. A stream need not be
    // readable.
    DWORD Read(clsFile& file) {
        size_ = file.GetSize();
        if (size_ < 0) return Unreadable(file);
        bytes_.reset(new (std::nothrow) BYTE[static_cast<size_t>(size_)]);
        if (!bytes_) return ERROR_NOT_ENOUGH_MEMORY;
        file.SetPosition(0);
        const bool isRead = file.Failure() == ERROR_SUCCESS && file.Read(bytes_.get(), size_) == size_;
        return isRead ? ERROR_SUCCESS : Unreadable(file);
    }

    int64_t Size() const noexcept { return size_; } // -1: unknown

    // Puts the content back after something was written. What is not known ends where the writing stopped.
    void Restore(clsFile& file) const {
        if (!bytes_) {
            file.SetEOF();
        } else {
            file.Write(bytes_.get(), size_, 0);
            Cut(file);
        }
        if (file.Handle() != INVALID_HANDLE_VALUE) FlushFileBuffers(file.Handle());
    }

    // Takes back what the file has grown.
    void Cut(clsFile& file) const {
        if (size_ >= 0 && file.SetPosition(size_) == size_) file.SetEOF();
    }

private:
    DWORD Unreadable(clsFile& file) {
        bytes_.reset();
        return file.Stream() ? ERROR_SUCCESS : FailureOf(file, ERROR_READ_FAULT);
    }

    clsAutoDeleteBytes<BYTE> bytes_;
    int64_t size_ = -1;
};

// A stream may refuse to be sized. It has ended in the right place all the same if its size says so; if that
// is not known, then if it was not longer before.
bool EndContent(clsFile& target, int64_t size, int64_t oldSize) {
    if (target.SetEOF()) return true;
    if (!target.Stream()) return false;
    const int64_t actual = target.GetSize();
    return actual < 0 ? oldSize <= size : actual == size;
}

DWORD Flush(const clsFile& target) {
    const bool isFlushed = target.Handle() == INVALID_HANDLE_VALUE || FlushFileBuffers(target.Handle());
    return isFlushed ? ERROR_SUCCESS : ErrorOfFailedCall();
}

} // namespace

DWORD OverwriteContent(clsFile& target, const void* bytes, int64_t size) {
    target.ForgetFailure();
    OldContent old;
    const DWORD unread = old.Read(target);
    if (unread != ERROR_SUCCESS) return unread;

    target.ForgetFailure();
    target.SetPosition(0);
    if (target.Failure() != ERROR_SUCCESS) return target.Failure();
    if (size > old.Size() && !target.Extend(size)) {
        old.Cut(target);
        return FailureOf(target, ERROR_DISK_FULL);
    }
    const bool isWritten = target.Write(bytes, size) == size && EndContent(target, size, old.Size());
    const DWORD error = isWritten ? Flush(target) : FailureOf(target, ERROR_WRITE_FAULT);
    if (error != ERROR_SUCCESS) old.Restore(target);
    return error;
}

} // namespace vxut
