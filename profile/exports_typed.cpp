#include "prof/typed.h"

#include "profile/export_support.h"
#include "profile/item_access.h"

using namespace vxut;

namespace {

// Values come as they are, records through pointers.
template <class Value>
const Value* AddressOf(const Value& value) {
    return &value;
}
template <class Value>
const Value* AddressOf(const Value* const& value) {
    return value;
}

template <class Type, class Unit, class Argument>
void Append(HPROF job, HPROFLIST list, const Unit* name, const Argument& argument) {
    const typename Type::Value* const value = AddressOf(argument);
    if (!job || !value) return;
    Guarded([=] {
        AppendText(PlaceOf(job, list), clsWideArgument(name),
                   FormatValue<Type>(Type::kAppend, *value).Text());
    });
}

template <class Type, class Unit, class Argument>
void Set(HPROF job, HPROFLIST list, const Unit* name, const Argument& argument) {
    const typename Type::Value* const value = AddressOf(argument);
    if (!job || !value) return;
    Guarded([=] {
        SetText(PlaceOf(job, list), clsWideArgument(name), FormatValue<Type>(Type::kSet, *value).Text());
    });
}

template <class Type, class Unit, class Argument>
int32_t Get(HPROF job, HPROFLIST list, const Unit* name, typename Type::Value* out,
            const Argument& argument) {
    typename Type::Value unused{};
    if (!out) out = &unused;
    const typename Type::Value* const given = AddressOf(argument);
    const typename Type::Value fallback = given ? *given : *out;
    return Guarded<int32_t>(PROF_ERR_NOT_FOUND, [=] {
        return ReadValue<Type>(job ? FindItem(job, list, name) : nullptr, *out, fallback);
    });
}

} // namespace

VXUT_API void ProfAppendBoolW(HPROF job, HPROFLIST list, const wchar_t* name, int value) {
    Append<scBoolType>(job, list, name, value);
}
VXUT_API void ProfAppendBoolA(HPROF job, HPROFLIST list, const char* name, int value) {
    Append<scBoolType>(job, list, name, value);
}
VXUT_API void ProfSetBoolW(HPROF job, HPROFLIST list, const wchar_t* name, int value) {
    Set<scBoolType>(job, list, name, value);
}
VXUT_API void ProfSetBoolA(HPROF job, HPROFLIST list, const char* name, int value) {
    Set<scBoolType>(job, list, name, value);
}
VXUT_API int32_t ProfGetBoolW(HPROF job, HPROFLIST list, const wchar_t* name, int* out, int defaultValue) {
    return Get<scBoolType>(job, list, name, out, defaultValue);
}
VXUT_API int32_t ProfGetBoolA(HPROF job, HPROFLIST list, const char* name, int* out, int defaultValue) {
    return Get<scBoolType>(job, list, name, out, defaultValue);
}

VXUT_API void ProfAppendDoubleW(HPROF job, HPROFLIST list, const wchar_t* name, double value) {
    Append<scDoubleType>(job, list, name, value);
}
VXUT_API void ProfAppendDoubleA(HPROF job, HPROFLIST list, const char* name, double value) {
    Append<scDoubleType>(job, list, name, value);
}
VXUT_API void ProfSetDoubleW(HPROF job, HPROFLIST list, const wchar_t* name, double value) {
    Set<scDoubleType>(job, list, name, value);
}
VXUT_API void ProfSetDoubleA(HPROF job, HPROFLIST list, const char* name, double value) {
    Set<scDoubleType>(job, list, name, value);
}
VXUT_API int32_t ProfGetDoubleW(HPROF job, HPROFLIST list, const wchar_t* name, double* out,
                                double defaultValue) {
    return Get<scDoubleType>(job, list, name, out, defaultValue);
}
VXUT_API int32_t ProfGetDoubleA(HPROF job, HPROFLIST list, const char* name, double* out,
                                double defaultValue) {
    return Get<scDoubleType>(job, list, name, out, defaultValue);
}

VXUT_API void ProfAppendIntW(HPROF job, HPROFLIST list, const wchar_t* name, int32_t value) {
    Append<scIntType>(job, list, name, value);
}
VXUT_API void ProfAppendIntA(HPROF job, HPROFLIST list, const char* name, int32_t value) {
    Append<scIntType>(job, list, name, value);
}
VXUT_API void ProfSetIntW(HPROF job, HPROFLIST list, const wchar_t* name, int32_t value) {
    Set<scIntType>(job, list, name, value);
}
VXUT_API void ProfSetIntA(HPROF job, HPROFLIST list, const char* name, int32_t value) {
    Set<scIntType>(job, list, name, value);
}
VXUT_API int32_t ProfGetIntW(HPROF job, HPROFLIST list, const wchar_t* name, int32_t* out,
                             int32_t defaultValue) {
    return Get<scIntType>(job, list, name, out, defaultValue);
}
VXUT_API int32_t ProfGetIntA(HPROF job, HPROFLIST list, const char* name, int32_t* out,
                             int32_t defaultValue) {
    return Get<scIntType>(job, list, name, out, defaultValue);
}

VXUT_API void ProfAppendIntHexW(HPROF job, HPROFLIST list, const wchar_t* name, int32_t value) {
    Append<scIntHexType>(job, list, name, value);
}
VXUT_API void ProfAppendIntHexA(HPROF job, HPROFLIST list, const char* name, int32_t value) {
    Append<scIntHexType>(job, list, name, value);
}
VXUT_API void ProfSetIntHexW(HPROF job, HPROFLIST list, const wchar_t* name, int32_t value) {
    Set<scIntHexType>(job, list, name, value);
}
VXUT_API void ProfSetIntHexA(HPROF job, HPROFLIST list, const char* name, int32_t value) {
    Set<scIntHexType>(job, list, name, value);
}

VXUT_API void ProfAppendInt64W(HPROF job, HPROFLIST list, const wchar_t* name, int64_t value) {
    Append<scInt64Type>(job, list, name, value);
}
VXUT_API void ProfAppendInt64A(HPROF job, HPROFLIST list, const char* name, int64_t value) {
    Append<scInt64Type>(job, list, name, value);
}
VXUT_API void ProfSetInt64W(HPROF job, HPROFLIST list, const wchar_t* name, int64_t value) {
    Set<scInt64Type>(job, list, name, value);
}
VXUT_API void ProfSetInt64A(HPROF job, HPROFLIST list, const char* name, int64_t value) {
    Set<scInt64Type>(job, list, name, value);
}
VXUT_API int32_t ProfGetInt64W(HPROF job, HPROFLIST list, const wchar_t* name, int64_t* out,
                               int64_t defaultValue) {
    return Get<scInt64Type>(job, list, name, out, defaultValue);
}
VXUT_API int32_t ProfGetInt64A(HPROF job, HPROFLIST list, const char* name, int64_t* out,
                               int64_t defaultValue) {
    return Get<scInt64Type>(job, list, name, out, defaultValue);
}

VXUT_API void ProfAppendInt64HexW(HPROF job, HPROFLIST list, const wchar_t* name, int64_t value) {
    Append<scInt64HexType>(job, list, name, value);
}
VXUT_API void ProfAppendInt64HexA(HPROF job, HPROFLIST list, const char* name, int64_t value) {
    Append<scInt64HexType>(job, list, name, value);
}
VXUT_API void ProfSetInt64HexW(HPROF job, HPROFLIST list, const wchar_t* name, int64_t value) {
    Set<scInt64HexType>(job, list, name, value);
}
VXUT_API void ProfSetInt64HexA(HPROF job, HPROFLIST list, const char* name, int64_t value) {
    Set<scInt64HexType>(job, list, name, value);
}

VXUT_API void ProfAppendPointW(HPROF job, HPROFLIST list, const wchar_t* name, const POINT* value) {
    Append<scPointType>(job, list, name, value);
}
VXUT_API void ProfAppendPointA(HPROF job, HPROFLIST list, const char* name, const POINT* value) {
    Append<scPointType>(job, list, name, value);
}
VXUT_API void ProfSetPointW(HPROF job, HPROFLIST list, const wchar_t* name, const POINT* value) {
    Set<scPointType>(job, list, name, value);
}
VXUT_API void ProfSetPointA(HPROF job, HPROFLIST list, const char* name, const POINT* value) {
    Set<scPointType>(job, list, name, value);
}
VXUT_API int32_t ProfGetPointW(HPROF job, HPROFLIST list, const wchar_t* name, POINT* out,
                               const POINT* defaultValue) {
    return Get<scPointType>(job, list, name, out, defaultValue);
}
VXUT_API int32_t ProfGetPointA(HPROF job, HPROFLIST list, const char* name, POINT* out,
                               const POINT* defaultValue) {
    return Get<scPointType>(job, list, name, out, defaultValue);
}

VXUT_API void ProfAppendRectW(HPROF job, HPROFLIST list, const wchar_t* name, const RECT* value) {
    Append<scRectType>(job, list, name, value);
}
VXUT_API void ProfAppendRectA(HPROF job, HPROFLIST list, const char* name, const RECT* value) {
    Append<scRectType>(job, list, name, value);
}
VXUT_API void ProfSetRectW(HPROF job, HPROFLIST list, const wchar_t* name, const RECT* value) {
    Set<scRectType>(job, list, name, value);
}
VXUT_API void ProfSetRectA(HPROF job, HPROFLIST list, const char* name, const RECT* value) {
    Set<scRectType>(job, list, name, value);
}
VXUT_API int32_t ProfGetRectW(HPROF job, HPROFLIST list, const wchar_t* name, RECT* out,
                              const RECT* defaultValue) {
    return Get<scRectType>(job, list, name, out, defaultValue);
}
VXUT_API int32_t ProfGetRectA(HPROF job, HPROFLIST list, const char* name, RECT* out,
                              const RECT* defaultValue) {
    return Get<scRectType>(job, list, name, out, defaultValue);
}

VXUT_API void ProfAppendRectLTWHW(HPROF job, HPROFLIST list, const wchar_t* name, const RECT* value) {
    Append<scRectSizeType>(job, list, name, value);
}
VXUT_API void ProfAppendRectLTWHA(HPROF job, HPROFLIST list, const char* name, const RECT* value) {
    Append<scRectSizeType>(job, list, name, value);
}
VXUT_API void ProfSetRectLTWHW(HPROF job, HPROFLIST list, const wchar_t* name, const RECT* value) {
    Set<scRectSizeType>(job, list, name, value);
}
VXUT_API void ProfSetRectLTWHA(HPROF job, HPROFLIST list, const char* name, const RECT* value) {
    Set<scRectSizeType>(job, list, name, value);
}
VXUT_API int32_t ProfGetRectLTWHW(HPROF job, HPROFLIST list, const wchar_t* name, RECT* out,
                                  const RECT* defaultValue) {
    return Get<scRectSizeType>(job, list, name, out, defaultValue);
}
VXUT_API int32_t ProfGetRectLTWHA(HPROF job, HPROFLIST list, const char* name, RECT* out,
                                  const RECT* defaultValue) {
    return Get<scRectSizeType>(job, list, name, out, defaultValue);
}

VXUT_API void ProfAppendColorrefW(HPROF job, HPROFLIST list, const wchar_t* name, COLORREF value) {
    Append<scColorType>(job, list, name, value);
}
VXUT_API void ProfAppendColorrefA(HPROF job, HPROFLIST list, const char* name, COLORREF value) {
    Append<scColorType>(job, list, name, value);
}
VXUT_API void ProfSetColorrefW(HPROF job, HPROFLIST list, const wchar_t* name, COLORREF value) {
    Set<scColorType>(job, list, name, value);
}
VXUT_API void ProfSetColorrefA(HPROF job, HPROFLIST list, const char* name, COLORREF value) {
    Set<scColorType>(job, list, name, value);
}
VXUT_API int32_t ProfGetColorrefW(HPROF job, HPROFLIST list, const wchar_t* name, COLORREF* out,
                                  COLORREF defaultValue) {
    return Get<scColorType>(job, list, name, out, defaultValue);
}
VXUT_API int32_t ProfGetColorrefA(HPROF job, HPROFLIST list, const char* name, COLORREF* out,
                                  COLORREF defaultValue) {
    return Get<scColorType>(job, list, name, out, defaultValue);
}
