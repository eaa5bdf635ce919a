#include "files/file_trace.h"

#include "base/debug.h"

#include <cstdarg>

namespace vxut {
namespace {

String ResultText(HRESULT result) {
    if (result == S_OK) return L"S_OK";
    if (result == S_FALSE) return L"S_FALSE";
    return String::FromError(static_cast<DWORD>(result));
}

} // namespace

bool streamTraceOn = false;

clsStreamTrace::clsStreamTrace(const wchar_t* format, ...) : active_(streamTraceOn) {
    if (!active_) return;
    va_list arguments;
    va_start(arguments, format);
    call_.FormatV(format, arguments);
    va_end(arguments);
    DebugWriteIndented(1, L"%s", call_.Text());
}

clsStreamTrace::~clsStreamTrace() {
    if (!active_) return;
    if (hasResult_) {
        DebugWriteIndented(-1, L"<%s (%s)", call_.Text(), ResultText(result_).Text());
    } else {
        DebugWriteIndented(-1, L"<%s", call_.Text());
    }
}

HRESULT clsStreamTrace::Result(HRESULT result) noexcept {
    hasResult_ = true;
    return result_ = result;
}

} // namespace vxut
