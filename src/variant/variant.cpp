#include "variant/variant.h"

#include "base/debug.h"
#include "base/shielded_read.h"
#include "checks/validate.h"
#include "variant/variant_types.h"

#include <climits>
#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

namespace vxut {
namespace {

constexpr size_t kNumberUnits = 30;

// Types that the system may refuse to copy although their values are plain bytes.
bool IsCopiedAsBytes(VARTYPE type) {
    const VARTYPE target = type & ~VT_BYREF;
    return target == VT_FILETIME || target == VT_CLSID;
}

// The bytes of a value, or what a reference leads to.
HRESULT CopyBytes(clsVariant& target, const VARIANT& source) {
    const VARTYPE type = source.vt & ~VT_BYREF;
    const void* const value = source.vt & VT_BYREF ? source.byref : ValueOfVariant(source);
    uint8_t bytes[sizeof(source.llVal)] = {};
    if (!value || !ReadShielded(bytes, value, StoredSizeOfVariant(type))) return E_INVALIDARG;
    std::memcpy(ValueOfVariant(target), bytes, sizeof bytes);
    target.vt = type;
    return S_OK;
}

bool IsLargeInteger(VARTYPE type) {
    const VARTYPE kind = type & ~VT_BYREF;
    return kind == VT_I8 || kind == VT_UI8;
}

// The text of a 64-bit integer, which the conversions of older systems do not know.
HRESULT FormatLargeInteger(const VARIANT& number, clsVariant& text) {
    uint64_t value = 0;
    if (!ReadShielded(&value, number.vt & VT_BYREF ? number.byref : ValueOfVariant(number), sizeof value))
        return E_INVALIDARG;
    wchar_t units[kNumberUnits];
    const bool isSigned = (number.vt & kVariantKindBits) == VT_I8;
    const int length = _snwprintf(units, kNumberUnits, isSigned ? L"%I64d" : L"%I64u", value);
    return text.AssignText({units, static_cast<size_t>(length)});
}

} // namespace

clsVariant::clsVariant() noexcept : VARIANT{} { VariantInit(this); }

// What VariantClear() refuses holds plain bytes, or pointers that it does not own.
void clsVariant::Clear() noexcept {
    VariantClear(this);
    std::memset(static_cast<VARIANT*>(this), 0, sizeof(VARIANT));
}

void clsVariant::Swap(clsVariant& other) noexcept {
    std::swap(static_cast<VARIANT&>(*this), static_cast<VARIANT&>(other));
}

HRESULT clsVariant::Assign(const VARIANT& source) noexcept {
    clsVariant copy;
    HRESULT result = S_OK;
    if (IsCopiedAsBytes(source.vt))
        result = CopyBytes(copy, source);
    else
        result = VariantCopyInd(&copy, const_cast<VARIANT*>(&source));
    if (FAILED(result)) copy.Clear();
    Swap(copy);
    return result;
}

HRESULT clsVariant::AssignText(std::wstring_view text) noexcept {
    clsVariant copy;
    HRESULT result = E_OUTOFMEMORY;
    if (text.size() <= UINT_MAX / sizeof(wchar_t) - sizeof(wchar_t)) {
        copy.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
        if (copy.bstrVal) {
            copy.vt = VT_BSTR;
            result = S_OK;
        }
    }
    Swap(copy);
    return result;
}

clsVariant::Kind clsVariant::Group() const noexcept { return GroupOfVariantKind(vt & kVariantKindBits); }

bool clsVariant::ToString(String& target) const noexcept {
    try {
        target.Empty();
        clsVariant copy;
        if (vt != VT_BSTR && (FAILED(copy.Assign(*this)) || !copy.ChangeType(VT_BSTR))) return false;
        const std::wstring_view text = TextOfVariant(vt == VT_BSTR ? *this : copy);
        target.Append(text.data(), static_cast<int64_t>(text.size()));
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

double clsVariant::ToDouble() const noexcept {
    if (vt == VT_R8) return dblVal;
    clsVariant copy;
    return SUCCEEDED(copy.Assign(*this)) && copy.ChangeType(VT_R8) ? copy.dblVal : 0.0;
}

bool clsVariant::ChangeType(VARTYPE type) noexcept {
    if (vt == type) return true;
    HRESULT result = DISP_E_TYPEMISMATCH;
    if (!IsLargeInteger(vt)) {
        result = VariantChangeType(this, this, 0, type);
    } else if (type == VT_BSTR) {
        clsVariant text;
        result = FormatLargeInteger(*this, text);
        if (SUCCEEDED(result)) Swap(text);
    }
    if (FAILED(result) && IsDeveloperLogin())
        DebugWrite(L"WRN: clsVariant: cannot change data type 0x%x to 0x%x (%08x)", vt, type,
                   static_cast<uint32_t>(result));
    return SUCCEEDED(result);
}

} // namespace vxut
