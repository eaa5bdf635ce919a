#include "encoding/base64_avx2.h"

#include <immintrin.h>

namespace vxut {
namespace {

// One step: 24 bytes, 32 symbols. Both lanes are loaded and stored as 16 bytes of which 12 count, so a step
// touches 28 bytes.
constexpr size_t kStepBytes = 24;
constexpr size_t kTouchedBytes = 28;
constexpr size_t kStepUnits = 32;
constexpr size_t kGroupUnits = 4;

#define VXUT_AVX2 [[gnu::target("avx2"), gnu::always_inline]] inline

VXUT_AVX2 __m256i BothLanes(__m128i lane) { return _mm256_broadcastsi128_si256(lane); }

// Spreads the 12 bytes of each lane to 16 bytes of six bits each. Two multiplications shift the four pieces
// of a group to their places, as vectors have no shift of their own for each element of 16 bits.
VXUT_AVX2 __m256i SplitToSixBits(__m256i bytes) {
    const __m256i groups = _mm256_shuffle_epi8(
        bytes, BothLanes(_mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10)));
    const __m256i high = _mm256_mulhi_epu16(_mm256_and_si256(groups, _mm256_set1_epi32(0x0FC0FC00)),
                                            _mm256_set1_epi32(0x04000040));
    const __m256i low = _mm256_mullo_epi16(_mm256_and_si256(groups, _mm256_set1_epi32(0x003F03F0)),
                                           _mm256_set1_epi32(0x01000010));
    return _mm256_or_si256(high, low);
}

// Adds to each value the distance to its symbol, which is looked up by the range of the value: 0 for the
// capitals, 1 for the small letters, 2 to 11 for the digits, 12 and 13 for "+" and "/".
VXUT_AVX2 __m256i SymbolsOf(__m256i values) {
    const __m256i distances = BothLanes(
        _mm_setr_epi8('A', 'a' - 26, -4, -4, -4, -4, -4, -4, -4, -4, -4, -4, '+' - 62, '/' - 63, 0, 0));
    const __m256i behindCapitals = _mm256_cmpgt_epi8(values, _mm256_set1_epi8(25));
    const __m256i range = _mm256_sub_epi8(_mm256_subs_epu8(values, _mm256_set1_epi8(51)), behindCapitals);
    return _mm256_add_epi8(values, _mm256_shuffle_epi8(distances, range));
}

// Finds the values of 32 symbols. Returns false if one is not of the alphabet: each half of a byte selects a
// set of faults, and a byte outside the alphabet is one whose halves have a fault in common.
VXUT_AVX2 bool ValuesOf(__m256i symbols, __m256i& values) {
    const __m256i faultsOfLow = BothLanes(_mm_setr_epi8(0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11,
                                                        0x11, 0x13, 0x1A, 0x1B, 0x1B, 0x1B, 0x1A));
    const __m256i faultsOfHigh = BothLanes(_mm_setr_epi8(0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08, 0x10,
                                                         0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10));
    const __m256i distances = BothLanes(_mm_setr_epi8(0, 63 - '/', 62 - '+', 52 - '0', -'A', -'A', 26 - 'a',
                                                      26 - 'a', 0, 0, 0, 0, 0, 0, 0, 0));
    const __m256i half = _mm256_set1_epi8(0x0F);
    const __m256i high = _mm256_and_si256(_mm256_srli_epi16(symbols, 4), half);
    const __m256i low = _mm256_and_si256(symbols, half);
    if (!_mm256_testz_si256(_mm256_shuffle_epi8(faultsOfLow, low), _mm256_shuffle_epi8(faultsOfHigh, high)))
        return false;
    // "/" is in the same row as "+", and has the entry of a row in which there are no symbols.
    const __m256i isSlash = _mm256_cmpeq_epi8(symbols, _mm256_set1_epi8('/'));
    values = _mm256_add_epi8(symbols, _mm256_shuffle_epi8(distances, _mm256_add_epi8(isSlash, high)));
    return true;
}

// Joins the six bits of 16 values to 12 bytes in each lane.
VXUT_AVX2 __m256i JoinSixBits(__m256i values) {
    const __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi32(0x01400140));
    const __m256i groups = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
    return _mm256_shuffle_epi8(
        groups, BothLanes(_mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1)));
}

template <class Vector>
Vector* At(void* address) {
    return static_cast<Vector*>(address);
}
template <class Vector>
const Vector* At(const void* address) {
    return static_cast<const Vector*>(address);
}

} // namespace

bool HasAvx2() noexcept {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0;
}

[[gnu::target("avx2")]] size_t EncodeBase64Avx2(std::span<const uint8_t> bytes, wchar_t* target) noexcept {
    size_t done = 0;
    for (; bytes.size() - done >= kTouchedBytes; done += kStepBytes, target += kStepUnits) {
        const uint8_t* const from = bytes.data() + done;
        const __m256i step = _mm256_loadu2_m128i(At<__m128i>(from + kStepBytes / 2), At<__m128i>(from));
        const __m256i symbols = SymbolsOf(SplitToSixBits(step));
        const __m256i first = _mm256_cvtepu8_epi16(_mm256_castsi256_si128(symbols));
        const __m256i second = _mm256_cvtepu8_epi16(_mm256_extracti128_si256(symbols, 1));
        _mm256_storeu_si256(At<__m256i>(target), first);
        _mm256_storeu_si256(At<__m256i>(target + kStepUnits / 2), second);
    }
    return done;
}

[[gnu::target("avx2")]] size_t DecodeBase64Avx2(std::wstring_view text, std::span<uint8_t> target) noexcept {
    size_t units = 0;
    size_t bytes = 0;
    for (; text.size() - units >= kStepUnits && target.size() - bytes >= kTouchedBytes;
         units += kStepUnits, bytes += kStepBytes) {
        const wchar_t* const from = text.data() + units;
        const __m256i first = _mm256_loadu_si256(At<__m256i>(from));
        const __m256i second = _mm256_loadu_si256(At<__m256i>(from + kStepUnits / 2));
        // Saturation turns units above 0xFF into 0 or 0xFF, which are no symbols either.
        const __m256i symbols =
            _mm256_permute4x64_epi64(_mm256_packus_epi16(first, second), _MM_SHUFFLE(3, 1, 2, 0));
        __m256i values;
        if (!ValuesOf(symbols, values)) break;
        const __m256i joined = JoinSixBits(values);
        uint8_t* const to = target.data() + bytes;
        _mm_storeu_si128(At<__m128i>(to), _mm256_castsi256_si128(joined));
        _mm_storeu_si128(At<__m128i>(to + kStepBytes / 2), _mm256_extracti128_si256(joined, 1));
    }
    return units / kGroupUnits;
}

} // namespace vxut
