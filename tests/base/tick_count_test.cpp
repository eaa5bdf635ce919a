#include "base/tick_count.h"

#include <gtest/gtest.h>

namespace vxut {
namespace {

TEST(TickExtenderTest, CountsOnWhenTheShortCountWrapsAndNeverStepsBack) {
    const std::pair<uint32_t, uint64_t>
        readings[] = {{0xFFFFFFF0, 0xFFFFFFF0},  {5, 0x100000005},
                      {0xFFFFFFF1, 0x100000005}, // read before the wrap, by a slower thread
                      {4, 0x100000005},          {6, 0x100000006},
                      {0x90000000, 0x190000000}, {0x0FFFFFFF, 0x20FFFFFFF}};
    clsTickExtender extender;
    for (const auto& [ticks, count] : readings) EXPECT_EQ(extender.Extend(ticks), count) << std::hex << ticks;
}

} // namespace
} // namespace vxut
