#include "crash/value_text.h"

#include "crash/frame_values.h"
#include "crash/own_memory.h"

#include <cstdio>
#include <cstring>
#include <cwchar>

namespace vxut {
namespace {

constexpr size_t kMostNarrow = 100; // with the terminator
constexpr size_t kMostWide = 101;
constexpr wchar_t kInaccessible[] = L"(inaccessible)";
constexpr wchar_t kDescriptionMark[] = L"@@@<";

using Text = wchar_t[kValueTextUnits];

template <class... Arguments>
void Print(Text& text, const wchar_t* format, Arguments... arguments) {
    _snwprintf(text, kValueTextUnits - 1, format, arguments...);
    text[kValueTextUnits - 1] = L'\0';
}

const void* PointerOf(const DBGStackTraceValue& value) {
    return reinterpret_cast<const void*>(value.value.bits); // NOLINT(performance-no-int-to-ptr)
}

void PrintNarrowText(const DBGStackTraceValue& value, Text& text) {
    char narrow[kMostNarrow] = "";
    wchar_t wide[kMostNarrow] = L"";
    if (!ReadOwnText(narrow, kMostNarrow, value.value.bits) ||
        !MultiByteToWideChar(CP_ACP, 0, narrow, -1, wide, static_cast<int>(kMostNarrow))) {
        std::wmemcpy(wide, kInaccessible, std::size(kInaccessible));
    }
    Print(text, L"%#p '%s'", PointerOf(value), wide);
}

// A text that the engine has written about the value is shown without its mark and its address.
void PrintWideText(const DBGStackTraceValue& value, Text& text) {
    wchar_t wide[kMostWide] = L"";
    if (!ReadOwnText(wide, kMostWide, value.value.bits))
        std::wmemcpy(wide, kInaccessible, std::size(kInaccessible));
    if (std::wcsncmp(wide, kDescriptionMark, std::size(kDescriptionMark) - 1) == 0)
        Print(text, L"%s", wide + std::size(kDescriptionMark) - 2);
    else
        Print(text, L"%#p '%s'", PointerOf(value), wide);
}

} // namespace

void FormatValue(const DBGStackTraceValue& value, wchar_t (&text)[kValueTextUnits]) {
    const auto word = static_cast<uint32_t>(value.value.bits);
    switch (value.type) {
        case kValueUnsigned32:
            return Print(text, L"%u=0x%08x", word, word);
        case kValueUnsigned64:
            return Print(text, L"%I64u=0x%016I64x", value.value.bits, value.value.bits);
        case kValueDecimal32:
            return Print(text, L"%u", word);
        case kValueSigned64:
            return Print(text, L"%I64d", value.value.integer);
        case kValueDouble:
            return Print(text, L"%g", value.value.floating);
        case kValueNarrowText:
            return PrintNarrowText(value, text);
        case kValueWideText:
        case kValueBstr:
            return PrintWideText(value, text);
        case kValuePointer:
            return Print(text, L"0x%016I64x", value.value.bits);
        default:
            return Print(text, L"0x%08x", word);
    }
}

} // namespace vxut
