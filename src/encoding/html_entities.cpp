#include "encoding/html_entities.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

namespace vxut {
namespace {

constexpr wchar_t kFirstNamed = 0xA0;

// The entities of U+00A0 to U+00FF in the order of their characters.
constexpr const wchar_t* kNamed[] = {
    L"&nbsp;",   L"&iexcl;",  L"&cent;",   L"&pound;",  L"&curren;", L"&yen;",    L"&brvbar;", L"&sect;",
    L"&uml;",    L"&copy;",   L"&ordf;",   L"&laquo;",  L"&not;",    L"&shy;",    L"&reg;",    L"&macr;",
    L"&deg;",    L"&plusmn;", L"&sup2;",   L"&sup3;",   L"&acute;",  L"&micro;",  L"&para;",   L"&middot;",
    L"&cedil;",  L"&sup1;",   L"&ordm;",   L"&raquo;",  L"&frac14;", L"&frac12;", L"&frac34;", L"&iquest;",
    L"&Agrave;", L"&Aacute;", L"&Acirc;",  L"&Atilde;", L"&Auml;",   L"&Aring;",  L"&AElig;",  L"&Ccedil;",
    L"&Egrave;", L"&Eacute;", L"&Ecirc;",  L"&Euml;",   L"&Igrave;", L"&Iacute;", L"&Icirc;",  L"&Iuml;",
    L"&ETH;",    L"&Ntilde;", L"&Ograve;", L"&Oacute;", L"&Ocirc;",  L"&Otilde;", L"&Ouml;",   L"&times;",
    L"&Oslash;", L"&Ugrave;", L"&Uacute;", L"&Ucirc;",  L"&Uuml;",   L"&Yacute;", L"&THORN;",  L"&szlig;",
    L"&agrave;", L"&aacute;", L"&acirc;",  L"&atilde;", L"&auml;",   L"&aring;",  L"&aelig;",  L"&ccedil;",
    L"&egrave;", L"&eacute;", L"&ecirc;",  L"&euml;",   L"&igrave;", L"&iacute;", L"&icirc;",  L"&iuml;",
    L"&eth;",    L"&ntilde;", L"&ograve;", L"&oacute;", L"&ocirc;",  L"&otilde;", L"&ouml;",   L"&divide;",
    L"&oslash;", L"&ugrave;", L"&uacute;", L"&ucirc;",  L"&uuml;",   L"&yacute;", L"&thorn;",  L"&yuml;",
};
static_assert(std::size(kNamed) == 0x100 - kFirstNamed);

struct Entity {
    wchar_t character;
    const wchar_t* text;
};
// The euro sign has the number of the default code page and not U+20AC: callers rely on it.
constexpr Entity kOthers[] = {
    {L'&', L"&amp;"}, {L'"', L"&quot;"}, {L'<', L"&lt;"}, {L'>', L"&gt;"}, {128, L"&euro;"},
};

// The units of an entity between "&" and ";" as one number, 8 bits each; 0 if they are not those of any.
constexpr uint64_t KeyOf(const wchar_t* entity, size_t units) noexcept {
    if (units < 3 || units > kHtmlMostEntityUnits) return 0;
    uint64_t key = 0;
    for (size_t i = 1; i < units - 1; ++i) {
        if (entity[i] > 0x7F) return 0;
        key = key << 8 | entity[i];
    }
    return key;
}

constexpr uint64_t KeyOf(const wchar_t* entity) noexcept {
    size_t units = 0;
    while (entity[units]) ++units;
    return KeyOf(entity, units);
}

struct Keyed {
    uint64_t key;
    wchar_t character;
};
constexpr bool IsBefore(const Keyed& left, const Keyed& right) noexcept { return left.key < right.key; }

// All entities, ordered by their keys for the search.
constexpr auto kByKey = [] {
    std::array<Keyed, std::size(kNamed) + std::size(kOthers)> rows{};
    size_t count = 0;
    for (size_t i = 0; i < std::size(kNamed); ++i)
        rows[count++] = {KeyOf(kNamed[i]), static_cast<wchar_t>(kFirstNamed + i)};
    for (const Entity& entity : kOthers) rows[count++] = {KeyOf(entity.text), entity.character};
    std::sort(rows.begin(), rows.end(), IsBefore);
    return rows;
}();
static_assert(kByKey.front().key != 0);

} // namespace

const wchar_t* HtmlEntityOf(wchar_t character) noexcept {
    if (character >= kFirstNamed && character <= 0xFF) return kNamed[character - kFirstNamed];
    for (const Entity& entity : kOthers)
        if (entity.character == character) return entity.text;
    return nullptr;
}

wchar_t HtmlCharacterOf(const wchar_t* entity, size_t units) noexcept {
    const Keyed wanted{KeyOf(entity, units), 0};
    const auto* const row = std::lower_bound(kByKey.begin(), kByKey.end(), wanted, IsBefore);
    return row != kByKey.end() && row->key == wanted.key ? row->character : L'\0';
}

} // namespace vxut
