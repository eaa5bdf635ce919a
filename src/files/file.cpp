#include "files/file.h"

#include "base/debug.h"
#include "base/last_error.h"

#include <algorithm>
#include <cwchar>
#include <new>

namespace vxut {
namespace {

// The most that one system call transfers.
constexpr int64_t kMaxPiece = 0x10000000;

// Transfers bytes in pieces until one is short. step(done, piece) returns how much it has transferred; a
// stream that claims more than it was asked for is not believed.
template <class Step>
int64_t InPieces(int64_t bytes, Step step) {
    int64_t done = 0;
    while (done < bytes) {
        const auto piece = static_cast<ULONG>(std::min(bytes - done, kMaxPiece));
        const ULONG moved = std::min<ULONG>(step(done, piece), piece);
        done += moved;
        if (moved < piece) break;
    }
    return done;
}

// How many bytes were transferred, and the error that ended the transfer early.
struct Transfer {
    int64_t bytes = 0;
    DWORD error = ERROR_SUCCESS;
};

Transfer ReadHandle(HANDLE handle, void* buffer, int64_t bytes) {
    Transfer moved;
    moved.bytes = InPieces(bytes, [&](int64_t done, ULONG piece) {
        DWORD count = 0;
        const BOOL read = ReadFile(handle, static_cast<BYTE*>(buffer) + done, piece, &count, nullptr);
        if (!read) moved.error = ErrorOfFailedCall();
        return count;
    });
    return moved;
}

Transfer WriteHandle(HANDLE handle, const void* buffer, int64_t bytes) {
    Transfer moved;
    moved.bytes = InPieces(bytes, [&](int64_t done, ULONG piece) {
        DWORD count = 0;
        const BOOL written =
            WriteFile(handle, static_cast<const BYTE*>(buffer) + done, piece, &count, nullptr);
        if (!written) moved.error = ErrorOfFailedCall();
        return count;
    });
    return moved;
}

// How much a call on a stream has transferred: nothing if it failed, whatever count it returned.
ULONG StreamCount(HRESULT result, ULONG count, Transfer& moved) {
    if (SUCCEEDED(result)) return count;
    moved.error = SystemErrorOf(result);
    return 0;
}

Transfer ReadStream(IStream& stream, void* buffer, int64_t bytes) {
    Transfer moved;
    moved.bytes = InPieces(bytes, [&](int64_t done, ULONG piece) {
        ULONG count = 0;
        const HRESULT result = stream.Read(static_cast<BYTE*>(buffer) + done, piece, &count);
        return StreamCount(result, count, moved);
    });
    return moved;
}

Transfer WriteStream(IStream& stream, const void* buffer, int64_t bytes) {
    Transfer moved;
    moved.bytes = InPieces(bytes, [&](int64_t done, ULONG piece) {
        ULONG count = 0;
        const HRESULT result = stream.Write(static_cast<const BYTE*>(buffer) + done, piece, &count);
        return StreamCount(result, count, moved);
    });
    return moved;
}

} // namespace

// The low words of storage errors are system errors; a code of another facility stays as it is.
DWORD SystemErrorOf(HRESULT result) noexcept {
    const int facility = HRESULT_FACILITY(result);
    const bool isSystemError = facility == FACILITY_WIN32 || facility == FACILITY_STORAGE;
    return static_cast<DWORD>(isSystemError ? HRESULT_CODE(result) : result);
}

clsFile::clsFile(const String& name, FileAccess access, FileDisposition disposition, FileShare share,
                 uint32_t mode) {
    clsFile::Open(name, access, disposition, share, mode);
}

clsFile::clsFile(IStream* stream) { clsFile::OpenOnStream(stream); }

clsFile::clsFile(HANDLE handle, bool owned) : handle_({handle, owned}) {}

clsFile::~clsFile() {
    if (IsOpen() && locks_.First()) {
        DebugWrite(L"portions of the file '%s' are still locked. they will be unlocked automatically...",
                   DisplayName());
    }
    clsFile::Close();
}

HRESULT clsFile::QueryInterface(REFIID id, void** object) {
    if (!object) return E_POINTER;
    if (!IsEqualIID(id, IID_IStream)) return clsIUnknownImpl::QueryInterface(id, object);
    *object = static_cast<IStream*>(this);
    AddRef();
    return S_OK;
}

void clsFile::Close() {
    UnlockAll();
    const bool remove = (mode_ & kFileModeDeleteOnClose) != 0 && !name_.IsEmpty();
    if (handle_) {
        handle_.Reset();
        if (remove) DeleteFileW(name_.Text());
    }
    stream_.Reset();
    if (storage_ && remove) storage_->DestroyElement(name_.Text());
    storage_.Reset();
}

const wchar_t* clsFile::DisplayName() const noexcept { return name_.IsEmpty() ? L"(Stream)" : name_.Text(); }

int64_t clsFile::GetSize() {
    if (handle_) {
        LARGE_INTEGER size;
        return GetFileSizeEx(Handle(), &size) || Note(ErrorOfFailedCall()) ? size.QuadPart : -1;
    }
    STATSTG stat{};
    const HRESULT result = stream_ ? stream_->Stat(&stat, STATFLAG_NONAME) : E_HANDLE;
    if (FAILED(result)) return NoteResult(result), -1;
    if (stat.cbSize.QuadPart > INT64_MAX) return Note(ERROR_INVALID_DATA), -1;
    return static_cast<int64_t>(stat.cbSize.QuadPart);
}

int64_t clsFile::GetPosition() {
    int64_t position = -1;
    return MoveTo(0, FILE_CURRENT, position) ? position : -1;
}

int64_t clsFile::SetPosition(int64_t position) { return MoveOrFail(position, FILE_BEGIN); }

int64_t clsFile::MovePosition(int64_t offset) { return MoveOrFail(offset, FILE_CURRENT); }

int64_t clsFile::MoveOrFail(int64_t distance, DWORD origin) {
    if (!IsOpen()) return -1;
    int64_t position = 0;
    return MoveTo(distance, origin, position) ? position : 0;
}

bool clsFile::MoveTo(int64_t distance, DWORD origin, int64_t& newPosition) {
    LARGE_INTEGER by;
    by.QuadPart = distance;
    LARGE_INTEGER reached{};
    if (handle_) {
        if (!SetFilePointerEx(Handle(), by, &reached, origin)) return Note(ErrorOfFailedCall());
        newPosition = reached.QuadPart;
        return true;
    }
    ULARGE_INTEGER streamReached{};
    const HRESULT result = stream_ ? stream_->Seek(by, origin, &streamReached) : E_HANDLE;
    if (FAILED(result)) return NoteResult(result);
    newPosition = static_cast<int64_t>(streamReached.QuadPart);
    return newPosition >= 0 || Note(ERROR_SEEK);
}

int64_t clsFile::Read(void* buffer, int64_t bytes) {
    Transfer moved;
    if (handle_) moved = ReadHandle(Handle(), buffer, bytes);
    if (stream_) {
        const Transfer streamed = ReadStream(*stream_.Get(), buffer, bytes);
        if (moved.error == ERROR_SUCCESS) moved.error = streamed.error;
        if (streamed.error == ERROR_SUCCESS || streamed.bytes > 0) moved.bytes = streamed.bytes;
    }
    if (moved.error != ERROR_SUCCESS) Note(moved.error);
    return moved.bytes;
}

int64_t clsFile::Write(const void* buffer, int64_t bytes, int64_t position) {
    if (!IsOpen()) return 0;
    int64_t reached = 0;
    if (position != -1 && !MoveTo(position, FILE_BEGIN, reached)) {
        ReportShortWrite(0, bytes, ErrorOfFailedCall());
        return 0;
    }
    Transfer moved;
    if (handle_) moved = WriteHandle(Handle(), buffer, bytes);
    const bool handleFell = handle_ && moved.bytes < bytes;
    if (stream_ && !handleFell) moved = WriteStream(*stream_.Get(), buffer, bytes);
    if (moved.bytes < bytes) {
        const DWORD shortWrite = stream_ ? ERROR_WRITE_FAULT : ERROR_DISK_FULL;
        Note(moved.error == ERROR_SUCCESS ? shortWrite : moved.error);
        ReportShortWrite(moved.bytes, bytes, moved.error);
    }
    return moved.bytes;
}

bool clsFile::Note(DWORD error) noexcept {
    if (failure_ == ERROR_SUCCESS) failure_ = error;
    return false;
}

bool clsFile::NoteResult(HRESULT result) noexcept { return Note(SystemErrorOf(result)); }

// Without memory for the error's text the line is dropped: a caller may be about to undo what it wrote.
void clsFile::ReportShortWrite(int64_t written, int64_t bytes, DWORD error) noexcept {
    try {
        DebugWrite(L"clsFile(%s)::Write(): write failure... %I64d/%I64d (%s)", DisplayName(), written, bytes,
                   String::FromError(error).Text());
    } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch)
    }
}

int64_t clsFile::WriteText(const wchar_t* text, int64_t length) {
    if (!IsOpen()) return -1;
    const int64_t units = length == -1 ? static_cast<int64_t>(std::wcslen(text)) : length;
    const auto unitSize = static_cast<int64_t>(sizeof(wchar_t));
    return Write(text, units * unitSize) / unitSize;
}

} // namespace vxut
