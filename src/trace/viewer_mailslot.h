// The writing end of a viewer's mailslot.
#pragma once

#include "base/owners.h"
#include "util/trace_viewer.h"

#include <cstddef>

namespace vxut {

class clsViewerMailslot {
public:
    enum class Outcome {
        kWritten,
        kFailed,
        kFull, // nobody reads
    };

    // False if there is no such mailslot.
    bool Open(const wchar_t* name);
    void Close() noexcept;
    bool IsOpen() const noexcept { return static_cast<bool>(slot_); }

    // Waits for room for UTIL_TRACE_PATIENCE milliseconds at most. A viewer that has let them pass is not
    // waited for again until it takes a record.
    Outcome Write(const char* bytes, size_t count);

private:
    bool Wait(OVERLAPPED& request) const;

    clsAutoCloseFile slot_;
    clsAutoCloseHandle done_; // the event of the request that is under way
    DWORD patience_ = UTIL_TRACE_PATIENCE;
};

} // namespace vxut
