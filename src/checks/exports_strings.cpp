#include "util/strings.h"

#include "base/text_units.h"
#include "checks/checked_strings.h"
#include "checks/validate.h"

#include <cwchar>

using namespace vxut;

// Nothing here throws, so the functions need no barrier. The test of the switch is all that they add to the
// bare loops.

VXUT_API wchar_t* UtilStrcpy(wchar_t* dest, const wchar_t* source) {
    return ParameterChecksEnabled() ? checked::Strcpy(dest, source) : CopyText(dest, source);
}

VXUT_API wchar_t* UtilStrcat(wchar_t* dest, const wchar_t* source) {
    return ParameterChecksEnabled() ? checked::Strcat(dest, source) : AppendText(dest, source);
}

VXUT_API wchar_t* UtilStrncpy(wchar_t* dest, const wchar_t* source, uint32_t capacity) {
    return ParameterChecksEnabled() ? checked::Strncpy(dest, source, capacity)
                                    : CopyTextBounded(dest, source, capacity);
}

VXUT_API int UtilStrcmp(const wchar_t* left, const wchar_t* right) {
    return ParameterChecksEnabled() ? checked::Strcmp(left, right) : CompareUnits(left, right);
}

VXUT_API int UtilStricmp(const wchar_t* left, const wchar_t* right) {
    return ParameterChecksEnabled() ? checked::Stricmp(left, right) : _wcsicmp(left, right);
}

VXUT_API int UtilStrncmp(const wchar_t* left, const wchar_t* right, uint32_t count) {
    return ParameterChecksEnabled() ? checked::Strncmp(left, right, count) : CompareUnits(left, right, count);
}

VXUT_API int UtilStrnicmp(const wchar_t* left, const wchar_t* right, uint32_t count) {
    return ParameterChecksEnabled() ? checked::Strnicmp(left, right, count) : _wcsnicmp(left, right, count);
}

VXUT_API wchar_t* UtilStrstr(const wchar_t* text, const wchar_t* wanted) {
    return const_cast<wchar_t*>(ParameterChecksEnabled() ? checked::Strstr(text, wanted)
                                                         : std::wcsstr(text, wanted));
}

VXUT_API wchar_t* UtilStrchr(const wchar_t* text, wchar_t unit) {
    return const_cast<wchar_t*>(ParameterChecksEnabled() ? checked::Strchr(text, unit)
                                                         : FindUnit(text, unit));
}

VXUT_API wchar_t* UtilStrrchr(const wchar_t* text, wchar_t unit) {
    return const_cast<wchar_t*>(ParameterChecksEnabled() ? checked::Strrchr(text, unit)
                                                         : FindLastUnit(text, unit));
}

VXUT_API size_t UtilStrlen(const wchar_t* text) {
    return ParameterChecksEnabled() ? checked::Strlen(text) : UnitLength(text);
}

VXUT_API void* UtilMemcpy(void* dest, const void* source, uint32_t bytes) {
    return ParameterChecksEnabled() ? checked::Memcpy(dest, source, bytes) : MoveBytes(dest, source, bytes);
}

VXUT_API void* UtilMemset(void* dest, int byte, uint32_t bytes) {
    return ParameterChecksEnabled() ? checked::Memset(dest, byte, bytes) : FillBytes(dest, byte, bytes);
}

VXUT_API void UtilLtrim(wchar_t* text) {
    ParameterChecksEnabled() ? checked::Ltrim(text) : TrimTextLeft(text);
}

VXUT_API void UtilRtrim(wchar_t* text) {
    ParameterChecksEnabled() ? checked::Rtrim(text) : TrimTextRight(text);
}

VXUT_API void UtilAtrim(wchar_t* text) {
    UtilRtrim(text);
    UtilLtrim(text);
}

VXUT_API wchar_t* UtilStuff(wchar_t* dest, uint32_t position, uint32_t deleteCount, const wchar_t* text) {
    return ParameterChecksEnabled() ? checked::Stuff(dest, position, deleteCount, text)
                                    : StuffText(dest, position, deleteCount, text);
}

VXUT_API wchar_t* UtilSubstr(wchar_t* text, int32_t start, uint32_t length) {
    return ParameterChecksEnabled() ? checked::Substr(text, start, length)
                                    : CutText(text, start, length, CopyTextBounded);
}

VXUT_API int UtilSafeSprintf(wchar_t* dest, uint32_t capacity, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int written = ParameterChecksEnabled() ? checked::SafeSprintf(dest, capacity, format, arguments)
                                                 : FormatText(dest, capacity, format, arguments);
    va_end(arguments);
    return written;
}
