#include "files/file.h"

#include <algorithm>

#include "diagnostics/debug.h"

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
                   DisplayName().Text());
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

String clsFile::DisplayName() const { return name_.IsEmpty() ? String(L"(Stream)") : name_; }

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
    auto* const target = static_cast<BYTE*>(buffer);
    int64_t result = 0;
    if (handle_) {
        result = InPieces(bytes, [&](int64_t done, ULONG piece) {
            DWORD count = 0;
            return ReadFile(handle_.Get(), target + done, piece, &count, nullptr) ? count : 0;
        });
    }
    if (stream_) {
        bool succeeded = true;
        const int64_t streamed = InPieces(bytes, [&](int64_t done, ULONG piece) {
            ULONG count = 0;
            succeeded = SUCCEEDED(stream_->Read(target + done, piece, &count));
            return succeeded ? count : 0;
        });
        if (succeeded || streamed > 0) result = streamed;
    }
    return result;
}

int64_t clsFile::Write(const void* buffer, int64_t bytes, int64_t position) {
    int64_t reached = 0;
    if (position != -1 && !MoveTo(position, FILE_BEGIN, reached)) {
        if (IsOpen()) ReportShortWrite(0, bytes, GetLastError());
        return 0;
    }
    const auto* const source = static_cast<const BYTE*>(buffer);
    int64_t written = 0;
    if (handle_) {
        DWORD error = ERROR_SUCCESS;
        written = InPieces(bytes, [&](int64_t done, ULONG piece) {
            DWORD count = 0;
            if (!WriteFile(handle_.Get(), source + done, piece, &count, nullptr)) error = GetLastError();
            return count;
        });
        if (written < bytes) {
            ReportShortWrite(written, bytes, error);
            return written;
        }
    }
    if (stream_) {
        HRESULT result = S_OK;
        written = InPieces(bytes, [&](int64_t done, ULONG piece) {
            ULONG count = 0;
            result = stream_->Write(source + done, piece, &count);
            return SUCCEEDED(result) ? count : 0;
        });
        if (written < bytes) ReportShortWrite(written, bytes, static_cast<DWORD>(result));
    }
    return written;
}

void clsFile::ReportShortWrite(int64_t written, int64_t bytes, DWORD error) {
    DebugWrite(L"clsFile(%s)::Write(): write failure... %I64d/%I64d (%s)", DisplayName().Text(), written,
               bytes, String::FromError(error).Text());
}

int64_t clsFile::WriteText(const wchar_t* text, int64_t length) {
    if (!IsOpen()) return -1;
    const int64_t units = length == -1 ? static_cast<int64_t>(wcslen(text)) : length;
    const auto unitSize = static_cast<int64_t>(sizeof(wchar_t));
    return Write(text, units * unitSize) / unitSize;
}

} // namespace vxut
