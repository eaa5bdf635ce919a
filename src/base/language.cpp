#include "base/language.h"

#include "base/registry.h"
#include "base/system_libraries.h"

#include <atomic>
#include <iterator>

namespace vxut {
namespace {

constexpr uint8_t kOther = 1;

// The numbers of the primary languages, from 0.
constexpr uint8_t kNumbers[] = {
    kOther, 2,      6,      8,      kOther, 11,     12,     0,      // 0
    19,     kOther, 37,     17,     18,     20,     21,     22,     // 8
    24,     25,     26,     13,     29,     30,     31,     kOther, // 16
    32,     33,     10,     34,     4,      38,     39,     40,     // 24
    kOther, 23,     41,     7,      35,     14,     27,     28,     // 32
    kOther, 16,     kOther, kOther, kOther, 5,      kOther, kOther, // 40
    kOther, kOther, kOther, kOther, kOther, kOther, 3,      kOther, // 48
    15,                                                             // 56
};
static_assert(std::size(kNumbers) == 57);

// The sublanguages whose number differs from that of their primary language.
struct SublanguageNumber {
    uint8_t primary;
    uint8_t sublanguage;
    uint8_t number;
};
constexpr SublanguageNumber kSublanguageNumbers[] = {
    {LANG_CHINESE, SUBLANG_CHINESE_SIMPLIFIED, 9}, {LANG_CHINESE, SUBLANG_CHINESE_TRADITIONAL, 48},
    {LANG_SPANISH, SUBLANG_SPANISH_COLOMBIA, 130}, {LANG_PORTUGUESE, SUBLANG_PORTUGUESE_BRAZILIAN, 129},
    {LANG_SERBIAN, SUBLANG_SERBIAN_LATIN, 42},     {LANG_SERBIAN, SUBLANG_SERBIAN_CYRILLIC, 36},
};

} // namespace

uint32_t LanguageNumber(LANGID language) noexcept {
    const uint32_t primary = PRIMARYLANGID(language);
    if (primary >= std::size(kNumbers)) return kOther;
    for (const auto& entry : kSublanguageNumbers) {
        if (entry.primary == primary && entry.sublanguage == SUBLANGID(language)) return entry.number;
    }
    return kNumbers[primary];
}

LANGID UserLanguageId() {
    static std::atomic<LANGID> cached{0}; // racing threads store the same value
    if (cached == 0) {
        auto& languageOfUser = Kernel32().GetUserDefaultUILanguage;
        cached = languageOfUser.IsAvailable() ? languageOfUser() : GetUserDefaultLangID();
    }
    return cached;
}

uint32_t UserLanguage() {
    uint32_t chosen;
    return FindSettingNumber(kSettingLanguage, chosen) ? chosen : LanguageNumber(UserLanguageId());
}

LSTATUS SetUserLanguage(uint32_t language) { return WriteSettingNumber(kSettingLanguage, language); }

} // namespace vxut
