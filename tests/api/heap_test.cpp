// Heaps as a host sees them, through the DLL.
#include "util.h"

#include <gtest/gtest.h>

namespace {

TEST(HeapApiTest, FindsTheFaultsOfItsHost) {
    HUTILJOB job = UtilJobOpen(L"HEAPS", UTIL_JOB_DEBUG_HEAPS);
    const HUTILHEAP heap = UtilHeapCreate(job, nullptr, 0);
    auto* const overrun = static_cast<char*>(UtilHeapObjectAlloc(heap, 16, UTIL_OBJECT_ZERO));
    void* const freedTwice = UtilHeapObjectAllocExt(heap, 16, 0, 0, 42);
    overrun[16] = 1;
    EXPECT_EQ(UtilHeapObjectSize(heap, overrun), 16);
    EXPECT_EQ(UtilHeapObjectFree(heap, overrun), UTIL_ERR_OBJECT);
    EXPECT_EQ(UtilHeapObjectFree(heap, freedTwice), UTIL_OK);
    EXPECT_EQ(UtilHeapObjectFree(heap, freedTwice), UTIL_ERR_OBJECT);
    EXPECT_EQ(UtilHeapObjectFree(heap, &job), UTIL_ERR_OBJECT);
    EXPECT_EQ(UtilHeapValidate(heap, &job), UTIL_ERR_CORRUPT);
    EXPECT_EQ(UtilHeapSize(heap), UtilHeapSizeObjects(heap));
    EXPECT_NE(UtilHeapShrink(heap), UTIL_ERR_UNAVAILABLE);
    EXPECT_EQ(UtilHeapDelete(heap), UTIL_ERR_LEFT_BEHIND);
    EXPECT_EQ(UtilHeapDelete(heap), UTIL_ERR_HANDLE);
    EXPECT_EQ(UtilJobClose(job), UTIL_OK);
}

} // namespace
