#include "base/line_buffer.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>

namespace vxut {
namespace {

// A report must not bring down the code that makes it: an argument that cannot be read ends the formatting.
// Not noexcept and not inlined: both would put the C++ run-time's handler in front of this one.
[[gnu::noinline]] void FormatShielded(wchar_t* target, size_t units, const wchar_t* format,
                                      va_list arguments) {
    __try {
        _vsnwprintf(target, units, format, arguments);
    } __except (GetExceptionCode() == EXCEPTION_ACCESS_VIOLATION ? EXCEPTION_EXECUTE_HANDLER
                                                                 : EXCEPTION_CONTINUE_SEARCH) {
    }
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
