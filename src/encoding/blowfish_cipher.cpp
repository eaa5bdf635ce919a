#include "encoding/blowfish_cipher.h"

#include <windows.h>

#include <utility>

namespace vxut {

clsBlowfishCipher::clsBlowfishCipher(std::span<const uint8_t> key) noexcept : tables_(kBlowfishStart) {
    size_t next = 0;
    for (uint32_t& word : tables_.keys) {
        uint32_t part = 0;
        for (int i = 0; i < 4; ++i, next = (next + 1) % key.size()) part = part << 8 | key[next];
        word ^= part;
    }
    scBlowfishBlock block{};
    FillByEncryption(tables_.keys, block);
    for (auto& box : tables_.boxes) FillByEncryption(box, block);
}

clsBlowfishCipher::~clsBlowfishCipher() { SecureZeroMemory(&tables_, sizeof tables_); }

void clsBlowfishCipher::FillByEncryption(std::span<uint32_t> words, scBlowfishBlock& block) noexcept {
    for (size_t i = 0; i < words.size(); i += 2) {
        block = Encrypt(block);
        words[i] = block.left;
        words[i + 1] = block.right;
    }
}

uint32_t clsBlowfishCipher::Mix(uint32_t half) const noexcept {
    const auto& boxes = tables_.boxes;
    return ((boxes[0][half >> 24] + boxes[1][half >> 16 & 0xFF]) ^ boxes[2][half >> 8 & 0xFF]) +
           boxes[3][half & 0xFF];
}

scBlowfishBlock clsBlowfishCipher::Encrypt(scBlowfishBlock block) const noexcept {
    auto [left, right] = block;
    for (int round = 0; round < kBlowfishRounds; round += 2) {
        left ^= tables_.keys[round];
        right ^= Mix(left) ^ tables_.keys[round + 1];
        left ^= Mix(right);
    }
    return {right ^ tables_.keys[kBlowfishRounds + 1], left ^ tables_.keys[kBlowfishRounds]};
}

scBlowfishBlock clsBlowfishCipher::Decrypt(scBlowfishBlock block) const noexcept {
    auto [left, right] = block;
    for (int round = kBlowfishRounds + 1; round > 1; round -= 2) {
        left ^= tables_.keys[round];
        right ^= Mix(left) ^ tables_.keys[round - 1];
        left ^= Mix(right);
    }
    return {right ^ tables_.keys[0], left ^ tables_.keys[1]};
}

} // namespace vxut
