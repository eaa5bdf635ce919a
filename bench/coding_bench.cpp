// Base64 both ways beside a copy of the same bytes, a plain table codec, Boost.Beast's codec, whose text is
// narrow, and the system's own function for wide text; the text encoding with compression beside zlib alone
// at the same settings. Rates count the binary bytes. The arguments are their number.
#include "encoding/base64.h"
#include "encoding/deflate.h"
#include "encoding/text_encoding.h"
#include "support.h"

#define BOOST_BEAST_HEADER_ONLY 1
#include <windows.h>
// After windows.h, which it needs:
#include <wincrypt.h>

#include <boost/beast/core/detail/base64.hpp>

#include <array>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace vxut;
using Bytes = std::vector<uint8_t>;

// Text-like bytes, of which a quarter is noise, so that compression has work to do.
Bytes Sample(size_t size) {
    std::mt19937 random(5);
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<uint8_t>(i % 4 ? "The quick brown fox jumps over the lazy dog"[i / 3 % 43]
                                              : random() % 64);
    return bytes;
}

std::wstring TextOf(const Bytes& bytes) {
    std::wstring text(Base64Length(bytes.size()), L'\0');
    EncodeBase64(bytes, text.data());
    return text;
}

constexpr wchar_t kAlphabet[] = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// One group of symbols after the other, as most programs write it. Whole groups only.
void PlainEncode(const Bytes& bytes, wchar_t* text) {
    for (size_t i = 0; i + 3 <= bytes.size(); i += 3) {
        const uint32_t bits = static_cast<uint32_t>(bytes[i] << 16 | bytes[i + 1] << 8 | bytes[i + 2]);
        for (const unsigned shift : {18u, 12u, 6u, 0u}) *text++ = kAlphabet[bits >> shift & 63];
    }
}

void PlainDecode(const std::wstring& text, uint8_t* bytes) {
    static const auto values = [] {
        std::array<uint8_t, 256> table{};
        for (size_t i = 0; i < 64; ++i) table[kAlphabet[i]] = static_cast<uint8_t>(i);
        return table;
    }();
    for (size_t i = 0; i + 4 <= text.size(); i += 4) {
        uint32_t bits = 0;
        for (size_t k = 0; k < 4; ++k) bits = bits << 6 | values[text[i + k] & 0xFF];
        *bytes++ = static_cast<uint8_t>(bits >> 16);
        *bytes++ = static_cast<uint8_t>(bits >> 8);
        *bytes++ = static_cast<uint8_t>(bits);
    }
}

template <class Work>
void Measure(benchmark::State& state, Work work) {
    for (auto _ : state) {
        work();
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void EncodeVxut(benchmark::State& state) {
    const Bytes bytes = Sample(static_cast<size_t>(state.range(0)));
    std::wstring text(Base64Length(bytes.size()), L'\0');
    Measure(state, [&] { EncodeBase64(bytes, text.data()); });
}
void EncodePlain(benchmark::State& state) {
    const Bytes bytes = Sample(static_cast<size_t>(state.range(0)));
    std::wstring text(Base64Length(bytes.size()), L'\0');
    Measure(state, [&] { PlainEncode(bytes, text.data()); });
}
void DecodeVxut(benchmark::State& state) {
    const std::wstring text = TextOf(Sample(static_cast<size_t>(state.range(0))));
    Bytes bytes(Base64Capacity(text.size()));
    size_t size = 0;
    Measure(state, [&] { DecodeBase64(text, bytes, Base64Count::kByPadding, size); });
}
void DecodePlain(benchmark::State& state) {
    const std::wstring text = TextOf(Sample(static_cast<size_t>(state.range(0))));
    Bytes bytes(Base64Capacity(text.size()));
    Measure(state, [&] { PlainDecode(text, bytes.data()); });
}
namespace beast = boost::beast::detail::base64;

std::string NarrowTextOf(const Bytes& bytes) {
    std::string text(beast::encoded_size(bytes.size()), '\0');
    text.resize(beast::encode(text.data(), bytes.data(), bytes.size()));
    return text;
}
void EncodeBeast(benchmark::State& state) {
    const Bytes bytes = Sample(static_cast<size_t>(state.range(0)));
    std::string text = NarrowTextOf(bytes);
    Measure(state, [&] { beast::encode(text.data(), bytes.data(), bytes.size()); });
}
void DecodeBeast(benchmark::State& state) {
    const std::string text = NarrowTextOf(Sample(static_cast<size_t>(state.range(0))));
    Bytes bytes(beast::decoded_size(text.size()));
    Measure(state, [&] { beast::decode(bytes.data(), text.data(), text.size()); });
}

void EncodeSystem(benchmark::State& state) {
    const Bytes bytes = Sample(static_cast<size_t>(state.range(0)));
    std::wstring text(Base64Length(bytes.size()) + 1, L'\0');
    Measure(state, [&] {
        auto units = static_cast<DWORD>(text.size());
        if (!CryptBinaryToStringW(bytes.data(), static_cast<DWORD>(bytes.size()),
                                  CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF, text.data(), &units))
            state.SkipWithError("no text");
    });
}
void DecodeSystem(benchmark::State& state) {
    const std::wstring text = TextOf(Sample(static_cast<size_t>(state.range(0))));
    Bytes bytes(Base64Capacity(text.size()));
    Measure(state, [&] {
        auto size = static_cast<DWORD>(bytes.size());
        if (!CryptStringToBinaryW(text.data(), static_cast<DWORD>(text.size()), CRYPT_STRING_BASE64,
                                  bytes.data(), &size, nullptr, nullptr))
            state.SkipWithError("no bytes");
    });
}

// The bytes that both directions touch at least: those of the text.
void CopyText(benchmark::State& state) {
    const std::wstring text = TextOf(Sample(static_cast<size_t>(state.range(0))));
    std::wstring copy = text;
    Measure(state, [&] { std::memcpy(copy.data(), text.data(), text.size() * sizeof(wchar_t)); });
}

void PackVxut(benchmark::State& state) {
    const Bytes bytes = Sample(static_cast<size_t>(state.range(0)));
    Measure(state, [&] { benchmark::DoNotOptimize(EncodeBytes(bytes, true).Length()); });
}
void PackZlib(benchmark::State& state) {
    const Bytes bytes = Sample(static_cast<size_t>(state.range(0)));
    Measure(state, [&] {
        Bytes packed(bytes.size() * 8 / 7 + 64);
        z_stream stream{};
        deflateInit2(&stream, 9, Z_DEFLATED, 15, 9, Z_FILTERED);
        stream.next_in = bytes.data();
        stream.avail_in = static_cast<uInt>(bytes.size());
        stream.next_out = packed.data();
        stream.avail_out = static_cast<uInt>(packed.size());
        deflate(&stream, Z_FINISH);
        deflateEnd(&stream);
    });
}
void UnpackVxut(benchmark::State& state) {
    const String text = EncodeBytes(Sample(static_cast<size_t>(state.range(0))), true);
    const std::wstring_view units(text.Text(), static_cast<size_t>(text.Length()));
    Measure(state, [&] {
        scByteBlock block;
        DecodeText(units, String(), block);
        benchmark::DoNotOptimize(block.size);
    });
}
void UnpackZlib(benchmark::State& state) {
    const Bytes bytes = Sample(static_cast<size_t>(state.range(0)));
    const scByteBlock packed = PackBlock(bytes);
    Measure(state, [&] {
        const scByteBlock block(bytes.size());
        z_stream stream{};
        inflateInit2(&stream, 15);
        stream.next_in = packed.data.get() + 15;
        stream.avail_in = static_cast<uInt>(packed.size - 15);
        stream.next_out = block.data.get();
        stream.avail_out = static_cast<uInt>(block.size);
        inflate(&stream, Z_FINISH);
        inflateEnd(&stream);
    });
}

constexpr int64_t kSmall = 3 * 16 * 1024;
constexpr int64_t kLarge = 3 * 1024 * 1024;

BENCHMARK(EncodeVxut)->Name("Base64Encode/vxut")->Arg(kSmall)->Arg(kLarge);
BENCHMARK(EncodePlain)->Name("Base64Encode/plain loop")->Arg(kSmall)->Arg(kLarge);
BENCHMARK(EncodeBeast)->Name("Base64Encode/Boost.Beast, narrow")->Arg(kSmall)->Arg(kLarge);
BENCHMARK(EncodeSystem)->Name("Base64Encode/CryptBinaryToStringW")->Arg(kSmall)->Arg(kLarge);
BENCHMARK(CopyText)->Name("Base64Encode/floor: memcpy")->Arg(kSmall)->Arg(kLarge);
BENCHMARK(DecodeVxut)->Name("Base64Decode/vxut")->Arg(kSmall)->Arg(kLarge);
BENCHMARK(DecodePlain)->Name("Base64Decode/plain loop")->Arg(kSmall)->Arg(kLarge);
BENCHMARK(DecodeBeast)->Name("Base64Decode/Boost.Beast, narrow")->Arg(kSmall)->Arg(kLarge);
BENCHMARK(DecodeSystem)->Name("Base64Decode/CryptStringToBinaryW")->Arg(kSmall)->Arg(kLarge);
BENCHMARK(CopyText)->Name("Base64Decode/floor: memcpy")->Arg(kSmall)->Arg(kLarge);
BENCHMARK(PackVxut)->Name("EncodeCompressed/vxut")->Arg(kLarge);
BENCHMARK(PackZlib)->Name("EncodeCompressed/zlib alone")->Arg(kLarge);
BENCHMARK(UnpackVxut)->Name("DecodeCompressed/vxut")->Arg(kLarge);
BENCHMARK(UnpackZlib)->Name("DecodeCompressed/zlib alone")->Arg(kLarge);

} // namespace
