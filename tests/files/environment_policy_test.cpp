#include "files/environment_policy.h"

#include "tests/support/child_process.h"
#include "tests/support/debug_listener.h"
#include "tests/support/registry_scope.h"
#include "util/environment.h"

#include <gtest/gtest.h>

namespace vxut {
namespace {

constexpr EnvironmentType kUnknown = kEnvironmentUnknown, kUser = kEnvironmentInteractive,
                          kNoUser = kEnvironmentNonInteractive, kWeb = kEnvironmentWebServer;

TEST(EnvironmentTypeTest, TheFirstTestThatSaysSomethingDecides) {
    const struct {
        const wchar_t *process, *user;
        EnvironmentType token;
        bool isUserRootReadable;
        EnvironmentType expected;
    } kRows[] = {
        {L"HOST", L"ASPNET", kUser, true, kWeb},    {L"W3WP", L"SYSTEM", kUser, true, kWeb},
        {L"ASPNET_WP", L"joan", kUser, true, kWeb}, {L"IISEXPRESS", L"joan", kUser, true, kWeb},
        {L"W3WP2", L"joan", kUser, true, kUser},    {L"WEBDEV.WEBSERVER40", L"joan", kUser, true, kWeb},
        {L"HOST", L"System", kUser, true, kNoUser}, {L"WEBDEV.WEBSERVE", L"joan", kUser, true, kUser},
        {L"HOST", L"systems", kUser, false, kUser}, {L"HOST", L"joan", kNoUser, true, kNoUser},
        {L"HOST", L"joan", kUnknown, true, kUser},  {L"HOST", L"", kUnknown, false, kNoUser},
    };
    for (const auto& row : kRows) {
        EXPECT_EQ(DecideEnvironment({row.process, row.user, row.token, row.isUserRootReadable}), row.expected)
            << row.process << ' ' << row.user;
    }
}

TEST(EnvironmentTypeTest, TheFirstTellingGroupOfATokenDecides) {
    const auto typeOf = [](DWORD first, DWORD second) {
        SID sids[] = {{SID_REVISION, 1, SECURITY_NT_AUTHORITY, {first}},
                      {SID_REVISION, 1, SECURITY_NT_AUTHORITY, {second}}};
        struct {
            TOKEN_GROUPS groups;
            SID_AND_ATTRIBUTES second;
        } const token = {{2, {{&sids[0], 0}}}, {&sids[1], 0}};
        return TypeOfTokenGroups(token.groups);
    };
    EXPECT_EQ(typeOf(SECURITY_INTERACTIVE_RID, SECURITY_SERVICE_RID), kUser);
    EXPECT_EQ(typeOf(SECURITY_SERVICE_RID, SECURITY_INTERACTIVE_RID), kNoUser);
    EXPECT_EQ(typeOf(SECURITY_BATCH_RID, SECURITY_INTERACTIVE_RID), kUser);
    EXPECT_EQ(typeOf(SECURITY_BATCH_RID, SECURITY_NETWORK_RID), kNoUser);
}

TEST(InteractionTest, HiddenStationsAndListedProcessesAreNotAsked) {
    constexpr auto kHidden = L"suppressed UI interaction: invisible WindowStation";
    constexpr auto kListed =
        L"suppressed UI interaction: application 'B' forced to be UI inactive by registry key";
    const struct {
        const wchar_t* process;
        bool isHidden;
        const wchar_t* listed;
        EnvironmentType type;
        bool expected;
        const wchar_t* report;
    } kRows[] = {
        {L"B", true, L"a;b", kUser, false, kHidden},
        {L"B", false, L"a;b", kUser, false, kListed},
        {L"B", false, L"B;a;", kUser, false, kListed},
        {L"B2", false, L"a;b", kUser, true, nullptr},
        {L"B", false, L"", kUser, true, nullptr},
        {L"B", false, L"", kEnvironmentReserved, true, nullptr},
        {L"B", false, L"", kNoUser, false, nullptr},
        {L"B", false, L"", kWeb, false, nullptr},
    };
    for (const auto& row : kRows) {
        const DebugListener listener;
        EXPECT_EQ(DecideInteraction({row.process, row.isHidden, row.listed}, row.type), row.expected);
        EXPECT_EQ(listener.Lines().size(), row.report ? 1u : 0u);
        EXPECT_TRUE(!row.report || listener.Heard(row.report)) << row.report;
    }
}

// The child prints its environment type, whether interaction is allowed, and both again.
TEST(InteractionTest, ADesktopProcessIsInteractiveUnlessItIsListed) {
    test::RegistryScope listed(kSettingNonInteractiveApps);
    EXPECT_EQ(test::RunChild(L"environment").output, "1 1 1 1 ");
    listed.SetText(L"other;VXUT_TEST_CHILD");
    EXPECT_EQ(test::RunChild(L"environment").output, "1 0 1 0 ");
}

TEST(ThreadingSectionTest, TwoLocksAreHandedOut) {
    CRITICAL_SECTION *gdi = nullptr, *debugHelp = nullptr;
    UtilGetGDIThreadingCS(&gdi);
    UtilGetDBGHELPThreadingCS(&debugHelp);
    EXPECT_NE(gdi, debugHelp);
    for (CRITICAL_SECTION* lock : {gdi, debugHelp}) EnterCriticalSection(lock), LeaveCriticalSection(lock);
    UtilGetGDIThreadingCS(nullptr);
    UtilGetDBGHELPThreadingCS(nullptr);
}

} // namespace
} // namespace vxut
