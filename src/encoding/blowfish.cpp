#include "encoding/blowfish.h"

#include "base/debug.h"

#include <bit>
#include <cstring>

namespace vxut {
namespace {

static_assert(std::endian::native == std::endian::little, "blocks are loaded as they are");
static_assert(sizeof(scBlowfishBlock) == clsBlowfish::kBlock);

template <class Change>
void ChangeBlock(uint8_t* bytes, Change change) {
    scBlowfishBlock block;
    std::memcpy(&block, bytes, sizeof block);
    block = change(block);
    std::memcpy(bytes, &block, sizeof block);
}

template <class Change>
void ChangeWholeBlocks(std::span<uint8_t> bytes, Change change) {
    for (; bytes.size() >= clsBlowfish::kBlock; bytes = bytes.subspan(clsBlowfish::kBlock))
        ChangeBlock(bytes.data(), change);
}

bool HasRest(std::span<const uint8_t> bytes) { return bytes.size() % clsBlowfish::kBlock != 0; }
uint8_t* LastBlock(std::span<uint8_t> bytes) { return bytes.data() + bytes.size() - clsBlowfish::kBlock; }

} // namespace

// The copy has the default code page, whatever that of the argument is.
clsBlowfish::clsBlowfish(const String& password) : cipher_(ExtendedKey(String(password).Narrow())) {}

clsBlowfish::Key clsBlowfish::ExtendedKey(const char* password) noexcept {
    Key key{};
    const size_t length = strnlen(password, key.size());
    std::memcpy(key.data(), password, length);
    for (size_t i = length; i < key.size(); ++i) {
        const size_t previous = i > 0 ? key[i - 1] : 0;
        key[i] = static_cast<uint8_t>(previous * i * 97 % 255 + 1);
    }
    return key;
}

bool clsBlowfish::Encode(std::span<uint8_t> bytes) const {
    if (bytes.size() < kBlock) {
        DebugWrite(L"clsBlowfish::Encode: buffer too small!!!");
        return false;
    }
    const auto encrypt = [this](scBlowfishBlock block) { return cipher_.Encrypt(block); };
    if (HasRest(bytes)) ChangeBlock(LastBlock(bytes), encrypt);
    ChangeWholeBlocks(bytes, encrypt);
    return true;
}

bool clsBlowfish::Decode(std::span<uint8_t> bytes) const {
    if (bytes.size() < kBlock) {
        DebugWrite(L"clsBlowfish::Decode: buffer too small!!!");
        return false;
    }
    const auto decrypt = [this](scBlowfishBlock block) { return cipher_.Decrypt(block); };
    ChangeWholeBlocks(bytes, decrypt);
    if (HasRest(bytes)) ChangeBlock(LastBlock(bytes), decrypt);
    return true;
}

} // namespace vxut
