// A line of bounded length that is built from formatted pieces, without allocations.
#pragma once

#include <cstdarg>
#include <cstddef>

namespace vxut {

// What does not fit is cut. A piece with an argument that cannot be read ends before it; nothing is reported.
// Formats are Microsoft's. For one thread at a time.
class clsLineBuffer {
public:
    static constexpr size_t kUnits = 1025; // the terminator included

    void Clear() noexcept;
    void Append(const wchar_t* format, ...) noexcept;
    void AppendV(const wchar_t* format, va_list arguments) noexcept;
    const wchar_t* Text() const noexcept { return text_; }

private:
    wchar_t text_[kUnits] = {};
    size_t length_ = 0;
};

} // namespace vxut
