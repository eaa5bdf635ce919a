#include "host/profile_values.h"

#include "host/command.h"
#include "host/value_text.h"

namespace vlm {

namespace {

constexpr wchar_t kStringType[] = L"string";

// The library takes records by pointer and other values as they are.
template <class Value>
Value AsArgument(Value value) {
    return value;
}
const POINT* AsArgument(const POINT& value) { return &value; }
const RECT* AsArgument(const RECT& value) { return &value; }

template <class Value, class Setter, class Getter>
ValueType MakeType(const wchar_t* name, const wchar_t* help, Value (*parse)(const std::wstring&),
                   std::wstring (*format)(Value), Setter setter, Getter getter) {
    return {
        name,
        help,
        [=](const std::wstring& text) {
            return [setter, value = parse(text)](const ItemPlace& place) {
                setter(place.job, nullptr, place.path, AsArgument(value));
            };
        },
        [=](const ItemPlace& place, const std::wstring* defaultText, std::wstring& text) {
            Value value = {};
            const Value fallback = defaultText ? parse(*defaultText) : Value{};
            const int32_t result = getter(place.job, nullptr, place.path, &value, AsArgument(fallback));
            text = format(value);
            return result;
        },
    };
}

int32_t ReadString(const ItemPlace& place, const std::wstring* defaultText, std::wstring& text) {
    const int32_t length = ProfGetStringLengthW(place.job, nullptr, place.path);
    if (length < 0) {
        if (defaultText) text = *defaultText;
        return length;
    }
    text.resize(length);
    const int32_t result = ProfGetStringW(place.job, nullptr, place.path, text.data(), length + 1, nullptr);
    return result < 0 ? result : PROF_OK;
}

ValueType StringType() {
    return {
        kStringType,
        L"the text as it is",
        [](const std::wstring& text) {
            return [text](const ItemPlace& place) {
                ProfSetStringW(place.job, nullptr, place.path, text.c_str());
            };
        },
        ReadString,
    };
}

} // namespace

std::span<const ValueType> ValueTypes() {
    static const ValueType kTypes[] = {
        StringType(),
        MakeType(L"bool", L"true or false", ParseBool, FormatBool, ProfSetBoolW, ProfGetBoolW),
        MakeType(L"int", L"a number of 32 bits", ParseInt, FormatInt, ProfSetIntW, ProfGetIntW),
        MakeType(L"hex", L"the same, stored and printed in hexadecimal", ParseInt, FormatIntHex,
                 ProfSetIntHexW, ProfGetIntW),
        MakeType(L"int64", L"a number of 64 bits", ParseInt64, FormatInt64, ProfSetInt64W, ProfGetInt64W),
        MakeType(L"int64hex", L"the same, stored and printed in hexadecimal", ParseInt64, FormatInt64Hex,
                 ProfSetInt64HexW, ProfGetInt64W),
        MakeType(L"double", L"a number, stored with six decimals", ParseDouble, FormatDouble, ProfSetDoubleW,
                 ProfGetDoubleW),
        MakeType(L"point", L"x,y", ParsePoint, FormatPoint, ProfSetPointW, ProfGetPointW),
        MakeType(L"rect", L"left,top,right,bottom", ParseRect, FormatRect, ProfSetRectW, ProfGetRectW),
        MakeType(L"rectltwh", L"left,top,width,height", ParseRectLtwh, FormatRectLtwh, ProfSetRectLTWHW,
                 ProfGetRectLTWHW),
        MakeType(L"color", L"#rrggbb or red,green,blue", ParseColor, FormatColor, ProfSetColorrefW,
                 ProfGetColorrefW),
    };
    return kTypes;
}

const ValueType& ValueTypeNamed(const std::wstring* name) {
    const std::wstring wanted = name ? *name : kStringType;
    for (const ValueType& type : ValueTypes())
        if (wanted == type.name) return type;
    FailUsage(L"unknown type: " + wanted);
}

} // namespace vlm
