// Operations that change the size of a file: setting its end, extending it, copying another file.
#include "files/file.h"

#include "base/debug.h"
#include "base/last_error.h"
#include "files/global_lock.h"

#include <algorithm>

namespace vxut {
namespace {

constexpr int64_t kMaxCopyChunk = 0x6400000;

} // namespace

bool clsFile::SetEOF() { return SUCCEEDED(EndHere()); }

HRESULT clsFile::EndHere() {
    HRESULT result = S_OK;
    if (handle_ && !SetEndOfFile(Handle())) {
        result = HRESULT_FROM_WIN32(ErrorOfFailedCall());
        DebugWrite(L"ERR: SetEOF() failed!");
    }
    if (stream_) {
        const int64_t position = GetPosition();
        ULARGE_INTEGER size;
        size.QuadPart = static_cast<uint64_t>(position);
        const HRESULT streamResult = position >= 0 ? stream_->SetSize(size) : STG_E_SEEKERROR;
        if (FAILED(streamResult)) {
            result = streamResult;
            DebugWrite(L"ERR: Stream->SetEOF(%I64d) failed!", position);
        }
    }
    if (FAILED(result)) NoteResult(result);
    return result;
}

bool clsFile::Extend(int64_t bytes) {
    const int64_t position = GetPosition();
    if (position < 0 || bytes < 0 || bytes > INT64_MAX - position) return Note(ERROR_INVALID_PARAMETER);
    int64_t reached = 0;
    if (!stream_) {
        const bool hasGrown = MoveTo(bytes, FILE_CURRENT, reached) && SetEOF();
        return MoveTo(position, FILE_BEGIN, reached) && hasGrown;
    }
    ULARGE_INTEGER size;
    size.QuadPart = static_cast<uint64_t>(bytes + position);
    if (FAILED(stream_->SetSize(size)))
        DebugWrite(L"ERR: Stream->SetSize(%I64d+%I64d) failed!", bytes, position);
    if (GetPosition() == position) return true;
    DebugWrite(L"WRN: need to correct Outlook stream implementation error, cross your fingers to proceed");
    return MoveTo(position, FILE_BEGIN, reached);
}

bool clsFile::CopyFrom(clsFile& other) {
    const int64_t size = other.IsOpen() ? other.GetSize() : 0;
    if (size == 0) return SetEOF();
    if (size < 0) return false;

    int64_t chunk = std::min(size, kMaxCopyChunk);
    HGLOBAL memory = nullptr;
    while (chunk > 0 && !(memory = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, static_cast<SIZE_T>(chunk))))
        chunk /= 2;
    const clsGlobalLock block(memory, true);
    if (!block.Pointer()) return false;

    if (!Extend(size)) return false;
    const bool isComplete = CopyBytes(other, size, block.Pointer(), chunk);
    // After a failure too: space that was made for a size that the other only claimed does not stay.
    return SetEOF() && isComplete;
}

bool clsFile::CopyBytes(clsFile& other, int64_t size, void* block, int64_t blockSize) {
    for (int64_t left = size; left > 0;) {
        const int64_t wanted = std::min(left, blockSize);
        const int64_t got = other.Read(block, wanted);
        if (Write(block, got) < got || got < wanted) return false;
        left -= got;
    }
    return true;
}

} // namespace vxut
