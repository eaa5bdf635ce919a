// The digits of numbers in text.
#pragma once

#include <cstdint>

namespace vxut {

// Returns the value of a digit, or base if the unit is none. The base is at most 16; letters may be of either
// case.
constexpr uint32_t DigitOf(wchar_t unit, uint32_t base) noexcept {
    uint32_t digit = base;
    if (unit >= L'0' && unit <= L'9') digit = static_cast<uint32_t>(unit - L'0');
    if (unit >= L'a' && unit <= L'f') digit = static_cast<uint32_t>(unit - L'a' + 10);
    if (unit >= L'A' && unit <= L'F') digit = static_cast<uint32_t>(unit - L'A' + 10);
    return digit < base ? digit : base;
}

} // namespace vxut
