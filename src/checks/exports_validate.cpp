#include "util/validate.h"

#include "base/guard.h"
#include "checks/validate.h"

using namespace vxut;

VXUT_API int UtilIsRPtr(const wchar_t* function, const void* pointer, const wchar_t* parameter,
                        uint32_t size) {
    return Guarded(1, [=] { return IsRPtr(function, pointer, parameter, size); });
}

VXUT_API int UtilIsWPtr(const wchar_t* function, void* pointer, const wchar_t* parameter, uint32_t size) {
    return Guarded(1, [=] { return IsWPtr(function, pointer, parameter, size); });
}

VXUT_API int UtilIsString(const wchar_t* function, const wchar_t* pointer, const wchar_t* parameter) {
    return Guarded(1, [=] { return IsStringPtr(function, pointer, parameter); });
}

VXUT_API int32_t UtilSafeStrlen(const wchar_t* function, const wchar_t* text) {
    return Guarded(0, [=] { return SafeStrlen(function, text); });
}

VXUT_API void UtilError(const wchar_t* function, const wchar_t* text) {
    Guarded([=] { ReportError(function, text); });
}

VXUT_API void UtilAssert(const wchar_t* expression, const wchar_t* fileName, uint32_t line) {
    Guarded([=] { FailAssertion(expression, fileName, line); });
}
