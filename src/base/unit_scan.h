// Searches in UTF-16 text, eight units at a time.
#pragma once

#include <emmintrin.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vxut {

constexpr size_t kUnitsPerScan = 8;

inline __m128i LoadUnits(const wchar_t* text) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
}

inline __m128i EqualUnits(__m128i units, wchar_t unit) noexcept {
    return _mm_cmpeq_epi16(units, _mm_set1_epi16(static_cast<short>(unit)));
}

// A bit for each byte of the units that match.
inline uint32_t MatchBits(__m128i matches) noexcept {
    return static_cast<uint32_t>(_mm_movemask_epi8(matches));
}

inline size_t FirstMatch(uint32_t bits) noexcept {
    return static_cast<size_t>(std::countr_zero(bits)) / sizeof(wchar_t);
}

// The first CR, LF or zero. Precondition: there is one, and kUnitsPerScan - 1 units behind it can be read.
inline const wchar_t* FindLineEnd(const wchar_t* text) noexcept {
    for (;; text += kUnitsPerScan) {
        const __m128i units = LoadUnits(text);
        const __m128i ends = _mm_or_si128(_mm_or_si128(EqualUnits(units, L'\r'), EqualUnits(units, L'\n')),
                                          EqualUnits(units, 0));
        if (const uint32_t bits = MatchBits(ends)) return text + FirstMatch(bits);
    }
}

// The index of the first unit of this value, or npos.
inline size_t FindUnit(std::wstring_view text, wchar_t unit) noexcept {
    size_t at = 0;
    for (; at + kUnitsPerScan <= text.size(); at += kUnitsPerScan)
        if (const uint32_t bits = MatchBits(EqualUnits(LoadUnits(text.data() + at), unit)))
            return at + FirstMatch(bits);
    for (; at < text.size(); ++at)
        if (text[at] == unit) return at;
    return std::wstring_view::npos;
}

// Whether all units are below a limit.
inline bool AreUnitsBelow(std::wstring_view text, wchar_t limit) noexcept {
    const __m128i highest = _mm_set1_epi16(static_cast<short>(limit - 1));
    __m128i above = _mm_setzero_si128();
    size_t at = 0;
    for (; at + kUnitsPerScan <= text.size(); at += kUnitsPerScan)
        above = _mm_or_si128(above, _mm_subs_epu16(LoadUnits(text.data() + at), highest));
    bool areBelow = MatchBits(EqualUnits(above, 0)) == 0xFFFF;
    for (; at < text.size(); ++at) areBelow = areBelow && text[at] < limit;
    return areBelow;
}

// The index of the first unit below a limit, or the length.
inline size_t FindUnitBelow(std::wstring_view text, wchar_t limit) noexcept {
    const __m128i lowest = _mm_set1_epi16(static_cast<short>(limit));
    size_t at = 0;
    for (; at + kUnitsPerScan <= text.size(); at += kUnitsPerScan) {
        const __m128i missing = _mm_subs_epu16(lowest, LoadUnits(text.data() + at));
        if (const uint32_t bits = MatchBits(EqualUnits(missing, 0)) ^ 0xFFFF) return at + FirstMatch(bits);
    }
    while (at < text.size() && text[at] >= limit) ++at;
    return at;
}

} // namespace vxut
