// The IStream interface of a file: passes calls on to the stream underneath, or serves the handle.
#include "files/file.h"

#include "base/last_error.h"
#include "files/file_trace.h"

#include <cstring>

namespace vxut {
namespace {

// What Stat() returns for a file whose attributes cannot be read; callers compare with it.
constexpr HRESULT kStatFailed = 2;

// S_FALSE for a short transfer.
HRESULT Transferred(int64_t done, ULONG asked, ULONG* count) {
    if (count) *count = static_cast<ULONG>(done);
    return done < asked ? S_FALSE : S_OK;
}

wchar_t* TaskMemoryCopy(const String& text) {
    const size_t bytes = (static_cast<size_t>(text.Length()) + 1) * sizeof(wchar_t);
    void* const copy = CoTaskMemAlloc(bytes);
    return static_cast<wchar_t*>(copy ? std::memcpy(copy, text.Text(), bytes) : nullptr);
}

} // namespace

HRESULT clsFile::Read(void* buffer, ULONG bytes, ULONG* bytesRead) {
    clsStreamTrace trace(L"clsFile::Stream::Read(%d)", bytes);
    if (stream_) return trace.Result(stream_->Read(buffer, bytes, bytesRead));
    if (!buffer) return trace.Result(STG_E_INVALIDPOINTER);
    return trace.Result(Transferred(Read(buffer, static_cast<int64_t>(bytes)), bytes, bytesRead));
}

HRESULT clsFile::Write(const void* buffer, ULONG bytes, ULONG* bytesWritten) {
    clsStreamTrace trace(L"clsFile::Stream::Write(%d)", bytes);
    if (stream_) return trace.Result(stream_->Write(buffer, bytes, bytesWritten));
    if (!dynamic_cast<clsFileRW*>(this)) return trace.Result(E_ACCESSDENIED);
    if (!buffer) return trace.Result(STG_E_INVALIDPOINTER);
    return trace.Result(Transferred(Write(buffer, static_cast<int64_t>(bytes)), bytes, bytesWritten));
}

HRESULT clsFile::Seek(LARGE_INTEGER offset, DWORD origin, ULARGE_INTEGER* newPosition) {
    clsStreamTrace trace(L"clsFile::Stream::Seek(%I64d,%d)", offset.QuadPart, origin);
    if (stream_) return trace.Result(stream_->Seek(offset, origin, newPosition));
    if (!handle_) return trace.Result(E_HANDLE);
    if (origin > STREAM_SEEK_END) return trace.Result(E_INVALIDARG);
    int64_t position = 0;
    if (!MoveTo(offset.QuadPart, origin, position))
        return trace.Result(HRESULT_FROM_WIN32(ErrorOfFailedCall()));
    if (newPosition) newPosition->QuadPart = static_cast<uint64_t>(position);
    return trace.Result(S_OK);
}

HRESULT clsFile::SetSize(ULARGE_INTEGER size) {
    clsStreamTrace trace(L"clsFile::Stream::SetSize(%I64d)", size.QuadPart);
    if (stream_) return trace.Result(stream_->SetSize(size));
    if (!dynamic_cast<clsFileRW*>(this)) return trace.Result(E_ACCESSDENIED);
    const int64_t position = GetPosition();
    const auto end = static_cast<int64_t>(size.QuadPart);
    int64_t reached = 0;
    if (position < 0 || !MoveTo(end, FILE_BEGIN, reached)) return trace.Result(STG_E_SEEKERROR);
    const HRESULT result = EndHere();
    const bool isBack = MoveTo(position < end ? position : 0, FILE_BEGIN, reached);
    return trace.Result(SUCCEEDED(result) && !isBack ? STG_E_SEEKERROR : result);
}

HRESULT clsFile::CopyTo(IStream* target, ULARGE_INTEGER bytes, ULARGE_INTEGER* bytesRead,
                        ULARGE_INTEGER* bytesWritten) {
    clsStreamTrace trace(L"clsFile::Stream::CopyTo(%#p,%I64d)", static_cast<void*>(target), bytes.QuadPart);
    return trace.Result(stream_ ? stream_->CopyTo(target, bytes, bytesRead, bytesWritten) : E_NOTIMPL);
}

HRESULT clsFile::Commit(DWORD flags) {
    clsStreamTrace trace(L"clsFile::Stream::Commit(%u)", flags);
    return trace.Result(stream_ ? stream_->Commit(flags) : E_NOTIMPL);
}

HRESULT clsFile::Revert() {
    clsStreamTrace trace(L"clsFile::Stream::Revert()");
    return trace.Result(stream_ ? stream_->Revert() : E_NOTIMPL);
}

HRESULT clsFile::LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER bytes, DWORD type) {
    clsStreamTrace trace(L"clsFile::Stream::LockRegion(%I64u,%I64u)", offset.QuadPart, bytes.QuadPart);
    if (stream_) return trace.Result(stream_->LockRegion(offset, bytes, type));
    const bool locked =
        handle_ && LockFile(Handle(), offset.LowPart, offset.HighPart, bytes.LowPart, bytes.HighPart);
    return trace.Result(locked ? S_OK : E_NOTIMPL);
}

HRESULT clsFile::UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER bytes, DWORD type) {
    clsStreamTrace trace(L"clsFile::Stream::UnlockRegion(%I64u,%I64u)", offset.QuadPart, bytes.QuadPart);
    // The lock method it is, here too: callers rely on it.
    if (stream_) return trace.Result(stream_->LockRegion(offset, bytes, type));
    const bool unlocked =
        handle_ && UnlockFile(Handle(), offset.LowPart, offset.HighPart, bytes.LowPart, bytes.HighPart);
    return trace.Result(unlocked ? S_OK : E_NOTIMPL);
}

HRESULT clsFile::Stat(STATSTG* target, DWORD flags) {
    clsStreamTrace trace(L"clsFile::Stream::Stat(%#p)", static_cast<void*>(target));
    if (stream_) return trace.Result(stream_->Stat(target, flags));
    if (!target) return trace.Result(E_INVALIDARG);
    STATSTG stat{};
    const int64_t size = GetSize();
    if (size < 0 || !CopyTimes(stat)) return trace.Result(kStatFailed);
    stat.type = STGTY_STREAM;
    stat.cbSize.QuadPart = static_cast<uint64_t>(size);
    if (!(flags & STATFLAG_NONAME) && !(stat.pwcsName = TaskMemoryCopy(DisplayName()))) {
        return trace.Result(STG_E_INSUFFICIENTMEMORY);
    }
    *target = stat;
    return trace.Result(S_OK);
}

// A search also finds the times of files that may not be opened.
bool clsFile::CopyTimes(STATSTG& target) const {
    const auto take = [&target](const auto& data) {
        target.mtime = data.ftLastWriteTime;
        target.ctime = data.ftCreationTime;
        target.atime = data.ftLastAccessTime;
        return true;
    };
    WIN32_FILE_ATTRIBUTE_DATA attributes{};
    if (GetFileAttributesExW(name_.Text(), GetFileExInfoStandard, &attributes)) return take(attributes);
    WIN32_FIND_DATAW match{};
    const clsAutoCloseFind search(FindFirstFileW(name_.Text(), &match));
    return search && take(match);
}

HRESULT clsFile::Clone(IStream** copy) {
    clsStreamTrace trace(L"clsFile::Stream::Clone(%#p)", static_cast<void*>(copy));
    return trace.Result(stream_ ? stream_->Clone(copy) : E_NOTIMPL);
}

} // namespace vxut
