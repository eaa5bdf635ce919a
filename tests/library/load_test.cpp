#include "library/load.h"

#include "tests/support/child_process.h"
#include "tests/support/debug_listener.h"

#include <gtest/gtest.h>

namespace vxut {
namespace {

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
