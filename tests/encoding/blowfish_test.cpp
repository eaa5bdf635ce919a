#include "encoding/blowfish.h"

#include "tests/support/debug_listener.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace vxut {
namespace {

std::array<uint8_t, 8> KeyOf(uint64_t number) {
    std::array<uint8_t, 8> key;
    for (size_t i = 0; i < key.size(); ++i) key[i] = static_cast<uint8_t>(number >> (56 - 8 * i));
    return key;
}

uint64_t NumberOf(scBlowfishBlock block) { return uint64_t{block.left} << 32 | block.right; }
scBlowfishBlock BlockOf(uint64_t number) {
    return {static_cast<uint32_t>(number >> 32), static_cast<uint32_t>(number)};
}

// The published vectors for keys of 64 bits.
TEST(BlowfishTest, TheCipherAgreesWithThePublishedVectors) {
    const struct {
        uint64_t key, clear, cipher;
    } rows[] = {
        {0x0000000000000000, 0x0000000000000000, 0x4EF997456198DD78},
        {0xFFFFFFFFFFFFFFFF, 0xFFFFFFFFFFFFFFFF, 0x51866FD5B85ECB8A},
        {0x3000000000000000, 0x1000000000000001, 0x7D856F9A613063F2},
        {0x1111111111111111, 0x1111111111111111, 0x2466DD878B963C9D},
        {0x0123456789ABCDEF, 0x1111111111111111, 0x61F9C3802281B096},
        {0x1111111111111111, 0x0123456789ABCDEF, 0x7D0CC630AFDA1EC7},
        {0xFEDCBA9876543210, 0x0123456789ABCDEF, 0x0ACEAB0FC6A0A28D},
        {0x7CA110454A1A6E57, 0x01A1D6D039776742, 0x59C68245EB05282B},
        {0x0131D9619DC1376E, 0x5CD54CA83DEF57DA, 0xB1B8CC0B250F09A0},
        {0x07A1133E4A0B2686, 0x0248D43806F67172, 0x1730E5778BEA1DA4},
        {0x3849674C2602319E, 0x51454B582DDF440A, 0xA25E7856CF2651EB},
        {0x04B915BA43FEB5B6, 0x42FD443059577FA2, 0x353882B109CE8F1A},
        {0x0113B970FD34F2CE, 0x059B5E0851CF143A, 0x48F4D0884C379918},
        {0x0170F175468FB5E6, 0x0756D8E0774761D2, 0x432193B78951FC98},
        {0x43297FAD38E373FE, 0x762514B829BF486A, 0x13F04154D69D1AE5},
        {0x07A7137045DA2A16, 0x3BDD119049372802, 0x2EEDDA93FFD39C79},
        {0x04689104C2FD3B2F, 0x26955F6835AF609A, 0xD887E0393C2DA6E3},
        {0x37D06BB516CB7546, 0x164D5E404F275232, 0x5F99D04F5B163969},
        {0x1F08260D1AC2465E, 0x6B056E18759F5CCA, 0x4A057A3B24D3977B},
        {0x584023641ABA6176, 0x004BD6EF09176062, 0x452031C1E4FADA8E},
        {0x025816164629B007, 0x480D39006EE762F2, 0x7555AE39F59B87BD},
        {0x49793EBC79B3258F, 0x437540C8698F3CFA, 0x53C55F9CB49FC019},
        {0x4FB05E1515AB73A7, 0x072D43A077075292, 0x7A8E7BFA937E89A3},
        {0x49E95D6D4CA229BF, 0x02FE55778117F12A, 0xCF9C5D7A4986ADB5},
        {0x018310DC409B26D6, 0x1D9D5C5018F728C2, 0xD1ABB290658BC778},
        {0x1C587F1C13924FEF, 0x305532286D6F295A, 0x55CB3774D13EF201},
        {0x0101010101010101, 0x0123456789ABCDEF, 0xFA34EC4847B268B2},
        {0x1F1F1F1F0E0E0E0E, 0x0123456789ABCDEF, 0xA790795108EA3CAE},
        {0xE0FEE0FEF1FEF1FE, 0x0123456789ABCDEF, 0xC39E072D9FAC631D},
        {0x0000000000000000, 0xFFFFFFFFFFFFFFFF, 0x014933E0CDAFF6E4},
        {0xFFFFFFFFFFFFFFFF, 0x0000000000000000, 0xF21E9A77B71C49BC},
        {0x0123456789ABCDEF, 0x0000000000000000, 0x245946885754369A},
        {0xFEDCBA9876543210, 0xFFFFFFFFFFFFFFFF, 0x6B5C5A9C5D9E0A5A},
    };
    for (const auto& row : rows) {
        const clsBlowfishCipher cipher(KeyOf(row.key));
        EXPECT_EQ(NumberOf(cipher.Encrypt(BlockOf(row.clear))), row.cipher) << std::hex << row.key;
        EXPECT_EQ(NumberOf(cipher.Decrypt(BlockOf(row.cipher))), row.clear) << std::hex << row.key;
    }
}

// Of the published set with keys of 1 to 24 bytes.
TEST(BlowfishTest, KeysOfOtherLengthsAreRepeated) {
    const uint8_t key[] = {0xF0, 0xE1, 0xD2, 0xC3, 0xB4, 0xA5, 0x96, 0x87, 0x78, 0x69, 0x5A, 0x4B,
                           0x3C, 0x2D, 0x1E, 0x0F, 0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77};
    const struct {
        size_t length;
        uint64_t cipher;
    } rows[] = {{1, 0xF9AD597C49DB005E},  {2, 0xE91D21C1D961A6D6},  {3, 0xE9C2B70A1BC65CF3},
                {5, 0xB39E44481BDB1E6E},  {7, 0x8BB77032F960629D},  {11, 0x3A833C9AFFC537F6},
                {16, 0x93142887EE3BE15C}, {17, 0x03429E838CE2D14B}, {24, 0x05044B62FA52D080}};
    for (const auto& row : rows) {
        const clsBlowfishCipher cipher({key, row.length});
        EXPECT_EQ(NumberOf(cipher.Encrypt(BlockOf(0xFEDCBA9876543210))), row.cipher) << row.length;
    }
}

TEST(BlowfishTest, PasswordsAreExtendedAsUnsignedBytes) {
    const clsBlowfish::Key key = clsBlowfish::ExtendedKey("a\xFF");
    EXPECT_EQ(key[0], 'a');
    EXPECT_EQ(key[1], 0xFF);
    EXPECT_EQ(key[2], 0xFF * 2 * 97 % 255 + 1); // 1: no sign enters the product
    EXPECT_EQ(key[3], 1 * 3 * 97 % 255 + 1);
    EXPECT_EQ(key[71], key[70] * 71 * 97 % 255 + 1);
    for (const uint8_t byte : key) EXPECT_NE(byte, 0);

    const std::string longest(80, 'x');
    EXPECT_EQ(clsBlowfish::ExtendedKey(longest.c_str()), clsBlowfish::ExtendedKey(longest.substr(8).c_str()));
    EXPECT_EQ(clsBlowfish::ExtendedKey("")[0], 1);
}

TEST(BlowfishTest, BlocksAreLittleEndianAndTheLastOneOverlaps) {
    const clsBlowfish blowfish(L"password");
    const clsBlowfishCipher cipher(clsBlowfish::ExtendedKey("password"));
    for (const size_t size : {8, 9, 15, 16, 100}) {
        std::vector<uint8_t> clear(size);
        for (size_t i = 0; i < size; ++i) clear[i] = static_cast<uint8_t>(i * 7);
        std::vector<uint8_t> bytes = clear;
        ASSERT_TRUE(blowfish.Encode(bytes));

        std::vector<uint8_t> expected = clear;
        const auto encrypt = [&](size_t at) {
            scBlowfishBlock block;
            std::memcpy(&block.left, &expected[at], 4);
            std::memcpy(&block.right, &expected[at + 4], 4);
            block = cipher.Encrypt(block);
            std::memcpy(&expected[at], &block.left, 4);
            std::memcpy(&expected[at + 4], &block.right, 4);
        };
        if (size % 8) encrypt(size - 8);
        for (size_t at = 0; at + 8 <= size; at += 8) encrypt(at);
        EXPECT_EQ(bytes, expected) << size;

        ASSERT_TRUE(blowfish.Decode(bytes));
        EXPECT_EQ(bytes, clear) << size;
    }
}

TEST(BlowfishTest, FewerThanEightBytesAreRefused) {
    DebugListener listener;
    const clsBlowfish blowfish(L"password");
    uint8_t bytes[7] = {1, 2, 3};
    EXPECT_FALSE(blowfish.Encode(bytes));
    EXPECT_FALSE(blowfish.Decode(bytes));
    EXPECT_EQ(bytes[2], 3);
    EXPECT_TRUE(listener.Heard(L"clsBlowfish::Encode: buffer too small!!!"));
    EXPECT_TRUE(listener.Heard(L"clsBlowfish::Decode: buffer too small!!!"));
}

} // namespace
} // namespace vxut
