#include "trace/viewer_mailslot.h"

namespace vxut {

bool clsViewerMailslot::Open(const wchar_t* name) {
    done_.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    // Overlapped, for systems on which a mailslot can be full: a plain write would wait there for ever.
    if (done_) {
        slot_.Reset(CreateFileW(name, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OVERLAPPED, nullptr));
    }
    return IsOpen();
}

void clsViewerMailslot::Close() noexcept {
    slot_.Reset();
    done_.Reset();
}

clsViewerMailslot::Outcome clsViewerMailslot::Write(const char* bytes, size_t count, DWORD patience) {
    OVERLAPPED request = {};
    request.hEvent = done_.Get();
    const bool isDone = WriteFile(slot_.Get(), bytes, static_cast<DWORD>(count), nullptr, &request) != 0;
    if (!isDone && GetLastError() != ERROR_IO_PENDING) return Outcome::kFailed;
    const bool isInTime = isDone || Wait(request, patience);
    DWORD written = 0;
    if (GetOverlappedResult(slot_.Get(), &request, &written, TRUE) && written == count)
        return Outcome::kWritten;
    return isInTime ? Outcome::kFailed : Outcome::kFull;
}

// Cancels the request if it is not done in time.
bool clsViewerMailslot::Wait(OVERLAPPED& request, DWORD patience) const {
    if (WaitForSingleObject(request.hEvent, patience) == WAIT_OBJECT_0) return true;
    CancelIo(slot_.Get());
    return false;
}

} // namespace vxut
