// A small block of memory that the processes of a session share by name.
#pragma once

#include "base/owners.h"

namespace vxut {

// Owns the mapping and its view. What the block contains has to be read and written atomically.
class clsSharedBlock {
public:
    // Opens the block, or creates a zeroed one with access for everyone. On failure the thread's last error
    // is set.
    clsSharedBlock(const wchar_t* name, DWORD bytes) noexcept;

    bool HasMapping() const noexcept { return static_cast<bool>(mapping_); }
    void* View() const noexcept { return view_.Get(); } // null on failure
    // Whether the block existed before.
    bool WasThere() const noexcept { return wasThere_; }

private:
    clsAutoCloseHandle mapping_;
    clsAutoUnmap view_;
    bool wasThere_ = false;
};

} // namespace vxut
