// String resources by language. A string of id n is entry n % 16 of block n / 16 + 1.
#include "text/string.h"

#include "base/language.h"

#include <algorithm>
#include <array>

namespace vxut {
namespace {

constexpr uint32_t kStringsPerBlock = 16;
constexpr LANGID kEnglish = MAKELANGID(LANG_ENGLISH, SUBLANG_NEUTRAL);
constexpr LANGID kGerman = MAKELANGID(LANG_GERMAN, SUBLANG_NEUTRAL);

HRSRC FindBlock(HMODULE module, uint32_t block, LANGID language) {
    const std::array<LANGID, 6> candidates = {
        language, UserLanguageId(), LANGIDFROMLCID(GetThreadLocale()), PRIMARYLANGID(GetUserDefaultLangID()),
        kEnglish, kGerman};
    const auto* first = candidates.begin();
    for (const auto* candidate = first; candidate != candidates.end(); ++candidate) {
        const bool tried = std::find(first, candidate, *candidate) != candidate;
        if (*candidate == 0 || tried) continue;
        HRSRC found = FindResourceExW(module, RT_STRING, MAKEINTRESOURCEW(block), *candidate);
        if (found) return found;
    }
    return FindResourceW(module, MAKEINTRESOURCEW(block), RT_STRING);
}

// Walks the counted strings of a block and stops at its end, whatever the lengths say.
String EntryOfBlock(HMODULE module, HRSRC block, uint32_t index) {
    const auto* unit = static_cast<const wchar_t*>(LockResource(LoadResource(module, block)));
    if (unit == nullptr) return String();
    const wchar_t* end = unit + SizeofResource(module, block) / sizeof(wchar_t);
    for (; unit < end; --index) {
        const auto length = std::min<ptrdiff_t>(*unit, end - unit - 1);
        if (index == 0) {
            String entry;
            entry.Append(unit + 1, length);
            return entry;
        }
        unit += 1 + length;
    }
    return String();
}

} // namespace

String String::FromResource(HMODULE module, uint32_t id, LANGID language) {
    HRSRC block = FindBlock(module, id / kStringsPerBlock + 1, language);
    if (block) return EntryOfBlock(module, block, id % kStringsPerBlock);
    constexpr int kCapacity = 4096;
    wchar_t text[kCapacity];
    return LoadStringW(module, id, text, kCapacity) > 0 ? String(text) : String();
}

} // namespace vxut
