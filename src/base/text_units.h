// The innermost loops on texts and bytes, inlined into their callers.
//
// Preconditions: pointers are not null. Texts are zero-terminated within the limit, or as long as the count
// says; zero units of counted texts are units like any other. Functions that move or copy allow the places to
// overlap.
//
// They work on blocks and may read units beyond the end of a text, but never on a page that the text does not
// reach.
#pragma once

#include <emmintrin.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vxut {

// As a limit: the terminator alone ends the text.
inline constexpr size_t kUnlimited = SIZE_MAX;

namespace unit_blocks {

constexpr size_t kBytes = sizeof(__m128i);
constexpr size_t kUnits = kBytes / sizeof(wchar_t);
constexpr size_t kPageBytes = 4096;

inline __m128i Load(const wchar_t* text) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
}

inline bool IsOnOnePage(const wchar_t* block) noexcept {
    return reinterpret_cast<uintptr_t>(block) % kPageBytes <= kPageBytes - kBytes;
}

// One bit for each byte: both bits of the units that are equal.
inline uint32_t EqualBytes(__m128i left, __m128i right) noexcept {
    return static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi16(left, right)));
}

// Whether a search ends at a terminator or at its limit only.
enum class TextEnd { kTerminator, kLimit };

template <TextEnd kEnd>
inline uint32_t EndsOfBlock(__m128i block) noexcept {
    return kEnd == TextEnd::kTerminator ? EqualBytes(block, _mm_setzero_si128()) : 0;
}

// Searches for a unit.
template <TextEnd kEnd>
struct scUnitSearch {
    const wchar_t* text;
    wchar_t wanted;
    __m128i wantedBlock = _mm_set1_epi16(static_cast<short>(wanted));

    bool IsBlockAt(size_t position) const noexcept { return IsOnOnePage(text + position); }
    uint32_t HitsOfBlock(size_t position) const noexcept {
        const __m128i block = Load(text + position);
        return EqualBytes(block, wantedBlock) | EndsOfBlock<kEnd>(block);
    }
    bool IsHit(size_t position) const noexcept {
        return text[position] == wanted || (kEnd == TextEnd::kTerminator && text[position] == 0);
    }
};

// Searches for the place where two texts differ.
template <TextEnd kEnd>
struct scParting {
    const wchar_t* left;
    const wchar_t* right;

    bool IsBlockAt(size_t position) const noexcept {
        return IsOnOnePage(left + position) && IsOnOnePage(right + position);
    }
    uint32_t HitsOfBlock(size_t position) const noexcept {
        const __m128i block = Load(left + position);
        return (EqualBytes(block, Load(right + position)) ^ 0xFFFF) | EndsOfBlock<kEnd>(block);
    }
    bool IsHit(size_t position) const noexcept {
        return left[position] != right[position] || (kEnd == TextEnd::kTerminator && left[position] == 0);
    }
};

// Returns the position of the first hit, or limit.
template <class Search>
[[gnu::always_inline]] inline size_t FirstHit(const Search& search, size_t limit) noexcept {
    for (size_t position = 0; position < limit;) {
        if (search.IsBlockAt(position)) {
            const uint32_t hits = search.HitsOfBlock(position);
            if (hits) {
                position += static_cast<size_t>(std::countr_zero(hits)) / sizeof(wchar_t);
                return position < limit ? position : limit;
            }
            position += kUnits;
        } else {
            if (search.IsHit(position)) return position;
            ++position;
        }
    }
    return limit;
}

typedef uint8_t Block16 __attribute__((vector_size(16)));
typedef uint8_t Block32 __attribute__((vector_size(32)));

// The size of two of the largest blocks. Larger ones would take registers that a function must save.
constexpr size_t kMostBytes = 2 * sizeof(Block32);

// NOLINTBEGIN(bugprone-branch-clone): each branch has a type of its own
// Calls work with a block of a type of which two cover the bytes, one from each end. At most kMostBytes.
template <class Work>
[[gnu::always_inline]] inline void WithEndBlocks(size_t bytes, Work work) noexcept {
    if (bytes >= sizeof(Block16)) {
        if (bytes <= 2 * sizeof(Block16))
            work(Block16());
        else
            work(Block32());
    } else {
        if (bytes >= sizeof(uint64_t))
            work(uint64_t());
        else if (bytes >= sizeof(uint32_t))
            work(uint32_t());
        else if (bytes >= sizeof(uint16_t))
            work(uint16_t());
        else if (bytes > 0)
            work(uint8_t());
    }
}
// NOLINTEND(bugprone-branch-clone)

} // namespace unit_blocks

// Returns the number of units before the terminator, at most limit.
inline size_t UnitLength(const wchar_t* text, size_t limit = kUnlimited) noexcept {
    return unit_blocks::FirstHit(unit_blocks::scUnitSearch<unit_blocks::TextEnd::kTerminator>{text, 0},
                                 limit);
}

// Returns the first such unit; null if there is none. The unit 0 finds the terminator.
inline const wchar_t* FindUnit(const wchar_t* text, wchar_t unit) noexcept {
    const wchar_t* const hit =
        text + unit_blocks::FirstHit(unit_blocks::scUnitSearch<unit_blocks::TextEnd::kTerminator>{text, unit},
                                     kUnlimited);
    return *hit == unit ? hit : nullptr;
}

// The same for the last such unit.
inline const wchar_t* FindLastUnit(const wchar_t* text, wchar_t unit) noexcept {
    using namespace unit_blocks;
    const __m128i wanted = _mm_set1_epi16(static_cast<short>(unit));
    for (const wchar_t* last = nullptr;;) {
        if (IsOnOnePage(text)) {
            const __m128i block = Load(text);
            const uint32_t ends = EqualBytes(block, _mm_setzero_si128());
            const uint32_t bitsToEnd = ends ^ (ends - 1); // all, without an end
            const uint32_t hits = EqualBytes(block, wanted) & bitsToEnd;
            if (hits) last = text + static_cast<size_t>(std::bit_width(hits) - 1) / sizeof(wchar_t);
            if (ends) return last;
            text += kUnits;
        } else {
            if (*text == unit) last = text;
            if (*text == 0) return last;
            ++text;
        }
    }
}

// Compares at most limit units as unsigned numbers. Returns -1, 0 or 1.
inline int CompareUnits(const wchar_t* left, const wchar_t* right, size_t limit = kUnlimited) noexcept {
    const size_t position =
        unit_blocks::FirstHit(unit_blocks::scParting<unit_blocks::TextEnd::kTerminator>{left, right}, limit);
    if (position == limit || left[position] == right[position]) return 0;
    return left[position] < right[position] ? -1 : 1;
}

// The functions on texts of a known length. A zero unit is a unit like any other.

inline constexpr int64_t kBlockUnits = unit_blocks::kUnits;

// Returns the position of the first difference of two blocks of kBlockUnits, or kBlockUnits.
inline int64_t FirstDifferenceOfBlock(const wchar_t* left, const wchar_t* right) noexcept {
    using namespace unit_blocks;
    const uint32_t equal = EqualBytes(Load(left), Load(right));
    return std::countr_one(equal) / static_cast<int>(sizeof(wchar_t));
}

// Returns the position of the first difference, or count.
inline size_t FirstDifference(const wchar_t* left, const wchar_t* right, size_t count) noexcept {
    return unit_blocks::FirstHit(unit_blocks::scParting<unit_blocks::TextEnd::kLimit>{left, right}, count);
}

// Returns the position of the first such unit, or count.
inline size_t FindUnitWithin(const wchar_t* text, size_t count, wchar_t unit) noexcept {
    return unit_blocks::FirstHit(unit_blocks::scUnitSearch<unit_blocks::TextEnd::kLimit>{text, unit}, count);
}

// Returns the position of the first occurrence of wanted, or count. Precondition: wantedCount is not 0.
inline size_t FindUnitsWithin(const wchar_t* text, size_t count, const wchar_t* wanted,
                              size_t wantedCount) noexcept {
    if (wantedCount > count) return count;
    const size_t starts = count - wantedCount + 1;
    for (size_t position = 0; position < starts; ++position) {
        position += FindUnitWithin(text + position, starts - position, *wanted);
        if (position == starts) break;
        if (FirstDifference(text + position, wanted, wantedCount) == wantedCount) return position;
    }
    return count;
}

// Copies bytes. Returns to.
inline void* MoveBytes(void* to, const void* from, size_t bytes) noexcept {
    if (bytes > unit_blocks::kMostBytes) return std::memmove(to, from, bytes);
    unit_blocks::WithEndBlocks(bytes, [&](auto head) __attribute__((always_inline)) {
        auto tail = head;
        const size_t tailAt = bytes - sizeof tail;
        std::memcpy(&head, from, sizeof head);
        std::memcpy(&tail, static_cast<const char*>(from) + tailAt, sizeof tail);
        std::memcpy(to, &head, sizeof head);
        std::memcpy(static_cast<char*>(to) + tailAt, &tail, sizeof tail);
    });
    return to;
}

// Sets bytes. Returns to.
inline void* FillBytes(void* to, int byte, size_t bytes) noexcept {
    if (bytes > unit_blocks::kMostBytes) return std::memset(to, byte, bytes);
    unit_blocks::WithEndBlocks(bytes, [&](auto block) __attribute__((always_inline)) {
        std::memset(&block, byte, sizeof block);
        std::memcpy(to, &block, sizeof block);
        std::memcpy(static_cast<char*>(to) + (bytes - sizeof block), &block, sizeof block);
    });
    return to;
}

// Copies a text and its terminator. Returns to.
inline wchar_t* CopyText(wchar_t* to, const wchar_t* from) noexcept {
    return static_cast<wchar_t*>(MoveBytes(to, from, (UnitLength(from) + 1) * sizeof(wchar_t)));
}

// Copies a text and its terminator to the end of another. Returns to.
inline wchar_t* AppendText(wchar_t* to, const wchar_t* from) noexcept {
    // Short texts have often just been written: loading a block across stores under way would wait for them.
    constexpr size_t kStepByStep = 16;
    wchar_t* end = to;
#pragma clang loop unroll(disable) vectorize(disable)
    while (*end != 0 && end != to + kStepByStep) ++end;
    CopyText(*end == 0 ? end : end + UnitLength(end), from);
    return to;
}

// Copies a text, cut to capacity units, the terminator included. Writes nothing if capacity is 0. Returns to.
inline wchar_t* CopyTextBounded(wchar_t* to, const wchar_t* from, size_t capacity) noexcept {
    if (capacity == 0) return to;
    const size_t length = UnitLength(from, capacity - 1);
    MoveBytes(to, from, length * sizeof(wchar_t));
    to[length] = L'\0';
    return to;
}

} // namespace vxut
