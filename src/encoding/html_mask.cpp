#include "encoding/html.h"
#include "encoding/html_entities.h"
#include "encoding/html_passes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <cwchar>

namespace vxut {
namespace {

// What a character becomes. reserved is the number of units that it takes in the result's length.
struct Masked {
    wchar_t units[kHtmlMostEntityUnits] = {};
    uint8_t count = 0;
    uint8_t reserved = 0;
};

constexpr Masked MakeMasked(const wchar_t* text, size_t count, size_t reserved) {
    Masked masked;
    for (size_t i = 0; i < count; ++i) masked.units[i] = text[i];
    masked.count = static_cast<uint8_t>(count);
    masked.reserved = static_cast<uint8_t>(reserved);
    return masked;
}

// Characters beyond the table come out as this text, whichever they are: callers rely on it, and on the
// length that counts one unit more for each.
constexpr wchar_t kUnknown[] = L"&#x04x;";
constexpr Masked kMaskedUnknown = MakeMasked(kUnknown, std::size(kUnknown) - 1, std::size(kUnknown));

Masked MaskedOf(wchar_t character) {
    const wchar_t* text = character == L'\t'   ? L"&#09;"
                          : character == L'\'' ? L"&apos;"
                                               : HtmlEntityOf(character);
    if (text) return MakeMasked(text, std::wcslen(text), std::wcslen(text));
    return character < 0x80 ? MakeMasked(&character, 1, 1) : kMaskedUnknown;
}

const Masked& LookUp(wchar_t character) {
    static const auto kTable = [] {
        std::array<Masked, 0x100> table;
        for (size_t i = 0; i < table.size(); ++i) table[i] = MaskedOf(static_cast<wchar_t>(i));
        return table;
    }();
    return character < kTable.size() ? kTable[character] : kMaskedUnknown;
}

constexpr bool IsDigit(wchar_t unit, bool isHexadecimal) {
    if (unit >= L'0' && unit <= L'9') return true;
    return isHexadecimal && ((unit >= L'a' && unit <= L'f') || (unit >= L'A' && unit <= L'F'));
}

constexpr uint32_t DigitValue(wchar_t unit) { return unit <= L'9' ? unit - L'0' : (unit & 0xFu) + 9u; }

// The lower 16 bits of the number of an entity such as "&#65;" or "&#x41;". False if it is 0 or if there is
// anything but digits.
bool ReadNumber(const wchar_t* entity, size_t units, wchar_t& character) {
    const bool isHexadecimal = entity[2] == L'x';
    uint32_t number = 0;
    for (size_t i = isHexadecimal ? 3 : 2; i < units - 1; ++i) {
        if (!IsDigit(entity[i], isHexadecimal)) return false;
        number = number * (isHexadecimal ? 16 : 10) + DigitValue(entity[i]);
    }
    character = static_cast<wchar_t>(number);
    return number != 0;
}

// The units of an entity that begins here, with "&" and ";"; 0 if there is no ";" near enough.
size_t EntityUnits(const wchar_t* from, const wchar_t* end) {
    const auto most = std::min<size_t>(kHtmlMostEntityUnits, static_cast<size_t>(end - from));
    for (size_t i = 1; i < most; ++i)
        if (from[i] == L';') return i + 1;
    return 0;
}

} // namespace

String MaskHtml(const String& text) {
    const wchar_t* const end = text.Text() + text.Length();
    int64_t length = 0;
    for (const wchar_t* from = text.Text(); from != end; ++from) length += LookUp(*from).reserved;
    String result;
    wchar_t* const start = result.GetBuffer(length);
    wchar_t* to = start;
    for (const wchar_t* from = text.Text(); from != end; ++from) {
        const Masked& masked = LookUp(*from);
        std::memcpy(to, masked.units, masked.count * sizeof *to);
        to += masked.count;
    }
    std::fill(to, start + length, L' ');
    result.SetLength(length);
    return result;
}

wchar_t* DemaskHtmlUnits(const wchar_t* from, const wchar_t* end, wchar_t* to) {
    while (from != end) {
        if (*from != L'&') {
            *to++ = *from++;
            continue;
        }
        const size_t units = EntityUnits(from, end);
        if (units == 0) {
            *to++ = *from++;
        } else if (from[1] == L'#') {
            wchar_t character;
            const bool isNumber = ReadNumber(from, units, character);
            if (isNumber) *to++ = character;
            from += isNumber ? units : 1; // the ampersand alone is dropped
        } else {
            const wchar_t character = HtmlCharacterOf(from, units);
            if (character) {
                *to++ = character;
            } else {
                std::memmove(to, from, units * sizeof *to);
                to += units;
            }
            from += units;
        }
    }
    return to;
}

String DemaskHtml(const String& text) {
    String result;
    wchar_t* const start = result.GetBuffer(text.Length());
    result.SetLength(DemaskHtmlUnits(text.Text(), text.Text() + text.Length(), start) - start);
    return result;
}

} // namespace vxut
