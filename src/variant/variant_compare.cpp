#include "variant/variant.h"

#include "base/debug.h"
#include "base/language.h"
#include "checks/validate.h"
#include "variant/variant_types.h"

#include <climits>
#include <cstring>

namespace vxut {
namespace {

constexpr VARTYPE kFirstValueKind = VT_I2; // the kinds before it are empty and null
constexpr VARTYPE kUnusedKindBits = 0xF00;

// False for NaN.
template <class Number>
bool AreEqual(Number left, Number right) {
    return left <= right && left >= right;
}

int LengthOf(std::wstring_view text) {
    return static_cast<int>(text.size() < INT_MAX ? text.size() : INT_MAX);
}

bool AreTextsEqual(std::wstring_view left, std::wstring_view right) {
    if (left.empty() || right.empty()) return left.empty() && right.empty();
    return CompareStringW(MAKELCID(UserLanguageId(), SORT_DEFAULT), SORT_STRINGSORT, left.data(),
                          LengthOf(left), right.data(), LengthOf(right)) == CSTR_EQUAL;
}

// Values that the system converts to a double.
template <class Convert>
bool AreConvertedEqual(Convert convert, const VARIANT& left, const VARIANT& right) {
    double leftNumber = 0;
    double rightNumber = 0;
    return SUCCEEDED(convert(left, &leftNumber)) && SUCCEEDED(convert(right, &rightNumber)) &&
           AreEqual(leftNumber, rightNumber);
}

bool AreOfUnknownTypeEqual(const VARIANT& left, const VARIANT& right) {
    if (IsDeveloperLogin()) DebugWrite(L"WRN: clsVariant: don't know how to compare data type 0x%x", left.vt);
    // All that is known of such a value is its bytes.
    return std::memcmp(&left, &right, sizeof(VARIANT)) == 0; // NOLINT(bugprone-suspicious-memory-comparison)
}

bool AreOfOneTypeEqual(const VARIANT& left, const VARIANT& right) {
    switch (left.vt) {
        case VT_EMPTY:
        case VT_NULL:
            return true;
        case VT_I1:
        case VT_UI1:
            return left.bVal == right.bVal;
        case VT_I2:
        case VT_BOOL:
        case VT_UI2:
            return left.uiVal == right.uiVal;
        case VT_I4:
        case VT_ERROR:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
            return left.ulVal == right.ulVal;
        case VT_I8:
        case VT_UI8:
        case VT_INT_PTR:
        case VT_UINT_PTR:
            return left.ullVal == right.ullVal;
        case VT_R4:
            return AreEqual(left.fltVal, right.fltVal);
        case VT_R8:
        case VT_DATE:
            return AreEqual(left.dblVal, right.dblVal);
        case VT_CY:
            return AreConvertedEqual(
                [](const VARIANT& value, double* number) { return VarR8FromCy(value.cyVal, number); }, left,
                right);
        case VT_DECIMAL:
            return AreConvertedEqual(
                [](const VARIANT& value, double* number) {
                    return VarR8FromDec(const_cast<DECIMAL*>(&value.decVal), number);
                },
                left, right);
        case VT_BSTR:
            return AreTextsEqual(TextOfVariant(left), TextOfVariant(right));
        default:
            return AreOfUnknownTypeEqual(left, right);
    }
}

std::wstring_view ViewOf(const String& text) { return {text.Text(), static_cast<size_t>(text.Length())}; }

bool AreStringsEqual(const clsVariant& left, const clsVariant& right) {
    String leftText;
    String rightText;
    return left.ToString(leftText) && right.ToString(rightText) &&
           AreTextsEqual(ViewOf(leftText), ViewOf(rightText));
}

} // namespace

bool clsVariant::Compare(const clsVariant& other) const noexcept {
    if (vt == other.vt) return AreOfOneTypeEqual(*this, other);
    if ((vt & kVariantKindBits) < kFirstValueKind || (other.vt & kVariantKindBits) < kFirstValueKind)
        return (vt & kUnusedKindBits) != 0;
    const Kind group = Group();
    if (group == other.Group() && group == kNumeric) return AreEqual(ToDouble(), other.ToDouble());
    if (group == other.Group() && group == kString) return AreStringsEqual(*this, other);
    if (IsDeveloperLogin())
        DebugWrite(L"WRN: clsVariant: don't know how to compare data types 0x%x and 0x%x", vt, other.vt);
    return false;
}

} // namespace vxut
