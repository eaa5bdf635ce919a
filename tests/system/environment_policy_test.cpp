#include "system/environment_policy.h"

#include "tests/support/child_process.h"
#include "tests/support/debug_listener.h"
#include "tests/support/registry_scope.h"
#include "util/environment.h"

#include <gtest/gtest.h>

#include <tuple>

namespace vxut {
namespace {

constexpr EnvironmentType kUnknown = kEnvironmentUnknown, kUser = UTIL_ENVIRONMENT_INTERACTIVE,
                          kNoUser = UTIL_ENVIRONMENT_NONINTERACTIVE, kWeb = UTIL_ENVIRONMENT_WEBSERVER;

TEST(EnvironmentTypeTest, TheFirstTestWithAResultDecides) {
    const std::tuple<const wchar_t*, const wchar_t*, EnvironmentType, bool, EnvironmentType> kRows[] = {
        {L"HOST", L"ASPNET", kUser, true, kWeb},    {L"W3WP", L"SYSTEM", kUser, true, kWeb},
        {L"W3WP2", L"joan", kUser, true, kUser},    {L"WEBDEV.WEBSERVER40", L"joan", kUser, true, kWeb},
        {L"HOST", L"System", kUser, true, kNoUser}, {L"WEBDEV.WEBSERVE", L"joan", kUser, true, kUser},
        {L"HOST", L"joan", kUnknown, true, kUser},  {L"HOST", L"", kUnknown, false, kNoUser},
    };
    for (const auto& [process, user, token, isUserRootReadable, expected] : kRows)
        EXPECT_EQ(DecideEnvironment({process, user, token, isUserRootReadable}), expected) << process << user;
}

TEST(InteractionTest, HiddenStationsAndListedProcessesAreNotAsked) {
    constexpr auto kHidden = L"suppressed UI interaction: invisible WindowStation";
    constexpr auto kListed =
        L"suppressed UI interaction: application 'B' forced to be UI inactive by registry key";
    const std::tuple<const wchar_t*, bool, const wchar_t*, EnvironmentType, bool, const wchar_t*> kRows[] = {
        {L"B", true, L"a;b", kUser, false, kHidden},
        {L"B", false, L"B;a;", kUser, false, kListed},
        {L"B2", false, L"a;b", kUser, true, nullptr},
        {L"B", false, L"", UTIL_ENVIRONMENT_RESERVED, true, nullptr},
        {L"B", false, L"", kNoUser, false, nullptr},
    };
    for (const auto& [process, isHidden, listed, type, expected, report] : kRows) {
        const DebugListener listener;
        EXPECT_EQ(DecideInteraction({process, isHidden, listed}, type), expected);
        EXPECT_TRUE(!report || listener.Heard(report));
    }
}

// The child prints its environment type, whether interaction is allowed, and both again.
TEST(InteractionTest, ADesktopProcessIsInteractiveUnlessItIsListed) {
    test::RegistryScope listed(kSettingNonInteractiveApps);
    EXPECT_EQ(test::RunChild(L"environment").output, "1 1 1 1 ");
    listed.SetText(L"other;VXUT_TEST_CHILD");
    EXPECT_EQ(test::RunChild(L"environment").output, "1 0 1 0 ");
}

} // namespace
} // namespace vxut
