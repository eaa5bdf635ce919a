#include "docinfo/readers/document_storage.h"

#include "base/debug.h"
#include "docinfo/document.h"
#include "docinfo/readers/compound_file.h"
#include "docinfo/readers/properties.h"
#include "files/temp_file.h"

#include <new>

namespace vxut {
namespace {

// The ways to share the file, in the order in which they are tried.
constexpr DWORD kModes[] = {STGM_SHARE_DENY_WRITE, STGM_SHARE_EXCLUSIVE, STGM_SHARE_DENY_NONE,
                            STGM_SHARE_DENY_NONE | STGM_DIRECT_SWMR};

bool IsForNextMode(HRESULT result) {
    return result == STG_E_SHAREVIOLATION || result == STG_E_LOCKVIOLATION || result == STG_E_INVALIDFLAG;
}

// Whether the file can be read is for the system to say.
bool IsKnownToBeDamaged(const String& path) {
    clsDocFile file(path);
    return file.IsOpen() && !IsCompoundFileSound(file);
}

HRESULT OpenStorage(const String& path, clsAutoRelease<IStorage*>& storage) {
    const HRESULT isStorage = StgIsStorageFile(path.Text());
    if (isStorage != S_OK) return isStorage == S_FALSE ? OLE_E_NOSTORAGE : isStorage;
    if (IsKnownToBeDamaged(path)) return STG_E_DOCFILECORRUPT;
    HRESULT result = S_OK;
    for (const DWORD mode : kModes) {
        result = StgOpenStorage(path.Text(), nullptr, mode, nullptr, 0, storage.Receive());
        if (!IsForNextMode(result)) break;
    }
    return result;
}

} // namespace

bool clsTemporaryCopy::Make(const String& path) {
    clsDocFile source(path);
    if (!source.IsOpen()) return false;
    path_ = CreateTempFile(TempFolder(kSharedTempFolder) + L"doc", L".tmp", kTempLongDirectory);
    if (path_.IsEmpty()) return false;
    clsFileRW target(path_, kAccessWrite, kDispositionOpenExisting, kShareNone);
    return target.IsOpen() && target.CopyFrom(source);
}

clsTemporaryCopy::~clsTemporaryCopy() {
    if (path_.IsEmpty() || DeleteFileW(path_.Text())) return;
    const DWORD error = GetLastError();
    try {
        DebugWrite(L"DeleteFile(%s) returned error '%s'", path_.Text(), String::FromError(error).Text());
    } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch): the line is dropped
    }
}

HRESULT clsDocumentStorage::Open(const String& path) {
    const HRESULT result = OpenStorage(path, storage_);
    return IsForNextMode(result) && copy_.Make(path) ? OpenStorage(copy_.Path(), storage_) : result;
}

bool ReadStorageStream(IStorage& storage, const wchar_t* name, std::vector<uint8_t>& bytes) {
    clsAutoRelease<IStream*> stream;
    if (FAILED(storage.OpenStream(name, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, stream.Receive())))
        return false;
    clsFile file(stream.Get());
    const int64_t size = file.GetSize();
    return size >= 0 && size <= static_cast<int64_t>(kMostStreamBytes) &&
           ReadAll(file, 0, bytes, static_cast<size_t>(size));
}

} // namespace vxut
