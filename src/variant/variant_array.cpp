#include "variant/variant.h"

#include "base/debug.h"
#include "checks/validate.h"
#include "variant/variant_types.h"

namespace vxut {
namespace {

void Report(const wchar_t* format, int32_t first, int32_t second) {
    if (IsDeveloperLogin()) DebugWrite(format, first, second);
}

// Keeps an array locked for a scope.
class ArrayLock {
public:
    explicit ArrayLock(SAFEARRAY* array) noexcept
        : array_(array && SUCCEEDED(SafeArrayLock(array)) ? array : nullptr) {}
    ~ArrayLock() {
        if (array_) SafeArrayUnlock(array_);
    }
    ArrayLock(const ArrayLock&) = delete;
    ArrayLock& operator=(const ArrayLock&) = delete;

    bool IsHeld() const noexcept { return array_ != nullptr; }

private:
    SAFEARRAY* const array_;
};

SAFEARRAY* ArrayOf(const VARIANT& variant) {
    if ((variant.vt & VT_ARRAY) == 0) return nullptr;
    if ((variant.vt & VT_BYREF) == 0) return variant.parray;
    return variant.pparray ? *variant.pparray : nullptr;
}

// The number of indexes that are within their bounds, up to the first that is not. The array's bounds begin
// with those of the last dimension.
uint32_t CountWithinBounds(const SAFEARRAY& array, const int32_t* indexes) {
    uint32_t passed = 0;
    for (; passed < array.cDims; ++passed) {
        const int32_t index = indexes[array.cDims - 1 - passed];
        const ULONG elements = array.rgsabound[passed].cElements;
        if (static_cast<uint32_t>(index) < elements) continue;
        Report(L"out of bounds (%d %d)", index, static_cast<int32_t>(elements));
        Report(L"out of bounds (2) (%d %d)", static_cast<int32_t>(passed), array.cDims);
        break;
    }
    return passed;
}

// The element's place in the data: the first dimension varies fastest.
const uint8_t* ElementAt(const SAFEARRAY& array, const int32_t* indexes) {
    size_t place = 0;
    for (uint32_t dimension = array.cDims; dimension-- > 0;)
        place = place * array.rgsabound[array.cDims - 1 - dimension].cElements +
                static_cast<size_t>(indexes[dimension]);
    return static_cast<const uint8_t*>(array.pvData) + place * array.cbElements;
}

void ReadElement(const uint8_t* element, size_t size, VARTYPE kind, clsVariant& target) {
    if (kind == VT_VARIANT && size == sizeof(VARIANT)) {
        target.Assign(*reinterpret_cast<const VARIANT*>(element));
    } else if ((kind == VT_UNKNOWN || kind == VT_DISPATCH) && size == sizeof(IUnknown*)) {
        target.punkVal = *reinterpret_cast<IUnknown* const*>(element);
        if (target.punkVal) target.punkVal->AddRef();
        target.vt = kind;
    }
}

} // namespace

void clsVariant::GetArrayElement(clsVariant& target, const int32_t* indexes, uint32_t count) const noexcept {
    clsVariant element;
    SAFEARRAY* const array = ArrayOf(*this);
    const ArrayLock lock(array);
    if (lock.IsHeld() && array->cDims != count) {
        Report(L"Dimension mismatch: %d %d", array->cDims, static_cast<int32_t>(count));
    } else if (lock.IsHeld() && count > 0 && CountWithinBounds(*array, indexes) == count) {
        ReadElement(ElementAt(*array, indexes), array->cbElements, vt & kVariantKindBits, element);
    }
    target.Swap(element);
}

} // namespace vxut
