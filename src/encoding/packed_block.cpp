#include "encoding/packed_block.h"

#include "base/byte_cursor.h"
#include "encoding/deflate.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

namespace vxut {
namespace {

constexpr char kMagic[] = "QzR_Packed"; // with its terminator

#pragma pack(push, 1)
struct Header {
    uint32_t size; // of what was compressed
    char magic[sizeof kMagic];
};
#pragma pack(pop)
static_assert(sizeof(Header) == 15);

// No stream expands by more: a match of 258 bytes takes two bits.
constexpr uint64_t kMaxRatio = 1032;

// What deflate needs at most for incompressible input: zlib's formula for any settings, in 64 bits.
size_t DeflatedBound(size_t size) { return size + (size + 7) / 8 + (size + 63) / 64 + 32; }

// zlib counts in 32 bits.
uInt PieceOf(size_t bytes) { return static_cast<uInt>(std::min<size_t>(bytes, UINT_MAX)); }

// Passes input through a stream until it ends, fails or has filled the output. Returns zlib's last code.
// written is the number of bytes of output.
template <class Step>
int Run(z_stream& stream, Step step, std::span<const uint8_t> input, std::span<uint8_t> output,
        size_t& written) {
    stream.next_in = input.data();
    stream.next_out = output.data();
    size_t used = 0;
    written = 0;
    int result = Z_OK;
    while (result == Z_OK) {
        const uInt in = PieceOf(input.size() - used);
        const uInt out = PieceOf(output.size() - written);
        stream.avail_in = in;
        stream.avail_out = out;
        result = step(&stream, used + in == input.size() ? Z_FINISH : Z_NO_FLUSH);
        used += in - stream.avail_in;
        written += out - stream.avail_out;
    }
    return result;
}

void ThrowIfOutOfMemory(int result) {
    if (result == Z_MEM_ERROR) throw std::bad_alloc();
}

scByteBlock Inflate(std::span<const uint8_t> packed, uint32_t size) {
    if (size > packed.size() * kMaxRatio) return {};
    clsInflateStream stream(kZlibFormat);
    ThrowIfOutOfMemory(stream.InitResult());
    scByteBlock block(size);
    size_t written = 0;
    const int result = Run(stream.Stream(), inflate, packed, block.Bytes(), written);
    ThrowIfOutOfMemory(result);
    return result == Z_STREAM_END && written == size ? std::move(block) : scByteBlock();
}

} // namespace

scByteBlock PackBlock(std::span<const uint8_t> bytes) {
    clsDeflateStream stream(kDeflateBlocks, kZlibFormat);
    ThrowIfOutOfMemory(stream.InitResult());
    scByteBlock block(sizeof(Header) + DeflatedBound(bytes.size()));
    Header header{static_cast<uint32_t>(bytes.size()), {}};
    std::memcpy(header.magic, kMagic, sizeof kMagic);
    std::memcpy(block.data.get(), &header, sizeof header);
    size_t written = 0;
    const int result = Run(stream.Stream(), deflate, bytes, block.Bytes().subspan(sizeof header), written);
    block.size = result == Z_STREAM_END ? sizeof header + written : 0;
    return block;
}

bool IsPackedBlock(std::span<const uint8_t> bytes) {
    clsByteCursor cursor(bytes);
    return cursor.Skip(offsetof(Header, magic)) && cursor.StartsWith({kMagic, sizeof kMagic});
}

scByteBlock UnpackBlock(std::span<const uint8_t> block) {
    clsByteCursor cursor(block);
    Header header;
    return cursor.ReadObject(header) ? Inflate(cursor.Rest(), header.size) : scByteBlock();
}

scByteBlock UnpackOldBlock(std::span<const uint8_t> block) {
    clsByteCursor cursor(block);
    uint32_t size = 0;
    return cursor.ReadLittle(size) ? Inflate(cursor.Rest(), size) : scByteBlock();
}

} // namespace vxut
