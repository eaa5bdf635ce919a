// What is known of the types of variants.
#pragma once

#include "variant/variant.h"

namespace vxut {

constexpr VARTYPE kVariantKindBits = 0xFFF; // of a type, without the bits for arrays and references
constexpr VARTYPE kLastVariantKind = VT_CLSID;

clsVariant::Kind GroupOfVariantKind(VARTYPE kind) noexcept;

// The bytes that a value of the type has in a stream; 0 if it has none. Those of VT_FILETIME and VT_CLSID are
// fewer than the values have: stored data depends on it.
size_t StoredSizeOfVariant(VARTYPE type) noexcept;

// Where a VARIANT has the value of a type.
inline uint8_t* ValueOfVariant(VARIANT& variant) noexcept {
    return reinterpret_cast<uint8_t*>(&variant.llVal);
}
inline const uint8_t* ValueOfVariant(const VARIANT& variant) noexcept {
    return reinterpret_cast<const uint8_t*>(&variant.llVal);
}

inline std::wstring_view TextOfVariant(const VARIANT& variant) noexcept {
    return variant.bstrVal ? std::wstring_view(variant.bstrVal, SysStringLen(variant.bstrVal))
                           : std::wstring_view();
}

} // namespace vxut
