// The file object: the library's one way to read and write files.
//
// A clsFile is open on a file handle, on an IStream of the caller's, on both, or on an element of a
// structured storage. Where a handle and a stream both exist, each operation serves the handle first. It is
// an IStream itself (AsStream()), so that code for streams works on files.
//
// A clsFile belongs to one thread at a time; Lock() is for callers that share one. Objects on the stack are
// opened and closed; objects on the heap (MakeCounted()) live until their last reference is released.
#pragma once

#include "base/critical_section.h"
#include "base/owners.h"
#include "base/unknown.h"
#include "files/file_lock.h"
#include "text/string.h"

#include <objbase.h>
#include <windows.h>

#include <cstdint>

namespace vxut {

enum FileAccess { kAccessRead = 0, kAccessWrite = 1, kAccessReadWrite = 2 };
enum FileDisposition {
    kDispositionOpenExisting = 0,
    kDispositionOpenAlways = 1,
    kDispositionCreateAlways = 2
};
enum FileShare { kShareNone = 0, kShareNoneToo = 1, kShareRead = 2, kShareReadWrite = 3 };

// Mode flags of an open.
constexpr uint32_t kFileModeWriteThrough = 0x01;
constexpr uint32_t kFileModeSequential = 0x02;
constexpr uint32_t kFileModeDeleteOnClose = 0x04;
constexpr uint32_t kFileModeRandom = 0x08;
constexpr uint32_t kFileModeNormal = 0x100;
constexpr uint32_t kFileModeHidden = 0x200;
constexpr uint32_t kFileModeReadOnly = 0x400;
constexpr uint32_t kFileModeTemporary = 0x800;
constexpr uint32_t kFileModeDefault = kFileModeSequential | kFileModeNormal;

// Why an open failed.
enum FileReason {
    kReasonNone = 0,
    kReasonPathNotFound = 1,
    kReasonSharing = 2,
    kReasonExists = 3,
    kReasonAccessDenied = 4,
    kReasonOther = 5,
    kReasonNameReserved = 6
};

enum UtfType { kUtfNone = 0, kUtf16LittleEndian = 1, kUtf16BigEndian = 2, kUtf8 = 3 };

// The system error of a failed call on a stream.
DWORD SystemErrorOf(HRESULT result) noexcept;

// A file handle that is closed at the end only if it is owned.
using clsFileHandle = clsAutoClose<scBorrowableTraits<scFileHandleTraits>>;

class clsFile : public clsIUnknownImpl, public IStream {
public:
    clsFile() = default;
    clsFile(const String& name, FileAccess access, FileDisposition disposition, FileShare share,
            uint32_t mode = kFileModeDefault);
    // Adds a reference to the stream.
    explicit clsFile(IStream* stream);
    // Closes the handle at the end if owned.
    explicit clsFile(HANDLE handle, bool owned = true);
    clsFile(const clsFile&) = delete;
    clsFile& operator=(const clsFile&) = delete;

    // IID_IUnknown returns the object itself, IID_IStream its stream interface.
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return clsIUnknownImpl::AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return clsIUnknownImpl::Release(); }
    // Unlocks what is still locked, then closes.
    ~clsFile() override;

    // Closes what is open, then opens the file. Returns 0, or -1 with Reason(), ErrorText() and the thread's
    // last error set.
    int Open(const String& name, FileAccess access, FileDisposition disposition, FileShare share,
             uint32_t mode = kFileModeDefault);
    // Opens the object on a stream, to which it adds a reference; a handle that is open stays open. Returns
    // 0, or -1 for a null stream.
    int OpenOnStream(IStream* stream);
    // Opens a stream element of a storage, to which the object adds a reference. Returns what Open() returns.
    int OpenInStorage(IStorage* storage, const String& name, FileAccess access, FileDisposition disposition,
                      uint32_t mode = kFileModeDefault);
    // Releases the range locks and closes. A file that was opened with kFileModeDeleteOnClose is deleted.
    void Close();
    bool IsOpen() const noexcept { return handle_ || storage_ || stream_; }

    int64_t GetSize();     // -1 on failure
    int64_t GetPosition(); // -1 on failure
    // Both return the new position, 0 if the system call fails, -1 if nothing is open.
    int64_t SetPosition(int64_t position);
    int64_t MovePosition(int64_t offset);

    // Returns the number of bytes read: fewer than asked at the end of the file or after a failure.
    int64_t Read(void* buffer, int64_t bytes);
    // Writes at a position, -1 being the current one. Returns the number of bytes written; a short write is
    // reported on the debug channel.
    int64_t Write(const void* buffer, int64_t bytes, int64_t position = -1);
    // Writes UTF-16 units without a byte order mark; length -1 is the whole text. Returns the number of units
    // written, -1 if nothing is open.
    int64_t WriteText(const wchar_t* text, int64_t length = -1);
    // Ends the file at the current position. Returns whether it does now.
    bool SetEOF();
    // Makes space for bytes after the current position, which stays. Returns false if a file on a handle
    // cannot grow, or if the position could not be restored; a stream that refuses to be sized is no failure,
    // as it may take the bytes all the same.
    bool Extend(int64_t bytes);
    // Copies another file, from its position to its end, to the current position and ends this file there.
    // Returns false after a failure or a short read or write; this file then ends after what was copied.
    bool CopyFrom(clsFile& other);

    // Locks a range against others, trying for 10 s while others hold it. Returns the token for
    // UnlockRange(), or null with the thread's last error set. A stream that knows no locks counts as locked.
    clsFileLock* LockRange(int64_t offset, int64_t length);
    // Releases a range. Null does nothing; a token that is not, or no longer, one of this file is reported.
    void UnlockRange(clsFileLock* token);

    // Recognises the encoding of a text file by its byte order mark or its content. At position 0 the
    // position is moved past the mark if there is one. At any other position the content alone decides.
    // Apart from the mark the position stays. Whether reading failed is in Failure().
    UtfType GetUTFType();

    // The system error of the first call that has failed on the open file since it was opened or since
    // ForgetFailure(); ERROR_SUCCESS if none has. Reads, writes, moves of the position, sizes and
    // GetUTFType() count, so that a sequence of them needs one test at its end.
    DWORD Failure() const noexcept { return failure_; }
    void ForgetFailure() noexcept { failure_ = ERROR_SUCCESS; }

    const String& Name() const noexcept { return name_; }
    // The name, or "(Stream)" for a file that has none.
    const wchar_t* DisplayName() const noexcept;
    FileReason Reason() const noexcept { return reason_; }
    const String& ErrorText() const noexcept { return errorText_; }
    HANDLE Handle() const noexcept { return handle_.Get().resource; }
    IStream* Stream() const noexcept { return stream_.Get(); } // the stream underneath; null if there is none
    clsCriticalSection& Lock() noexcept { return lock_; }      // for users who share the object
    // The stream interface. Adds no reference.
    IStream* AsStream() noexcept { return this; }

    // Closes what is open and takes over a handle that was opened under the name.
    void TakeHandle(clsAutoCloseFile handle, const String& name);

protected:
    // Opens a file with CreateFileW's arguments. Returns an invalid handle with the thread's last error set
    // if that fails.
    virtual clsAutoCloseFile OpenHandle(const String& name, DWORD access, DWORD share, DWORD disposition,
                                        DWORD attributes);

private:
    // IStream, reached through AsStream().
    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG bytes, ULONG* bytesRead) override;
    HRESULT STDMETHODCALLTYPE Write(const void* buffer, ULONG bytes, ULONG* bytesWritten) override;
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER offset, DWORD origin, ULARGE_INTEGER* newPosition) override;
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER size) override;
    HRESULT STDMETHODCALLTYPE CopyTo(IStream* target, ULARGE_INTEGER bytes, ULARGE_INTEGER* bytesRead,
                                     ULARGE_INTEGER* bytesWritten) override;
    HRESULT STDMETHODCALLTYPE Commit(DWORD flags) override;
    HRESULT STDMETHODCALLTYPE Revert() override;
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER bytes, DWORD type) override;
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER bytes, DWORD type) override;
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* target, DWORD flags) override;
    HRESULT STDMETHODCALLTYPE Clone(IStream** copy) override;

    void BeginOpen(const String& name, uint32_t mode);
    int FailOpen(FileReason reason, const String& text, DWORD error);
    DWORD TryOpen(DWORD access, DWORD share, DWORD disposition);
    HRESULT OpenElement(IStorage* storage, FileAccess access, FileDisposition disposition);
    // Moves the position as SetFilePointerEx does. False if nothing is open or the system refuses.
    bool MoveTo(int64_t distance, DWORD origin, int64_t& newPosition);
    int64_t MoveOrFail(int64_t distance, DWORD origin);
    // Remembers the first failure. Returns false.
    bool Note(DWORD error) noexcept;
    bool NoteResult(HRESULT result) noexcept;
    void ReportShortWrite(int64_t written, int64_t bytes, DWORD error) noexcept;
    HRESULT EndHere();
    bool CopyBytes(clsFile& other, int64_t size, void* block, int64_t blockSize);
    DWORD LockPatiently(int64_t offset, int64_t length);
    DWORD TryLock(int64_t offset, int64_t length);
    void Unlock(const clsFileLock& lock);
    void UnlockAll();
    UtfType ReadMark();
    UtfType JudgeContent();
    bool CopyTimes(STATSTG& target) const;

    String name_;
    uint32_t mode_ = 0;
    clsFileHandle handle_;
    clsAutoRelease<IStorage*> storage_;
    clsAutoRelease<IStream*> stream_;
    FileReason reason_ = kReasonNone;
    String errorText_;
    DWORD failure_ = ERROR_SUCCESS;
    clsCriticalSection lock_;
    clsFileLockList locks_;
};

// A file whose stream interface refuses writes.
class clsFileRO : public clsFile {
public:
    using clsFile::clsFile;
};

// A file whose stream interface permits writes.
class clsFileRW : public clsFile {
public:
    using clsFile::clsFile;
};

} // namespace vxut
