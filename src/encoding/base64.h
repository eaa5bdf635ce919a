// Base64 between bytes and wide text: the standard alphabet with "=" padding, on one line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace vxut {

// The units of the text of so many bytes. Precondition: bytes is at most 3/4 of SIZE_MAX.
constexpr size_t Base64Length(size_t bytes) { return bytes / 3 * 4 + (bytes % 3 ? 4 : 0); }
// Bytes that are enough to decode a text of so many units.
constexpr size_t Base64Capacity(size_t units) { return (units / 4 + 1) * 3; }

// Writes Base64Length(bytes.size()) units, without a terminator. For all threads.
void EncodeBase64(std::span<const uint8_t> bytes, wchar_t* target) noexcept;

// How many bytes a group of four symbols counts.
enum class Base64Count {
    kByPadding,   // fewer where its third and fourth unit are padding
    kWholeGroups, // always three
};

// Decodes a text, group by group, each of which writes three bytes. Units outside the alphabet are skipped;
// padding, and what a last group lacks, is decoded as zero bits. The padding of a group is looked for in the
// four units from its first symbol on, skipped ones included: white space inside a group, unlike that between
// groups, may make it count too many bytes. Writers and readers of older versions rely on this.
//
// Returns false if target is full and text remains. size is the number of bytes that count, from the start of
// target. For all threads.
bool DecodeBase64(std::wstring_view text, std::span<uint8_t> target, Base64Count count,
                  size_t& size) noexcept;

} // namespace vxut
