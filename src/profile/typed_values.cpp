#include "profile/typed_values.h"

#include "profile/scan.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

namespace vxut {
namespace {

// 32-bit sums and differences wrap.
LONG WrappedSum(LONG left, LONG right) {
    return static_cast<LONG>(static_cast<ULONG>(left) + static_cast<ULONG>(right));
}
LONG WrappedDifference(LONG left, LONG right) {
    return static_cast<LONG>(static_cast<ULONG>(left) - static_cast<ULONG>(right));
}

bool ScanColorTriple(const wchar_t* text, COLORREF& out) {
    int32_t fields[3];
    if (ScanTuple(text, fields, 3) != 3) return false;
    out = RGB(fields[0], fields[1], fields[2]);
    return true;
}

} // namespace

void clsValueText::Print(const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    _vsnwprintf(text_, kCapacity, format, arguments);
    va_end(arguments);
    text_[kCapacity - 1] = 0;
}

bool scBoolType::Parse(const wchar_t* text, int32_t& out) {
    out = *text == L'T' || *text == L'Y';
    return true;
}

bool scDoubleType::Parse(const wchar_t* text, double& out) {
    out = _wtof(text);
    return true;
}

bool scIntType::Parse(const wchar_t* text, int32_t& out) {
    auto number = static_cast<uint32_t>(out);
    if (ScanHex(text, number) == 0) return ScanDecimal(text, out) != 0;
    out = static_cast<int32_t>(number);
    return true;
}

bool scInt64Type::Parse(const wchar_t* text, int64_t& out) {
    auto number = static_cast<uint64_t>(out);
    if (ScanHex64(text, number) == 0) return ScanDecimal64(text, out) != 0;
    out = static_cast<int64_t>(number);
    return true;
}

bool scPointType::Parse(const wchar_t* text, POINT& out) {
    int32_t fields[] = {out.x, out.y};
    const int count = ScanTuple(text, fields, 2);
    out = {fields[0], fields[1]};
    return count >= 2;
}

bool scRectType::Parse(const wchar_t* text, RECT& out) {
    int32_t fields[] = {out.left, out.top, out.right, out.bottom};
    const int count = ScanTuple(text, fields, 4);
    out = {fields[0], fields[1], fields[2], fields[3]};
    return count == 4;
}

std::tuple<LONG, LONG, LONG, LONG> scRectSizeType::Fields(const RECT& value) {
    return {value.left, value.top, WrappedDifference(value.right, value.left),
            WrappedDifference(value.bottom, value.top)};
}

bool scRectSizeType::Parse(const wchar_t* text, RECT& out) {
    if (!scRectType::Parse(text, out)) return false;
    out.right = WrappedSum(out.right, out.left);
    out.bottom = WrappedSum(out.bottom, out.top);
    return true;
}

bool scColorType::Parse(const wchar_t* text, COLORREF& out) {
    uint32_t number = out;
    if (ScanHex(text, number) == 0) return ScanColorTriple(text, out);
    out = number;
    return true;
}

bool ParseBoolText(const wchar_t* text, int32_t& out) {
    if (!text) return false;
    out = std::wcschr(L"TY", *text) != nullptr;
    return true;
}

bool ParseIntText(const wchar_t* text, int32_t& out) { return text && ScanDecimal(text, out) == 1; }

bool ParseInt64Text(const wchar_t* text, int64_t& out) { return text && ScanDecimal64(text, out) == 1; }

bool ParseRectText(const wchar_t* text, RECT& out) { return text && scRectType::Parse(text, out); }

bool ParseColorText(const wchar_t* text, COLORREF& out) {
    uint32_t number = 0;
    if (!text) return false;
    if (ScanHex(text, number) != 1) return ScanColorTriple(text, out);
    out = number;
    return true;
}

} // namespace vxut
