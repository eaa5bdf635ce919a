#include "files/file.h"

#include <algorithm>
#include <iterator>

#include "diagnostics/debug.h"
#include "files/path.h"
#include "frame/validate.h"

namespace vxut {
namespace {

constexpr int kOpenAttempts = 3;
constexpr DWORD kUserDefaultLanguage = 1024;
// What one call of the system moves at most.
constexpr int64_t kMaxPiece = 0x10000000;

struct ModeAttribute {
    uint32_t mode;
    DWORD attribute;
};
constexpr ModeAttribute kModeAttributes[] = {
    {kFileModeWriteThrough, FILE_FLAG_WRITE_THROUGH},
    {kFileModeSequential, FILE_FLAG_SEQUENTIAL_SCAN},
    {kFileModeDeleteOnClose, FILE_FLAG_DELETE_ON_CLOSE},
    {kFileModeRandom, FILE_FLAG_RANDOM_ACCESS},
    {kFileModeNormal, FILE_ATTRIBUTE_NORMAL},
    {kFileModeHidden, FILE_ATTRIBUTE_HIDDEN},
    {kFileModeReadOnly, FILE_ATTRIBUTE_READONLY},
    {kFileModeTemporary, FILE_ATTRIBUTE_TEMPORARY},
};

struct ErrorReason {
    DWORD error;
    FileReason reason;
};
constexpr ErrorReason kErrorReasons[] = {
    {ERROR_PATH_NOT_FOUND, kReasonPathNotFound}, {ERROR_INVALID_DRIVE, kReasonPathNotFound},
    {ERROR_BAD_NETPATH, kReasonPathNotFound},    {ERROR_DEV_NOT_EXIST, kReasonPathNotFound},
    {ERROR_SHARING_VIOLATION, kReasonSharing},   {ERROR_LOCK_VIOLATION, kReasonSharing},
    {ERROR_ALREADY_EXISTS, kReasonExists},       {ERROR_ACCESS_DENIED, kReasonAccessDenied},
    {ERROR_WRITE_PROTECT, kReasonAccessDenied},
};

// Indexed by the arguments of an open.
constexpr DWORD kAccesses[] = {GENERIC_READ, GENERIC_WRITE, GENERIC_READ | GENERIC_WRITE};
constexpr DWORD kElementAccesses[] = {STGM_READ, STGM_WRITE, STGM_READWRITE};
constexpr DWORD kDispositions[] = {OPEN_EXISTING, OPEN_ALWAYS, CREATE_ALWAYS};
constexpr DWORD kShares[] = {0, 0, FILE_SHARE_READ, FILE_SHARE_READ | FILE_SHARE_WRITE};

DWORD AttributesOfMode(uint32_t mode) {
    DWORD attributes = 0;
    for (const ModeAttribute& row : kModeAttributes)
        if (mode & row.mode) attributes |= row.attribute;
    return attributes;
}

FileReason ReasonOfError(DWORD error) {
    const auto* row =
        std::find_if(std::begin(kErrorReasons), std::end(kErrorReasons),
                     [error](const ErrorReason& candidate) { return candidate.error == error; });
    return row == std::end(kErrorReasons) ? kReasonOther : row->reason;
}

void WarnOfReadOnlyCreation(FileAccess access, FileDisposition disposition) {
    if (disposition != kDispositionOpenExisting && access == kAccessRead) {
        DebugWrite(L"creating a file without write access does not make much sense");
    }
}

// Keeps the system's message boxes about files away for a scope.
class clsQuietOpen {
public:
    clsQuietOpen() : old_(SetErrorMode(SEM_NOOPENFILEERRORBOX)) {
        SetErrorMode(old_ | SEM_NOOPENFILEERRORBOX);
    }
    clsQuietOpen(const clsQuietOpen&) = delete;
    clsQuietOpen& operator=(const clsQuietOpen&) = delete;
    ~clsQuietOpen() {
        const DWORD error = GetLastError();
        SetErrorMode(old_);
        SetLastError(error);
    }

private:
    const UINT old_;
};

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

clsFile::clsFile(HANDLE handle, bool owned) : handle_(handle, owned), opened_(static_cast<bool>(handle_)) {}

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

int clsFile::Open(const String& name, FileAccess access, FileDisposition disposition, FileShare share,
                  uint32_t mode) {
    Close();
    name_ = name;
    mode_ = mode;
    WarnOfReadOnlyCreation(access, disposition);
    if (!IsFileNameAllowed(FilePart(name_))) {
        return FailOpen(kReasonNameReserved, L"file name is reserved by Windows", ERROR_INVALID_NAME);
    }
    const DWORD error = TryOpen(name_, kAccesses[access], kShares[share], kDispositions[disposition]);
    return handle_ ? 0
                   : FailOpen(ReasonOfError(error), String::FromError(error, kUserDefaultLanguage), error);
}

// Gives the last attempt's error.
DWORD clsFile::TryOpen(const String& name, DWORD access, DWORD share, DWORD disposition) {
    const DWORD attributes = AttributesOfMode(mode_);
    for (int attempt = 1;; ++attempt) {
        SetLastError(ERROR_SUCCESS);
        handle_ = clsFileHandle(OpenHandle(name, access, share, disposition, attributes));
        const DWORD error = GetLastError();
        opened_ = static_cast<bool>(handle_);
        if (opened_ || attempt == kOpenAttempts) return error;
        if ((attributes & FILE_ATTRIBUTE_TEMPORARY) && ReasonOfError(error) == kReasonSharing) Sleep(10);
    }
}

int clsFile::FailOpen(FileReason reason, const String& text, DWORD error) {
    reason_ = reason;
    errorText_ = text;
    if (IsDeveloperLogin() && !text.IsEmpty() && !name_.IsEmpty()) {
        DebugWrite(L"clsFile::Open('%s') failed: '%s'", DisplayName().Text(), text.Text());
    }
    SetLastError(error);
    return -1;
}

clsAutoCloseFile clsFile::OpenHandle(const String& name, DWORD access, DWORD share, DWORD disposition,
                                     DWORD attributes) {
    const clsQuietOpen quiet;
    name_ = name;
    if (!name_.IsEmpty() && !IsFileNameAllowed(FilePart(name_))) {
        SetLastError(ERROR_INVALID_NAME);
        return {};
    }
    return clsAutoCloseFile(
        CreateFileW(name_.Text(), access, share, nullptr, disposition, attributes, nullptr));
}

void clsFile::TakeHandle(clsAutoCloseFile handle, const String& name) {
    Close();
    name_ = name;
    mode_ = kFileModeDefault;
    handle_ = clsFileHandle(std::move(handle));
    opened_ = static_cast<bool>(handle_);
}

int clsFile::OpenOnStream(IStream* stream) {
    const auto shared =
        clsAutoRelease<IStream*>::Share(stream); // before Close(), which may hold the last reference
    Close();
    name_.Empty();
    mode_ = 0;
    stream_ = shared;
    opened_ = static_cast<bool>(stream_);
    return opened_ ? 0 : -1;
}

int clsFile::OpenInStorage(IStorage* storage, const String& name, FileAccess access,
                           FileDisposition disposition, uint32_t mode) {
    const auto shared = clsAutoRelease<IStorage*>::Share(storage);
    Close();
    name_ = name;
    mode_ = mode;
    WarnOfReadOnlyCreation(access, disposition);
    const HRESULT result = storage ? OpenElement(storage, access, disposition) : STG_E_INVALIDPOINTER;
    if (SUCCEEDED(result)) {
        storage_ = shared;
        opened_ = true;
        return 0;
    }
    // The low words of storage errors are system errors.
    const auto error = static_cast<DWORD>(HRESULT_CODE(result));
    return FailOpen(ReasonOfError(error), String::FromError(static_cast<DWORD>(result), kUserDefaultLanguage),
                    error);
}

HRESULT clsFile::OpenElement(IStorage* storage, FileAccess access, FileDisposition disposition) {
    const DWORD mode = kElementAccesses[access] | STGM_SHARE_EXCLUSIVE; // the only share mode of elements
    HRESULT result = STG_E_FILENOTFOUND;
    if (disposition != kDispositionCreateAlways) {
        result = storage->OpenStream(name_.Text(), nullptr, mode, 0, stream_.Receive());
    }
    if (result == STG_E_FILENOTFOUND && disposition != kDispositionOpenExisting) {
        result = storage->CreateStream(name_.Text(), mode | STGM_CREATE, 0, 0, stream_.Receive());
    }
    return result;
}

void clsFile::Close() {
    UnlockAll();
    reason_ = kReasonNone;
    errorText_.Empty();
    const bool remove = (mode_ & kFileModeDeleteOnClose) != 0 && !name_.IsEmpty();
    if (handle_) {
        handle_.Reset();
        if (remove) DeleteFileW(name_.Text());
    }
    stream_.Reset();
    if (storage_ && remove) storage_->DestroyElement(name_.Text());
    storage_.Reset();
    opened_ = false;
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
