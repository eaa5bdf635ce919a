// The encryption of blocks of bytes with a password.
#pragma once

#include "encoding/blowfish_cipher.h"
#include "text/string.h"

#include <array>
#include <cstdint>
#include <span>

namespace vxut {

// Encrypts and decrypts in place. Bytes are the 8-byte blocks of the cipher, two little-endian words each. If
// there is a rest, the last 8 bytes are one more block, which overlaps the last whole one: it is the first to
// be encrypted and the last to be decrypted. For all threads once it is constructed.
class clsBlowfish {
public:
    static constexpr size_t kBlock = 8;
    static constexpr size_t kKey = 72;
    using Key = std::array<uint8_t, kKey>;

    // The password counts as narrow text in the library's default code page, up to its first zero byte. May
    // throw std::bad_alloc.
    explicit clsBlowfish(const String& password);

    // The key of a narrow password: its first 72 bytes, extended to 72 by a rule that both sides share.
    static Key ExtendedKey(const char* password) noexcept;

    // Return false, and report it on the debug channel, for fewer than 8 bytes, which stay as they are.
    bool Encode(std::span<uint8_t> bytes) const;
    bool Decode(std::span<uint8_t> bytes) const;

private:
    const clsBlowfishCipher cipher_;
};

} // namespace vxut
