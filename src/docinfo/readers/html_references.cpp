#include "docinfo/readers/html_references.h"

#include "base/digits.h"
#include "encoding/html_entities.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <string_view>

namespace vxut {
namespace {

constexpr wchar_t kFirstLatin1 = 0xA0;
constexpr size_t kLeastHexDigits = 2;
constexpr size_t kMostHexDigits = 4;

bool IsDigit(wchar_t unit, uint32_t base) { return DigitOf(unit, base) < base; }

bool IsHex(std::wstring_view number) { return !number.empty() && (number[0] == L'x' || number[0] == L'X'); }

// Whether this is what a reference has between "&#" and ";".
bool IsNumber(std::wstring_view number) {
    if (!IsHex(number))
        return !number.empty() &&
               std::all_of(number.begin(), number.end(), [](wchar_t unit) { return IsDigit(unit, 10); });
    number.remove_prefix(1);
    return number.size() >= kLeastHexDigits && number.size() <= kMostHexDigits &&
           std::all_of(number.begin(), number.end(), [](wchar_t unit) { return IsDigit(unit, 16); });
}

// The units from the last "&#" on, if only a number is between it and the end of the text.
std::wstring_view LastReference(std::wstring_view text) {
    size_t start = text.size();
    while (start > 0 && (IsDigit(text[start - 1], 16) || IsHex(text.substr(start - 1, 1)))) --start;
    if (start < 2 || text[start - 1] != L'#' || text[start - 2] != L'&') return {};
    return IsNumber(text.substr(start)) ? text.substr(start - 2) : std::wstring_view();
}

// number is followed by a unit that is no digit.
wchar_t CharacterOf(std::wstring_view number) {
    const long value =
        IsHex(number) ? std::wcstol(number.data() + 1, nullptr, 16) : std::wcstol(number.data(), nullptr, 10);
    return static_cast<wchar_t>(value);
}

// Appends a unit. Where it completes a reference, the reference is replaced, which may complete another one.
// Returns the new end.
size_t AppendDecoded(wchar_t* text, size_t length, wchar_t unit) {
    for (;;) {
        text[length] = unit;
        if (unit != L';') return length + 1;
        const std::wstring_view reference = LastReference({text, length});
        if (reference.empty()) return length + 1;
        unit = CharacterOf(reference.substr(2));
        length -= reference.size();
        if (unit == 0) return length;
    }
}

// Decodes the entity that begins at the start of rest. Returns 0 if there is none; units is then 1.
wchar_t ReadNamedEntity(std::wstring_view rest, size_t& units) {
    units = 1;
    if (rest[0] != L'&') return 0;
    const size_t end = rest.substr(0, kHtmlMostEntityUnits).find(L';');
    if (end == rest.npos) return 0;
    const wchar_t character = HtmlCharacterOf(rest.data(), end + 1);
    if (character < kFirstLatin1) return 0;
    units = end + 1;
    return character;
}

} // namespace

// No reference overlaps another one, so the order of replacements does not change the result. The text is
// decoded over itself: what is written never overtakes what is read.
void DecodeHtmlEntities(String& text, bool namedToo) {
    if (text.IsEmpty()) return;
    const auto total = static_cast<size_t>(text.Length());
    wchar_t* const units = text.GetBuffer(text.Length());
    size_t length = 0;
    size_t read = 1;
    for (size_t at = 0; at < total; at += read) {
        const wchar_t entity = namedToo ? ReadNamedEntity({units + at, total - at}, read) : L'\0';
        const wchar_t unit = entity ? entity : units[at];
        if (unit != L'\r' && unit != L'\n') length = AppendDecoded(units, length, unit);
    }
    text.SetLength(static_cast<int64_t>(length));
}

} // namespace vxut
