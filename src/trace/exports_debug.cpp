#include "util/debug.h"

#include "trace/debug_channel.h"

using namespace vxut;

VXUT_API void UtilDebug(const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    DebugWriteV(nullptr, 0, format, arguments);
    va_end(arguments);
}

VXUT_API void UtilDebugExt(const wchar_t* module, int32_t indentChange, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    DebugWriteV(module, indentChange, format, arguments);
    va_end(arguments);
}

VXUT_API void UtilDebugExtV(const wchar_t* module, int32_t indentChange, const wchar_t* format,
                            va_list arguments) {
    DebugWriteV(module, indentChange, format, arguments);
}

VXUT_API void PasDebug(const wchar_t* text) { DebugWriteAs(nullptr, 0, L"%s", text); }
