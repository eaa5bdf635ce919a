#include "frame/tick_count.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace vxut {
namespace {

TEST(TickCountTest, IsTheSystems) {
    const ULONGLONG before = GetTickCount64();
    const uint64_t ticks = TickCount64();
    EXPECT_GE(ticks, before);
    EXPECT_LE(ticks, GetTickCount64());
}

TEST(TickExtenderTest, CountsOnWhenTheShortCountWraps) {
    clsTickExtender extender;
    EXPECT_EQ(extender.Extend(0xFFFFFF00), 0xFFFFFF00u);
    EXPECT_EQ(extender.Extend(0x10), 0x100000010u);
    EXPECT_EQ(extender.Extend(0x90000000), 0x190000000u);
    EXPECT_EQ(extender.Extend(0x0FFFFFFF), 0x20FFFFFFFu);
}

TEST(TickExtenderTest, NeverStepsBack) {
    clsTickExtender extender;
    extender.Extend(0xFFFFFFF0);
    extender.Extend(5);
    EXPECT_EQ(extender.Extend(0xFFFFFFF1), 0x100000005u); // read before the wrap, by a slower thread
    EXPECT_EQ(extender.Extend(4), 0x100000005u);
    EXPECT_EQ(extender.Extend(6), 0x100000006u);
}

} // namespace
} // namespace vxut
