#include "encoding/html_passes.h"

#include "base/text_units.h"

#include <algorithm>
#include <iterator>

namespace vxut {
namespace {

constexpr wchar_t kCommentStart[] = {L'<', L'!', L'-', L'-'};
constexpr wchar_t kCommentEnd[] = {L'-', L'-', L'>'};
constexpr wchar_t kNoBreakSpace = 0xA0;
constexpr wchar_t kOpeningGuillemet = 0xAB;
constexpr wchar_t kClosingGuillemet = 0xBB;

wchar_t* Move(const wchar_t* from, const wchar_t* end, wchar_t* to) {
    std::memmove(to, from, static_cast<size_t>(end - from) * sizeof *to);
    return to + (end - from);
}

} // namespace

wchar_t* RemoveHtmlComments(const wchar_t* from, const wchar_t* end, wchar_t* to) {
    const auto length = static_cast<size_t>(end - from);
    const wchar_t* const start =
        from + FindUnitsWithin(from, length, kCommentStart, std::size(kCommentStart));
    if (start == end) return Move(from, end, to);
    const wchar_t* const content = start + std::size(kCommentStart);
    const wchar_t* const last = std::find_end(content, end, std::begin(kCommentEnd), std::end(kCommentEnd));
    if (last == end) return Move(from, end, to);
    return Move(last + std::size(kCommentEnd), end, Move(from, start, to));
}

wchar_t* JoinHtmlLineEnds(const wchar_t* from, const wchar_t* end, wchar_t* to) {
    while (from != end) {
        const bool isPair = *from == L'\r' && end - from > 1 && from[1] == L'\n';
        *to++ = *from;
        from += isPair ? 2 : 1;
    }
    return to;
}

wchar_t* CleanHtmlText(const wchar_t* from, const wchar_t* end, wchar_t* to) {
    int64_t depth = 0;
    bool isAfterBlank = false;
    for (; from != end; ++from) {
        const wchar_t unit = *from;
        bool isDropped = false;
        switch (unit) {
            case L' ':
            case kNoBreakSpace:
                isDropped = isAfterBlank;
                isAfterBlank = true;
                break;
            case L'\n':
                isDropped = true;
                break;
            case kOpeningGuillemet:
                isDropped = depth++ == 0;
                isAfterBlank = isAfterBlank && !isDropped;
                break;
            case kClosingGuillemet:
                isDropped = --depth == 0;
                isAfterBlank = isAfterBlank && !isDropped;
                break;
            default:
                isAfterBlank = false;
        }
        if (!isDropped) *to++ = unit;
    }
    return to;
}

// Every three become two, and every four of what is left then become two.
wchar_t* ShortenHtmlGaps(const wchar_t* from, const wchar_t* end, wchar_t* to) {
    while (from != end) {
        const wchar_t* const gap = from + FindUnitWithin(from, static_cast<size_t>(end - from), L'\r');
        to = Move(from, gap, to);
        from = std::find_if(gap, end, [](wchar_t unit) { return unit != L'\r'; });
        const ptrdiff_t count = from - gap;
        const ptrdiff_t reduced = count / 3 * 2 + count % 3;
        to = std::fill_n(to, reduced / 4 * 2 + reduced % 4, L'\r');
    }
    return to;
}

} // namespace vxut
