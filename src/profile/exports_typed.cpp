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

// The exports of one type: in both text forms an appender, a setter and, for types with a reader of their
// own, a getter. Argument is how a value is passed.
#define DEFINE_WRITERS_OF_FORM(Name, Form, Unit, Type, Argument)                                        \
    VXUT_API void ProfAppend##Name##Form(HPROF job, HPROFLIST list, const Unit* name, Argument value) { \
        Append<Type>(job, list, name, value);                                                           \
    }                                                                                                   \
    VXUT_API void ProfSet##Name##Form(HPROF job, HPROFLIST list, const Unit* name, Argument value) {    \
        Set<Type>(job, list, name, value);                                                              \
    }
#define DEFINE_READER_OF_FORM(Name, Form, Unit, Type, Argument)                                         \
    VXUT_API int32_t ProfGet##Name##Form(HPROF job, HPROFLIST list, const Unit* name, Type::Value* out, \
                                         Argument defaultValue) {                                       \
        return Get<Type>(job, list, name, out, defaultValue);                                           \
    }
#define DEFINE_WRITERS(Name, Type, Argument)                 \
    DEFINE_WRITERS_OF_FORM(Name, W, wchar_t, Type, Argument) \
    DEFINE_WRITERS_OF_FORM(Name, A, char, Type, Argument)
#define DEFINE_WRITERS_AND_READER(Name, Type, Argument)     \
    DEFINE_WRITERS(Name, Type, Argument)                    \
    DEFINE_READER_OF_FORM(Name, W, wchar_t, Type, Argument) \
    DEFINE_READER_OF_FORM(Name, A, char, Type, Argument)

DEFINE_WRITERS_AND_READER(Bool, scBoolType, int)
DEFINE_WRITERS_AND_READER(Double, scDoubleType, double)
DEFINE_WRITERS_AND_READER(Int, scIntType, int32_t)
DEFINE_WRITERS(IntHex, scIntHexType, int32_t)
DEFINE_WRITERS_AND_READER(Int64, scInt64Type, int64_t)
DEFINE_WRITERS(Int64Hex, scInt64HexType, int64_t)
DEFINE_WRITERS_AND_READER(Point, scPointType, const POINT*)
DEFINE_WRITERS_AND_READER(Rect, scRectType, const RECT*)
DEFINE_WRITERS_AND_READER(RectLTWH, scRectSizeType, const RECT*)
DEFINE_WRITERS_AND_READER(Colorref, scColorType, COLORREF)
