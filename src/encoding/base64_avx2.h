// The bulk of Base64 with vector instructions. The functions do as many whole steps as the buffers permit and
// leave the rest to the caller.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace vxut {

// Whether processor and system support the functions below.
bool HasAvx2() noexcept;

// Encodes from the start and returns the number of bytes encoded, a multiple of 3.
size_t EncodeBase64Avx2(std::span<const uint8_t> bytes, wchar_t* target) noexcept;

// Decodes from the start up to a unit that is not a symbol, padding included. Returns the number of groups of
// four symbols. May write to all of target, also behind what it has decoded.
size_t DecodeBase64Avx2(std::wstring_view text, std::span<uint8_t> target) noexcept;

} // namespace vxut
