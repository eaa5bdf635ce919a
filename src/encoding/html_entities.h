// The entities of HTML that the library knows. Both directions use one table.
#pragma once

#include <cstddef>

namespace vxut {

constexpr size_t kHtmlMostEntityUnits = 8; // with "&" and ";"

// Returns the entity of a character, such as "&nbsp;"; null if it has none.
const wchar_t* HtmlEntityOf(wchar_t character) noexcept;

// Returns the character of an entity with its "&" and ";", 0 for an unknown one. Case counts.
wchar_t HtmlCharacterOf(const wchar_t* entity, size_t units) noexcept;

} // namespace vxut
