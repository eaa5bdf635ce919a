#include "prof/parse.h"

#include "profile/export_support.h"
#include "profile/typed_values.h"

using namespace vxut;

namespace {

template <class Value>
void Parse(bool (*parse)(const wchar_t*, Value&), const wchar_t* text, Value* out, const Value* fallback) {
    if (!out) return;
    Value value = *out;
    if (parse(text, value))
        *out = value;
    else if (fallback)
        *out = *fallback;
}

// Narrow text is converted first; without memory for it, out is left unchanged.
template <class Value>
void Parse(bool (*parse)(const wchar_t*, Value&), const char* text, Value* out, const Value* fallback) {
    Guarded([=] { Parse<Value>(parse, clsWideArgument(text), out, fallback); });
}

} // namespace

VXUT_API void ProfLPSTRtoBOOLW(const wchar_t* text, int* out, int defaultValue) {
    Parse(ParseBoolText, text, out, &defaultValue);
}
VXUT_API void ProfLPSTRtoBOOLA(const char* text, int* out, int defaultValue) {
    Parse(ParseBoolText, text, out, &defaultValue);
}

VXUT_API void ProfLPSTRtoINTW(const wchar_t* text, int32_t* out, int32_t defaultValue) {
    Parse(ParseIntText, text, out, &defaultValue);
}
VXUT_API void ProfLPSTRtoINTA(const char* text, int32_t* out, int32_t defaultValue) {
    Parse(ParseIntText, text, out, &defaultValue);
}

VXUT_API void ProfLPSTRtoINT64W(const wchar_t* text, int64_t* out, int64_t defaultValue) {
    Parse(ParseInt64Text, text, out, &defaultValue);
}
VXUT_API void ProfLPSTRtoINT64A(const char* text, int64_t* out, int64_t defaultValue) {
    Parse(ParseInt64Text, text, out, &defaultValue);
}

VXUT_API void ProfLPSTRtoRECTW(const wchar_t* text, RECT* out, const RECT* defaultValue) {
    Parse(ParseRectText, text, out, defaultValue);
}
VXUT_API void ProfLPSTRtoRECTA(const char* text, RECT* out, const RECT* defaultValue) {
    Parse(ParseRectText, text, out, defaultValue);
}

VXUT_API void ProfLPSTRtoCOLORREFW(const wchar_t* text, COLORREF* out, COLORREF defaultValue) {
    Parse(ParseColorText, text, out, &defaultValue);
}
VXUT_API void ProfLPSTRtoCOLORREFA(const char* text, COLORREF* out, COLORREF defaultValue) {
    Parse(ParseColorText, text, out, &defaultValue);
}
