// The Blowfish block cipher as published: 16 rounds on blocks of 64 bits.
#pragma once

#include <cstdint>
#include <span>

namespace vxut {

constexpr int kBlowfishRounds = 16;

struct scBlowfishTables {
    uint32_t keys[kBlowfishRounds + 2]; // the P-array
    uint32_t boxes[4][256];             // the S-boxes
};
extern const scBlowfishTables kBlowfishStart;

// A block as the two words that the cipher works on.
struct scBlowfishBlock {
    uint32_t left;
    uint32_t right;
};

// A cipher with its key. A const object serves all threads.
class clsBlowfishCipher {
public:
    // key: 1 to 72 bytes; bytes beyond them have no effect.
    explicit clsBlowfishCipher(std::span<const uint8_t> key) noexcept;
    // Clears the tables, from which the key could be computed.
    ~clsBlowfishCipher();
    clsBlowfishCipher(const clsBlowfishCipher&) = delete;
    clsBlowfishCipher& operator=(const clsBlowfishCipher&) = delete;

    scBlowfishBlock Encrypt(scBlowfishBlock block) const noexcept;
    scBlowfishBlock Decrypt(scBlowfishBlock block) const noexcept;

private:
    uint32_t Mix(uint32_t half) const noexcept;
    void FillByEncryption(std::span<uint32_t> words, scBlowfishBlock& block) noexcept;

    scBlowfishTables tables_;
};

} // namespace vxut
