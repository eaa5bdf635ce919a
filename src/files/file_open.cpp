// Opening a file: by name, on a stream, in a storage.
#include "files/file.h"

#include "base/debug.h"
#include "checks/validate.h"
#include "files/path.h"

#include <algorithm>
#include <iterator>

namespace vxut {
namespace {

constexpr int kOpenAttempts = 3;
constexpr DWORD kUserDefaultLanguage = 1024;

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

clsFileHandle Owned(clsAutoCloseFile handle) { return clsFileHandle({handle.Detach(), true}); }

// Suppresses the system's message boxes about files for a scope.
class QuietOpen {
public:
    QuietOpen() : old_(SetErrorMode(SEM_NOOPENFILEERRORBOX)) { SetErrorMode(old_ | SEM_NOOPENFILEERRORBOX); }
    QuietOpen(const QuietOpen&) = delete;
    QuietOpen& operator=(const QuietOpen&) = delete;
    ~QuietOpen() {
        const DWORD error = GetLastError();
        SetErrorMode(old_);
        SetLastError(error);
    }

private:
    const UINT old_;
};

} // namespace

int clsFile::Open(const String& name, FileAccess access, FileDisposition disposition, FileShare share,
                  uint32_t mode) {
    BeginOpen(name, mode);
    WarnOfReadOnlyCreation(access, disposition);
    if (!IsFileNameAllowed(FilePart(name_))) {
        return FailOpen(kReasonNameReserved, L"file name is reserved by Windows", ERROR_INVALID_NAME);
    }
    const DWORD error = TryOpen(kAccesses[access], kShares[share], kDispositions[disposition]);
    return handle_ ? 0
                   : FailOpen(ReasonOfError(error), String::FromError(error, kUserDefaultLanguage), error);
}

void clsFile::BeginOpen(const String& name, uint32_t mode) {
    Close();
    name_ = name;
    mode_ = mode;
    reason_ = kReasonNone;
    errorText_.Empty();
    failure_ = ERROR_SUCCESS;
}

// Returns the error of the last attempt.
DWORD clsFile::TryOpen(DWORD access, DWORD share, DWORD disposition) {
    const DWORD attributes = AttributesOfMode(mode_);
    for (int attempt = 1;; ++attempt) {
        SetLastError(ERROR_SUCCESS);
        handle_ = Owned(OpenHandle(name_, access, share, disposition, attributes));
        const DWORD error = GetLastError();
        if (handle_ || attempt == kOpenAttempts) return error;
        if ((attributes & FILE_ATTRIBUTE_TEMPORARY) && ReasonOfError(error) == kReasonSharing) Sleep(10);
    }
}

int clsFile::FailOpen(FileReason reason, const String& text, DWORD error) {
    reason_ = reason;
    errorText_ = text;
    if (IsDeveloperLogin() && !text.IsEmpty() && !name_.IsEmpty()) {
        DebugWrite(L"clsFile::Open('%s') failed: '%s'", DisplayName(), text.Text());
    }
    SetLastError(error);
    return -1;
}

clsAutoCloseFile clsFile::OpenHandle(const String& name, DWORD access, DWORD share, DWORD disposition,
                                     DWORD attributes) {
    const QuietOpen quiet;
    name_ = name;
    if (!name_.IsEmpty() && !IsFileNameAllowed(FilePart(name_))) {
        SetLastError(ERROR_INVALID_NAME);
        return {};
    }
    return clsAutoCloseFile(
        CreateFileW(name_.Text(), access, share, nullptr, disposition, attributes, nullptr));
}

void clsFile::TakeHandle(clsAutoCloseFile handle, const String& name) {
    BeginOpen(name, kFileModeDefault);
    handle_ = Owned(std::move(handle));
}

int clsFile::OpenOnStream(IStream* stream) {
    if (!stream) return -1;
    auto shared =
        clsAutoRelease<IStream*>::Share(stream); // first: it may be the stream that BeginOpen() releases
    if (handle_) {
        UnlockAll();
    } else {
        BeginOpen(String(), 0);
    }
    stream_ = std::move(shared);
    return 0;
}

int clsFile::OpenInStorage(IStorage* storage, const String& name, FileAccess access,
                           FileDisposition disposition, uint32_t mode) {
    auto shared = clsAutoRelease<IStorage*>::Share(storage);
    BeginOpen(name, mode);
    WarnOfReadOnlyCreation(access, disposition);
    const HRESULT result = storage ? OpenElement(storage, access, disposition) : STG_E_INVALIDPOINTER;
    if (SUCCEEDED(result)) {
        storage_ = std::move(shared);
        return 0;
    }
    const DWORD error = SystemErrorOf(result);
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

} // namespace vxut
