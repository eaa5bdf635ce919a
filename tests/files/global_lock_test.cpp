#include "files/global_lock.h"

#include "tests/support/debug_listener.h"

#include <gtest/gtest.h>

namespace vxut {
namespace {

TEST(GlobalLockTest, OnlyALockThatStaysIsReported) {
    const DebugListener listener;
    for (const UINT flags : {GMEM_FIXED, GMEM_MOVEABLE}) {
        const clsGlobalLock block(GlobalAlloc(flags, 16), true);
        EXPECT_NE(block.Pointer(), nullptr);
    }
    EXPECT_EQ(listener.Lines().size(), 0u) << listener.Last();
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, 16);
    GlobalLock(memory);
    {
        const clsGlobalLock block(memory);
    }
    EXPECT_TRUE(listener.Heard(L"clsGlobalLock::Lock(): Failed to unlock handle, or it's still locked by"));
    GlobalUnlock(memory);
    GlobalFree(memory);
}

} // namespace
} // namespace vxut
