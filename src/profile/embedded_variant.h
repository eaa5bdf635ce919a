// Variants as values of items: "var://" and the text form of their bytes, without a password.
#pragma once

#include "profile/item_path.h"
#include "variant/variant.h"

#include <string_view>

namespace vxut {

// Both add what clsVariant::Save() writes; a reference is stored as what it refers to. AppendVariant() adds
// an item, SetVariant() replaces the first plain item of the name if there is one. They return the system's
// error, with nothing changed, if a reference cannot be resolved, and throw std::bad_alloc.
DWORD AppendVariant(const scPlace& place, const wchar_t* path, const VARIANT& value);
DWORD SetVariant(const scPlace& place, const wchar_t* path, const VARIANT& value);

// The variant that a value is. An empty or damaged one is empty; one without "var://" is a string. Throws
// std::bad_alloc.
clsVariant VariantOfText(std::wstring_view text);

// Moves a variant to one of a caller's, whose old contents are freed.
void PassVariant(clsVariant value, VARIANT& target) noexcept;

} // namespace vxut
