#include "base/line_buffer.h"

#include "base/shield.h"

#include <algorithm>
#include <cwchar>

namespace vxut {
namespace {

// A report must not bring down the code that makes it: an argument that cannot be read ends the formatting.
void FormatShielded(wchar_t* target, size_t units, const wchar_t* format, va_list arguments) {
    Shielded([=] { _vsnwprintf(target, units, format, arguments); });
}

} // namespace

void clsLineBuffer::Clear() noexcept {
    std::fill(text_, text_ + length_, L'\0');
    length_ = 0;
}

void clsLineBuffer::Append(const wchar_t* format, ...) noexcept {
    va_list arguments;
    va_start(arguments, format);
    AppendV(format, arguments);
    va_end(arguments);
}

void clsLineBuffer::AppendV(const wchar_t* format, va_list arguments) noexcept {
    FormatShielded(text_ + length_, kUnits - 1 - length_, format, arguments);
    length_ += std::wcslen(text_ + length_);
}

} // namespace vxut
