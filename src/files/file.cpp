#include "files/file.h"

#include "base/debug.h"

#include <algorithm>

namespace vxut {
namespace {

// What one call of the system moves at most.
constexpr int64_t kMaxPiece = 0x10000000;

// Moves bytes in pieces until one comes short. step(done, piece) gives what it moved; more than it was asked
// for is not believed.
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

// How far a transfer came, and the error that ended it early.
struct Transfer {
    int64_t bytes = 0;
    DWORD error = ERROR_SUCCESS;
};

Transfer ReadHandle(HANDLE handle, void* buffer, int64_t bytes) {
    Transfer moved;
    moved.bytes = InPieces(bytes, [&](int64_t done, ULONG piece) {
        DWORD count = 0;
        const BOOL read = ReadFile(handle, static_cast<BYTE*>(buffer) + done, piece, &count, nullptr);
        if (!read) moved.error = GetLastError();
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
        if (!written) moved.error = GetLastError();
        return count;
    });
    return moved;
}

// What a call on a stream has moved: nothing if it failed, whatever count it handed back.
ULONG StreamCount(HRESULT result, ULONG count, Transfer& moved) {
    if (SUCCEEDED(result)) return count;
    moved.error = static_cast<DWORD>(result);
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

clsFileHandle& clsFileHandle::operator=(clsFileHandle&& other) noexcept {
    Reset();
    handle_ = std::move(other.handle_);
    owned_ = other.owned_;
    return *this;
}

void clsFileHandle::Reset() noexcept {
    if (!owned_) (void)handle_.Detach();
    handle_.Reset();
    owned_ = true;
}

clsFile::clsFile(const String& name, FileAccess access, FileDisposition disposition, FileShare share,
                 uint32_t mode) {
    clsFile::Open(name, access, disposition, share, mode);
}

clsFile::clsFile(IStream* stream) { clsFile::OpenOnStream(stream); }

clsFile::clsFile(HANDLE handle, bool owned) : handle_(handle, owned) {}

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
        return GetFileSizeEx(handle_.Get(), &size) ? size.QuadPart : -1;
    }
    STATSTG stat{};
    if (!stream_ || FAILED(stream_->Stat(&stat, STATFLAG_NONAME))) return -1;
    return stat.cbSize.QuadPart <= INT64_MAX ? static_cast<int64_t>(stat.cbSize.QuadPart) : -1;
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
        if (!SetFilePointerEx(handle_.Get(), by, &reached, origin)) return false;
        newPosition = reached.QuadPart;
        return true;
    }
    ULARGE_INTEGER streamReached{};
    if (!stream_ || FAILED(stream_->Seek(by, origin, &streamReached))) return false;
    newPosition = static_cast<int64_t>(streamReached.QuadPart);
    return newPosition >= 0;
}

int64_t clsFile::Read(void* buffer, int64_t bytes) {
    Transfer moved;
    if (handle_) moved = ReadHandle(handle_.Get(), buffer, bytes);
    if (stream_) {
        const Transfer streamed = ReadStream(*stream_.Get(), buffer, bytes);
        if (streamed.error == ERROR_SUCCESS || streamed.bytes > 0) moved = streamed;
    }
    return moved.bytes;
}

int64_t clsFile::Write(const void* buffer, int64_t bytes, int64_t position) {
    if (!IsOpen()) return 0;
    int64_t reached = 0;
    if (position != -1 && !MoveTo(position, FILE_BEGIN, reached)) {
        ReportShortWrite(0, bytes, GetLastError());
        return 0;
    }
    Transfer moved;
    if (handle_) moved = WriteHandle(handle_.Get(), buffer, bytes);
    const bool handleFell = handle_ && moved.bytes < bytes;
    if (stream_ && !handleFell) moved = WriteStream(*stream_.Get(), buffer, bytes);
    if (moved.bytes < bytes) ReportShortWrite(moved.bytes, bytes, moved.error);
    return moved.bytes;
}

void clsFile::ReportShortWrite(int64_t written, int64_t bytes, DWORD error) {
    DebugWrite(L"clsFile(%s)::Write(): write failure... %I64d/%I64d (%s)", DisplayName(), written, bytes,
               String::FromError(error).Text());
}

int64_t clsFile::WriteText(const wchar_t* text, int64_t length) {
    if (!IsOpen()) return -1;
    const int64_t units = length == -1 ? static_cast<int64_t>(wcslen(text)) : length;
    const auto unitSize = static_cast<int64_t>(sizeof(wchar_t));
    return Write(text, units * unitSize) / unitSize;
}

} // namespace vxut
