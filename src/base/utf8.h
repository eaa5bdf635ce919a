// UTF-8 as the library reads it: characters of one to three bytes, each of which becomes one 16-bit unit.
#pragma once

#include <bit>
#include <cstdint>

namespace vxut {

enum class Utf8Fault {
    kNone,
    kSequence, // a stray continuation byte, or a missing one
    kEncoding, // a longer form than the character needs
    kTooWide   // a character beyond 16 bits
};

// One character that was read. Without a fault it consists of length bytes.
struct scUtf8Unit {
    Utf8Fault fault = Utf8Fault::kNone;
    int length = 1;
    wchar_t unit = 0;
};

// Reads a character of more than one byte. byteAt(i) returns the byte at offset i, and 0 beyond the end.
template <class ByteAt>
scUtf8Unit ReadUtf8Unit(ByteAt byteAt) {
    // The largest value of each shorter form, from that of one byte on.
    constexpr uint64_t kLargestShorter[] = {0x7F,      0x7FF,      0xFFFF,     0x1FFFFF,
                                            0x3FFFFFF, 0x7FFFFFFF, 0xFFFFFFFFF};
    const uint8_t lead = byteAt(0);
    const int length = std::countl_one(lead);
    if (length < 2) return {Utf8Fault::kSequence};
    uint64_t value = lead & (0x3F >> (length - 1));
    for (int i = 1; i < length; ++i) {
        const uint8_t next = byteAt(i);
        if ((next & 0xC0) != 0x80) return {Utf8Fault::kSequence};
        value = value << 6 | (next & 0x3F);
    }
    if (value <= kLargestShorter[length - 2]) return {Utf8Fault::kEncoding};
    if (value > 0xFFFF) return {Utf8Fault::kTooWide};
    return {Utf8Fault::kNone, length, static_cast<wchar_t>(value)};
}

// Returns whether a zero-terminated text is well-formed UTF-8 in its shortest form. Characters from U+10000
// on make it malformed; the empty text is well-formed.
bool IsValidUtf8(const char* bytes);

} // namespace vxut
