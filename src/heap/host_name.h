// A name that a host hands to a call on jobs or heaps.
#pragma once

#include "base/line_buffer.h"
#include "base/shielded_read.h"

namespace vxut {

// A copy of the name, made before JobLock() is taken: the host's memory is not touched again. Cut to what a
// line of the debug channel holds, which is more than a record stores.
class clsHostName {
public:
    // Null is a name of its own: Text() is null then.
    explicit clsHostName(const wchar_t* name) noexcept
        : isGiven_(name != nullptr),
          isReadable_(!name || ReadTextShielded(text_, clsLineBuffer::kUnits, name)) {}
    clsHostName(const clsHostName&) = delete;
    clsHostName& operator=(const clsHostName&) = delete;

    // False for a name that is not null but leads nowhere, or has no end where memory ends.
    bool IsReadable() const noexcept { return isReadable_; }
    const wchar_t* Text() const noexcept { return isGiven_ ? text_ : nullptr; }

private:
    wchar_t text_[clsLineBuffer::kUnits]; // filled unless the name is null
    bool isGiven_;
    bool isReadable_;
};

} // namespace vxut
