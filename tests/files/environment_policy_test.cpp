#include "files/environment_policy.h"

#include "frame/owners.h"
#include "tests/support/child_process.h"
#include "tests/support/debug_listener.h"
#include "tests/support/registry_scope.h"
#include "util/environment.h"

#include <gtest/gtest.h>
#include <sddl.h>

#include <cstddef>
#include <initializer_list>
#include <vector>

namespace vxut {
namespace {

TEST(EnvironmentTypeTest, TheFirstTestThatSaysSomethingDecides) {
    const struct {
        const wchar_t *process, *user;
        EnvironmentType token;
        bool isUserRootReadable;
        EnvironmentType expected;
    } kRows[] = {
        {L"HOST", L"ASPNET", kEnvironmentInteractive, true, kEnvironmentWebServer},
        {L"W3WP", L"SYSTEM", kEnvironmentInteractive, true, kEnvironmentWebServer},
        {L"ASPNET_WP", L"joan", kEnvironmentInteractive, true, kEnvironmentWebServer},
        {L"IISEXPRESS", L"joan", kEnvironmentInteractive, true, kEnvironmentWebServer},
        {L"WEBDEV.WEBSERVER40", L"joan", kEnvironmentInteractive, true, kEnvironmentWebServer},
        {L"W3WP2", L"joan", kEnvironmentInteractive, true, kEnvironmentInteractive},
        {L"WEBDEV.WEBSERVE", L"joan", kEnvironmentInteractive, true, kEnvironmentInteractive},
        {L"HOST", L"System", kEnvironmentInteractive, true, kEnvironmentNonInteractive},
        {L"HOST", L"systems", kEnvironmentInteractive, false, kEnvironmentInteractive},
        {L"HOST", L"joan", kEnvironmentNonInteractive, true, kEnvironmentNonInteractive},
        {L"HOST", L"joan", kEnvironmentUnknown, true, kEnvironmentInteractive},
        {L"HOST", L"", kEnvironmentUnknown, false, kEnvironmentNonInteractive},
    };
    for (const auto& row : kRows) {
        EXPECT_EQ(DecideEnvironment({row.process, row.user, row.token, row.isUserRootReadable}), row.expected)
            << row.process << ' ' << row.user;
    }
}

// A token's groups, from identifiers in their text form.
class Groups {
public:
    Groups(std::initializer_list<const wchar_t*> sids)
        : memory_(offsetof(TOKEN_GROUPS, Groups) + (sids.size() + 1) * sizeof(SID_AND_ATTRIBUTES)) {
        TOKEN_GROUPS& groups = *reinterpret_cast<TOKEN_GROUPS*>(memory_.data());
        for (const wchar_t* sid : sids) {
            ConvertStringSidToSidW(sid, reinterpret_cast<PSID*>(owners_.emplace_back().Receive()));
            SID_AND_ATTRIBUTES* const first = groups.Groups;
            first[groups.GroupCount++].Sid = owners_.back().Get();
        }
    }
    operator const TOKEN_GROUPS&() const { return *reinterpret_cast<const TOKEN_GROUPS*>(memory_.data()); }

private:
    std::vector<BYTE> memory_;
    std::vector<clsAutoLocalFree> owners_;
};

TEST(EnvironmentTypeTest, TheFirstTellingGroupOfATokenDecides) {
    constexpr const wchar_t *kEveryone = L"S-1-1-0", *kInteractive = L"S-1-5-4", *kService = L"S-1-5-6";
    EXPECT_EQ(TypeOfTokenGroups(Groups{kEveryone, kInteractive, kService}), kEnvironmentInteractive);
    EXPECT_EQ(TypeOfTokenGroups(Groups{kEveryone, kService, kInteractive}), kEnvironmentNonInteractive);
    EXPECT_EQ(TypeOfTokenGroups(Groups{kEveryone, L"S-1-5-4-1"}), kEnvironmentNonInteractive);
    EXPECT_EQ(TypeOfTokenGroups(Groups{}), kEnvironmentNonInteractive);
}

TEST(InteractionTest, HiddenStationsAndListedProcessesAreNotAsked) {
    constexpr const wchar_t *kHidden = L"suppressed UI interaction: invisible WindowStation",
                            *kListed =
                                L"suppressed UI interaction: application 'B' forced to be UI inactive by "
                                L"registry key",
                            *kSilent = nullptr;
    const struct {
        const wchar_t* process;
        bool isHidden;
        const wchar_t* listed;
        EnvironmentType type;
        bool expected;
        const wchar_t* report;
    } kRows[] = {
        {L"B", true, L"a;b", kEnvironmentInteractive, false, kHidden},
        {L"B", false, L"a;b", kEnvironmentInteractive, false, kListed},
        {L"B", false, L"B;a;", kEnvironmentInteractive, false, kListed},
        {L"B2", false, L"a;b", kEnvironmentInteractive, true, kSilent},
        {L"B", false, L"", kEnvironmentInteractive, true, kSilent},
        {L"B", false, L"", kEnvironmentReserved, true, kSilent},
        {L"B", false, L"", kEnvironmentNonInteractive, false, kSilent},
        {L"B", false, L"", kEnvironmentWebServer, false, kSilent},
    };
    for (const auto& row : kRows) {
        const DebugListener listener;
        EXPECT_EQ(DecideInteraction({row.process, row.isHidden, row.listed}, row.type), row.expected);
        EXPECT_EQ(listener.Lines().size(), row.report ? 1u : 0u);
        if (row.report) EXPECT_TRUE(listener.Heard(row.report)) << row.report;
    }
}

// The child prints its environment type, whether interaction is allowed, and both again.
TEST(InteractionTest, ADesktopProcessIsInteractiveUnlessItIsListed) {
    test::RegistryScope listed(kSettingNonInteractiveApps);
    EXPECT_EQ(test::RunChild(L"environment").output, "1 1 1 1");
    listed.SetText(L"other;VXUT_TEST_CHILD");
    EXPECT_EQ(test::RunChild(L"environment").output, "1 0 1 0");
}

TEST(ThreadingSectionTest, TwoLocksAreHandedOut) {
    CRITICAL_SECTION *gdi = nullptr, *debugHelp = nullptr, *again = nullptr;
    UtilGetGDIThreadingCS(&gdi);
    UtilGetDBGHELPThreadingCS(&debugHelp);
    UtilGetGDIThreadingCS(&again);
    UtilGetGDIThreadingCS(nullptr);
    UtilGetDBGHELPThreadingCS(nullptr);
    EXPECT_EQ(gdi, again);
    ASSERT_NE(gdi, debugHelp);
    EXPECT_TRUE(TryEnterCriticalSection(gdi));
    LeaveCriticalSection(gdi);
}

} // namespace
} // namespace vxut
