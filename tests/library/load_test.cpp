#include "library/load.h"

#include "tests/support/child_process.h"

#include <gtest/gtest.h>

namespace vxut {
namespace {

TEST(LoadTest, ReportsBadArgumentsOfRunTimesAndGoesOn) {
    EXPECT_EQ(test::RunChild(L"invalid-parameter").output, "refused, reported, installed, restored, kept");
}

TEST(LoadTest, UnloadsServicesInTheirOrderAndOnce) {
    EXPECT_EQ(test::RunChild(L"unload").output, "handles pool | ");
}

// The first throw of the process or of a thread, when no memory is left.
TEST(LoadTest, CallsFailWithoutMemoryAndTheProcessLives) {
    for (const wchar_t* task : {L"starved", L"starved-thread", L"starved-older-thread"})
        EXPECT_EQ(test::RunChild(task).output, "fails, opens") << task;
    EXPECT_EQ(test::RunChild(L"starved-crowd").output, "4000");
}

TEST(LoadTest, LeavesNothingBehindHoweverOftenItIsLoaded) {
    for (const wchar_t* task : {L"load-cycles", L"load-and-work-cycles"})
        EXPECT_EQ(test::RunChild(task).output, "slots 0, handles 0, regions 0, heap 0") << task;
}

} // namespace
} // namespace vxut
