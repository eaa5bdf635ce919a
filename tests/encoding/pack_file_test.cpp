#include "encoding/pack_file.h"

#include "encoding/deflate.h"
#include "tests/support/fake_stream.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace vxut {
namespace {

using test::FakeStream;

constexpr size_t kBuffer = 0x100000;

std::string Noise(size_t size) {
    std::mt19937_64 random(3);
    std::string bytes(size, '\0');
    for (size_t i = 0; i + 8 <= size; i += 8) {
        const uint64_t number = random();
        bytes.replace(i, 8, reinterpret_cast<const char*>(&number), 8);
    }
    return bytes;
}

std::string Pack(const std::string& bytes, uint32_t mode = kDeflateProfiles, uint32_t* crc = nullptr) {
    FakeStream from(bytes);
    FakeStream to;
    clsFile source(&from);
    clsFile target(&to);
    EXPECT_EQ(UtilPackFile(target, source, mode, crc, kToEnd), Z_OK);
    return to.bytes;
}

struct Unpacked {
    int32_t code;
    std::string bytes;
};

Unpacked Unpack(const std::string& packed, int64_t length = kToEnd) {
    FakeStream from(packed);
    FakeStream to;
    clsFile source(&from);
    clsFile target(&to);
    const int32_t code = UtilUnpackFile(target, source, 0, length);
    return {code, to.bytes};
}

TEST(PackFileTest, AllSizesAndModesRoundTrip) {
    for (const size_t size : {size_t{0}, size_t{1}, kBuffer - 1, kBuffer, kBuffer + 1, 2 * kBuffer + 8}) {
        for (const std::string& bytes : {std::string(size, 'a'), Noise(size)}) {
            uint32_t crc = 99;
            const std::string packed = Pack(bytes, kDeflateProfiles, &crc);
            EXPECT_EQ(crc, crc32(0, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(size)));
            const Unpacked unpacked = Unpack(packed);
            EXPECT_EQ(unpacked.code, Z_STREAM_END);
            EXPECT_TRUE(unpacked.bytes == bytes) << size;
        }
    }
    const std::string bytes = Noise(100) + std::string(5000, 'b') + Noise(100);
    for (uint32_t mode = 0; mode < 9; ++mode) EXPECT_TRUE(Unpack(Pack(bytes, mode)).bytes == bytes) << mode;
}

TEST(PackFileTest, TheModesAreThoseOfTheTable) {
    const int rows[][3] = {{-1, 8, 0}, {1, 8, 0}, {-1, 8, 0}, {9, 8, 0}, {9, 9, 1},
                           {9, 9, 0},  {1, 9, 1}, {1, 7, 0},  {-1, 8, 0}};
    for (uint32_t mode = 0; mode < std::size(rows); ++mode) {
        const scDeflateMode settings = SettingsOf(mode);
        EXPECT_EQ(settings.level, rows[mode][0]) << mode;
        EXPECT_EQ(settings.memoryLevel, rows[mode][1]) << mode;
        EXPECT_EQ(settings.strategy, rows[mode][2]) << mode;
    }
}

// The part from the position on, or as much as was asked for; what was behind the end of the target is cut.
TEST(PackFileTest, LengthAndPositionsCount) {
    FakeStream from("0123456789");
    FakeStream to("old content that is longer than the new one");
    clsFile source(&from);
    clsFile target(&to);
    source.SetPosition(2);
    target.SetPosition(3);
    EXPECT_EQ(UtilPackFile(target, source, kDeflateProfiles, nullptr, 4), Z_OK);
    EXPECT_EQ(to.bytes.substr(0, 3), "old");
    EXPECT_EQ(Unpack(to.bytes.substr(3)).bytes, "2345");
    EXPECT_EQ(UtilPackFile(target, source, kDeflateProfiles, nullptr, 5), kPackFailed); // four are left

    target.SetPosition(0);
    EXPECT_EQ(UtilPackFile(target, source, kDeflateProfiles, nullptr, 0), Z_OK);
    EXPECT_EQ(to.bytes, std::string("\x03\0", 2));
    EXPECT_EQ(Unpack(to.bytes, 0).code, Z_OK);
    EXPECT_EQ(Unpack(to.bytes, 3).code, kPackFailed);
}

TEST(PackFileTest, WhatPrecedesDamageIsWritten) {
    const std::string bytes = Noise(3 * kBuffer);
    std::string packed = Pack(bytes);
    Unpacked unpacked = Unpack(packed.substr(0, 2 * kBuffer));
    EXPECT_EQ(unpacked.code, Z_BUF_ERROR);
    EXPECT_GT(unpacked.bytes.size(), 2 * kBuffer - 0x10000);
    EXPECT_TRUE(bytes.starts_with(unpacked.bytes));

    unpacked = Unpack(Pack("the first part") + "spare");
    EXPECT_EQ(unpacked.code, Z_STREAM_END);
    EXPECT_EQ(unpacked.bytes, "the first part");

    unpacked = Unpack("\xFF\xFF");
    EXPECT_EQ(unpacked.code, Z_DATA_ERROR);
    EXPECT_EQ(unpacked.bytes, "");
}

TEST(PackFileTest, AMaximumEndsTheWork) {
    FakeStream from(Pack(std::string(3 * kBuffer, 'a')));
    clsFile source(&from);
    for (const int64_t maximum :
         {int64_t{0}, int64_t{kBuffer}, int64_t{3 * kBuffer} - 1, int64_t{3 * kBuffer}}) {
        FakeStream to;
        clsFile target(&to);
        source.SetPosition(0);
        const scUnpackResult result = UnpackFile(target, source, kToEnd, maximum);
        const bool fits = maximum == 3 * kBuffer;
        EXPECT_EQ(result.error, static_cast<DWORD>(fits ? ERROR_SUCCESS : ERROR_FILE_TOO_LARGE)) << maximum;
        EXPECT_LE(static_cast<int64_t>(to.bytes.size()), maximum);
        EXPECT_EQ(result.bytes, static_cast<int64_t>(to.bytes.size()));
    }
}

// Each call of source and target fails in turn.
TEST(PackFileTest, NoFailureGoesUnnoticed) {
    const std::string bytes = Noise(2 * kBuffer);
    const std::string packed = Pack(bytes);
    for (const bool fromFails : {true, false}) {
        int struck = 0;
        for (int number = 1;; ++number) {
            FakeStream from(bytes), middle, to, image(packed);
            clsFile source(&from), packedTarget(&middle), packedSource(&image), target(&to);
            (fromFails ? from : middle).FailCall(number, false);
            (fromFails ? image : to).FailCall(number, false);
            const int32_t code = UtilPackFile(packedTarget, source, kDeflateProfiles, nullptr, kToEnd);
            const scUnpackResult result = UnpackFile(target, packedSource, kToEnd, INT64_MAX);
            EXPECT_TRUE(code != Z_OK || middle.bytes == packed) << number;
            EXPECT_TRUE(result.error != ERROR_SUCCESS || to.bytes == bytes) << number;
            if (!(fromFails ? image : to).HasStruck()) break;
            ++struck;
        }
        EXPECT_GE(struck, 4);
    }
    FakeStream from(packed), full;
    full.capacity = kBuffer;
    clsFile source(&from), target(&full);
    EXPECT_EQ(UtilUnpackFile(target, source, 0, kToEnd), kUnpackShortWrite);
}

} // namespace
} // namespace vxut
