#include "base/language.h"

#include "tests/support/registry_scope.h"
#include "text/settings.h"
#include "util/frame.h"

#include <gtest/gtest.h>

namespace vxut {
namespace {

TEST(LanguageTest, NumbersLanguages) {
    const std::pair<LANGID, uint32_t> cases[] = {
        {0x0407, 0},   {0x0409, 1},  {0x0804, 9},   {0x0404, 48}, {0x1004, 1},  {0x0401, 2},  {0x040C, 18},
        {0x240A, 130}, {0x0C0A, 37}, {0x0416, 129}, {0x0816, 31}, {0x0C1A, 36}, {0x081A, 42}, {0x03FF, 1},
    };
    for (const auto& [language, number] : cases)
        EXPECT_EQ(LanguageNumber(language), number) << std::hex << language;
}

TEST(LanguageTest, PrefersTheStoredNumber) {
    test::RegistryScope value(kSettingLanguage);
    EXPECT_EQ(UtilLanguageGet(), LanguageNumber(GetUserDefaultUILanguage()));
    for (const uint32_t number : {0u, 48u, 0xFFFFFFFFu}) {
        EXPECT_EQ(UtilLanguageSet(number), ERROR_SUCCESS);
        EXPECT_EQ(UtilLanguageGet(), number);
    }
    value.SetText(L"12");
    EXPECT_EQ(UtilLanguageGet(), LanguageNumber(UserLanguageId()));
}

} // namespace
} // namespace vxut
