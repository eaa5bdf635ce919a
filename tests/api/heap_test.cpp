// Heaps as a host sees them, through the DLL.
#include "util.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

class HeapApiTest : public testing::Test {
protected:
    void TearDown() override { UtilJobClose(job); }

    HUTILJOB job = UtilJobOpen(L"HEAPS", 0);
};

TEST_F(HeapApiTest, FindsTheFaultsOfItsHost) {
    const HUTILHEAP heap = UtilHeapCreate(job, L"FAULTS", UTIL_HEAP_DEBUG);
    auto* const overrun = static_cast<char*>(UtilHeapObjectAlloc(heap, 16, UTIL_OBJECT_ZERO));
    void* const freedTwice = UtilHeapObjectAllocExt(heap, 16, 0, 0, 42);
    overrun[16] = 1;
    EXPECT_EQ(UtilHeapObjectFree(heap, overrun), UTIL_ERR_OBJECT);
    EXPECT_EQ(UtilHeapObjectFree(heap, freedTwice), UTIL_OK);
    EXPECT_EQ(UtilHeapObjectFree(heap, freedTwice), UTIL_ERR_OBJECT);
    EXPECT_EQ(UtilHeapObjectFree(heap, &job), UTIL_ERR_OBJECT);
    EXPECT_EQ(UtilHeapObjectSize(heap, overrun), 16);
    EXPECT_EQ(UtilHeapValidate(heap, overrun), UTIL_OK); // the block is whole, only the fence is not
    EXPECT_EQ(UtilHeapValidate(heap, &job), UTIL_ERR_CORRUPT);
    EXPECT_EQ(UtilHeapDelete(heap), UTIL_ERR_LEFT_BEHIND);
    EXPECT_EQ(UtilHeapDelete(heap), UTIL_ERR_HANDLE);
}

TEST_F(HeapApiTest, HeapsEndWithTheirJob) {
    const HUTILJOB owner = UtilJobOpen(L"OWNER", UTIL_JOB_DEBUG_HEAPS);
    const HUTILHEAP heap = UtilHeapCreate(owner, nullptr, 0);
    EXPECT_GE(UtilHeapSize(heap), 0); // a debug heap, as its job wants it
    EXPECT_EQ(UtilJobClose(owner), UTIL_ERR_LEFT_BEHIND);
    EXPECT_EQ(UtilHeapObjectAlloc(heap, 1, 0), nullptr);
    EXPECT_EQ(UtilHeapCreate(owner, nullptr, 0), nullptr);
}

TEST_F(HeapApiTest, ObjectsNeedNoHeap) {
    void* const object = UtilHeapObjectAlloc(nullptr, 10, UTIL_OBJECT_FILL);
    EXPECT_EQ(UtilHeapObjectSize(nullptr, object), 10);
    EXPECT_EQ(UtilHeapObjectFree(nullptr, object), UTIL_OK);
    EXPECT_EQ(UtilHeapObjectFree(nullptr, nullptr), UTIL_ERR_OBJECT);
}

TEST_F(HeapApiTest, ThreadsMakeHeapsOfTheirOwn) {
    std::vector<std::thread> threads;
    std::vector<int32_t> results(4, 1);
    for (int32_t& result : results) {
        threads.emplace_back([this, &result] {
            for (int i = 0; i < 200; ++i) {
                const HUTILHEAP heap = UtilHeapCreate(job, L"THREAD", i % 2 ? UTIL_HEAP_DEBUG : 0);
                void* const object = UtilHeapObjectAlloc(heap, i, UTIL_OBJECT_ZERO);
                result = UtilHeapObjectFree(heap, object) + UtilHeapDelete(heap);
                if (result != UTIL_OK) return;
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(results, std::vector<int32_t>(4, UTIL_OK));
}

} // namespace
