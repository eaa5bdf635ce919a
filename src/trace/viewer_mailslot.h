// The writing end of a viewer's mailslot.
#pragma once

#include "base/owners.h"

#include <cstddef>

namespace vxut {

// Used by one thread at a time.
class clsViewerMailslot {
public:
    enum class Outcome {
        kWritten,
        kFailed,
        kFull, // nobody has read in time
    };

    // False if there is no such mailslot.
    bool Open(const wchar_t* name);
    void Close() noexcept;
    bool IsOpen() const noexcept { return static_cast<bool>(slot_); }

    // Writes one record. Waits at most patience milliseconds for space in the mailslot.
    Outcome Write(const char* bytes, size_t count, DWORD patience);

private:
    bool Wait(OVERLAPPED& request, DWORD patience) const;

    clsAutoCloseFile slot_;
    clsAutoCloseHandle done_; // the event of the request that is under way
};

} // namespace vxut
