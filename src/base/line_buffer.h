// A line of bounded length that is built from formatted pieces.
#pragma once

#include <cstdarg>
#include <cstddef>

namespace vxut {

// Text beyond the bound is cut off. A piece whose arguments cannot be read ends where that was noticed.
// Not synchronised: the owner serialises its use.
class clsLineBuffer {
public:
    static constexpr size_t kUnits = 1025; // including the terminator

    void Clear() noexcept;
    void Append(const wchar_t* format, ...) noexcept;
    void AppendV(const wchar_t* format, va_list arguments) noexcept;
    // Zero-terminated. Valid until the next change.
    const wchar_t* Text() const noexcept { return text_; }

private:
    wchar_t text_[kUnits] = {};
    size_t length_ = 0;
};

} // namespace vxut
