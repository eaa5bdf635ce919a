// A small block of memory that processes of the session share by name.
#pragma once

#include "base/owners.h"

namespace vxut {

class clsSharedBlock {
public:
    // Opens the block, or makes a zeroed one that everybody may open.
    clsSharedBlock(const wchar_t* name, DWORD bytes) noexcept;

    bool HasMapping() const noexcept { return static_cast<bool>(mapping_); }
    void* View() const noexcept { return view_.Get(); }  // null when the block cannot be had
    bool WasThere() const noexcept { return wasThere_; } // somebody else had made it

private:
    clsAutoCloseHandle mapping_;
    clsAutoUnmap view_;
    bool wasThere_ = false;
};

} // namespace vxut
