#include "text/settings.h"

#include "tests/support/child_process.h"
#include "tests/support/registry_scope.h"

#include <gtest/gtest.h>

namespace vxut {
namespace {

constexpr scSetting kText = {SettingRoot::kCurrentUser, L"Software\\Velmora\\Tests", L"Text"};
constexpr scSetting kNumber = {SettingRoot::kUser, L"Software\\Velmora\\Tests", L"Number"};

TEST(SettingsTest, ReadsTextsOfAnyLength) {
    test::RegistryScope value(kText);
    for (const size_t length : {0, 1, 255, 256, 257, 258, 5000}) {
        const std::wstring text(length, L't');
        for (const size_t terminator : {1, 0}) {
            value.Set(REG_SZ, text.c_str(), (length + terminator) * sizeof(wchar_t));
            EXPECT_STREQ(ReadSettingString(kText, L"absent").Text(), text.c_str()) << length;
        }
    }
    value.Set(REG_SZ, "o\0d\0d", 5); // half a unit after the second
    EXPECT_EQ(ReadSettingString(kText).Left(2), L"od");
}

TEST(SettingsTest, TakesTheFallbackForAnAbsentOrOtherValue) {
    test::RegistryScope text(kText), number(kNumber);
    EXPECT_STREQ(ReadSettingString(kText, L"fallback").Text(), L"fallback");
    EXPECT_EQ(ReadSettingNumber(kNumber, 17), 17u);
    text.SetNumber(0x00540054); // would be "TT"
    EXPECT_EQ(ReadSettingFirstUnit(kText, L'F'), L'F');
    number.SetText(L"4");
    EXPECT_EQ(ReadSettingNumber(kNumber, 17), 17u);
    number.Set(REG_DWORD, "\1\0", 2);
    EXPECT_STREQ(ReadSettingString(kNumber, L"fallback").Text(), L"fallback");
}

TEST(SettingsTest, ReadsTheNumberItWrote) {
    const test::RegistryScope value(kNumber);
    EXPECT_EQ(WriteSettingNumber(kNumber, 0xFFFFFFFE), ERROR_SUCCESS);
    EXPECT_EQ(ReadSettingNumber(kNumber, 0), 0xFFFFFFFE);
}

// The answer is kept for the life of a process, so each case has one of its own.
TEST(SettingsTest, OpensTheImpersonatedUsersRootWhenTheMachineIsSetUpSo) {
    test::RegistryScope value(kSettingImpersonationAware);
    EXPECT_EQ(test::RunChild(L"user-root").output, "current user");
    const std::pair<const wchar_t*, const char*> cases[] = {
        {L"True", "opened"}, {L"t", "current user"}, {L"1", "current user"}};
    for (const auto& [text, root] : cases) {
        value.SetText(text);
        EXPECT_EQ(test::RunChild(L"user-root").output, root) << testing::PrintToString(text);
    }
}

} // namespace
} // namespace vxut
