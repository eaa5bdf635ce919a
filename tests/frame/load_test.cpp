#include "frame/load.h"

#include "frame/identity.h"
#include "tests/support/child_process.h"
#include "tests/support/debug_listener.h"
#include "tests/support/debug_strings.h"

#include <gtest/gtest.h>

#include <string>

namespace vxut {
namespace {

TEST(IdentityTest, SplitsThePathsInUpperCaseAndKnowsTheSystem) {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    CharUpperW(path);
    const ProcessIdentity& identity = Identity();
    EXPECT_STREQ(identity.processPath, path);
    EXPECT_STREQ(identity.processFileName, L"VXUT_UNIT_TESTS.EXE");
    EXPECT_STREQ(identity.processBaseName, L"VXUT_UNIT_TESTS");
    EXPECT_EQ(std::wstring(identity.processDirectory) + identity.processFileName, path);
    EXPECT_STREQ(identity.libraryPath, path); // the tests stand for the library
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    GetVersionExW(&version);
    EXPECT_EQ(identity.osVersion, version.dwMajorVersion << 8 | version.dwMinorVersion);
}

TEST(LoadTest, OnlyMentionsAMissingManifest) {
    const test::DebugStrings strings;
    CreateActivationContext(); // the program of the tests has none
    EXPECT_TRUE(strings.Heard("hActCtx == NULL, no manifest added, I guess"));
}

// Called as the run-time library does, which under Wine has no function that calls it.
TEST(LoadTest, ReportsBadArgumentsOfTheRunTimeAndGoesOn) {
    const DebugListener listener;
    const auto report = _get_invalid_parameter_handler();
    ASSERT_NE(report, nullptr);
    report(L"stream != NULL", L"fclose", L"fclose.c", 43, 0);
    EXPECT_TRUE(listener.Heard(L"fclose.c (line 43): fclose: INVALID PARAMETER in '(null)'"));
    report(nullptr, nullptr, nullptr, 0, 0);
    EXPECT_TRUE(listener.Heard(L"INVALID PARAMETER in CRT function detected - ignored"));
}

TEST(LoadTest, UnloadsServicesInTheirOrderAndOnce) {
    EXPECT_EQ(test::RunChild(L"unload").output, "handles pool | ");
}

} // namespace
} // namespace vxut
