#include "prof/typed.h"

#include "profile/export_support.h"
#include "profile/item_access.h"

using namespace vxut;

namespace {

// Numbers are passed as they are, records by pointer.
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

static_assert(sizeof(POINT) == 8 && sizeof(RECT) == 16 && sizeof(COLORREF) == 4 && sizeof(int) == 4 &&
                  sizeof(double) == 8,
              "values cross the boundary in these sizes");

// One row for each pair of exports. Argument is how a value is passed.
#define DEFINE_APPENDER(Export, Unit, Type, Argument)                                   \
    VXUT_API void Export(HPROF job, HPROFLIST list, const Unit* name, Argument value) { \
        Append<Type>(job, list, name, value);                                           \
    }
#define DEFINE_SETTER(Export, Unit, Type, Argument)                                     \
    VXUT_API void Export(HPROF job, HPROFLIST list, const Unit* name, Argument value) { \
        Set<Type>(job, list, name, value);                                              \
    }
#define DEFINE_GETTER(Export, Unit, Type, Argument)                                        \
    VXUT_API int32_t Export(HPROF job, HPROFLIST list, const Unit* name, Type::Value* out, \
                            Argument defaultValue) {                                       \
        return Get<Type>(job, list, name, out, defaultValue);                              \
    }
#define DEFINE_APPENDERS(Wide, Narrow, Type, Argument) \
    DEFINE_APPENDER(Wide, wchar_t, Type, Argument)     \
    DEFINE_APPENDER(Narrow, char, Type, Argument)
#define DEFINE_SETTERS(Wide, Narrow, Type, Argument) \
    DEFINE_SETTER(Wide, wchar_t, Type, Argument)     \
    DEFINE_SETTER(Narrow, char, Type, Argument)
#define DEFINE_GETTERS(Wide, Narrow, Type, Argument) \
    DEFINE_GETTER(Wide, wchar_t, Type, Argument)     \
    DEFINE_GETTER(Narrow, char, Type, Argument)

DEFINE_APPENDERS(ProfAppendBoolW, ProfAppendBoolA, scBoolType, int)
DEFINE_APPENDERS(ProfAppendDoubleW, ProfAppendDoubleA, scDoubleType, double)
DEFINE_APPENDERS(ProfAppendIntW, ProfAppendIntA, scIntType, int32_t)
DEFINE_APPENDERS(ProfAppendIntHexW, ProfAppendIntHexA, scIntHexType, int32_t)
DEFINE_APPENDERS(ProfAppendInt64W, ProfAppendInt64A, scInt64Type, int64_t)
DEFINE_APPENDERS(ProfAppendInt64HexW, ProfAppendInt64HexA, scInt64HexType, int64_t)
DEFINE_APPENDERS(ProfAppendPointW, ProfAppendPointA, scPointType, const POINT*)
DEFINE_APPENDERS(ProfAppendRectW, ProfAppendRectA, scRectType, const RECT*)
DEFINE_APPENDERS(ProfAppendRectLTWHW, ProfAppendRectLTWHA, scRectSizeType, const RECT*)
DEFINE_APPENDERS(ProfAppendColorrefW, ProfAppendColorrefA, scColorType, COLORREF)

DEFINE_SETTERS(ProfSetBoolW, ProfSetBoolA, scBoolType, int)
DEFINE_SETTERS(ProfSetDoubleW, ProfSetDoubleA, scDoubleType, double)
DEFINE_SETTERS(ProfSetIntW, ProfSetIntA, scIntType, int32_t)
DEFINE_SETTERS(ProfSetIntHexW, ProfSetIntHexA, scIntHexType, int32_t)
DEFINE_SETTERS(ProfSetInt64W, ProfSetInt64A, scInt64Type, int64_t)
DEFINE_SETTERS(ProfSetInt64HexW, ProfSetInt64HexA, scInt64HexType, int64_t)
DEFINE_SETTERS(ProfSetPointW, ProfSetPointA, scPointType, const POINT*)
DEFINE_SETTERS(ProfSetRectW, ProfSetRectA, scRectType, const RECT*)
DEFINE_SETTERS(ProfSetRectLTWHW, ProfSetRectLTWHA, scRectSizeType, const RECT*)
DEFINE_SETTERS(ProfSetColorrefW, ProfSetColorrefA, scColorType, COLORREF)

DEFINE_GETTERS(ProfGetBoolW, ProfGetBoolA, scBoolType, int)
DEFINE_GETTERS(ProfGetDoubleW, ProfGetDoubleA, scDoubleType, double)
DEFINE_GETTERS(ProfGetIntW, ProfGetIntA, scIntType, int32_t)
DEFINE_GETTERS(ProfGetInt64W, ProfGetInt64A, scInt64Type, int64_t)
DEFINE_GETTERS(ProfGetPointW, ProfGetPointA, scPointType, const POINT*)
DEFINE_GETTERS(ProfGetRectW, ProfGetRectA, scRectType, const RECT*)
DEFINE_GETTERS(ProfGetRectLTWHW, ProfGetRectLTWHA, scRectSizeType, const RECT*)
DEFINE_GETTERS(ProfGetColorrefW, ProfGetColorrefA, scColorType, COLORREF)
