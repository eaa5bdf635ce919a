// Heaps as a whole: creation, reports and end.
#include "heap/job.h"
#include "tests/support/guarded_pages.h"
#include "tests/support/heap_fixture.h"

#include <atomic>
#include <thread>

namespace vxut::test {
namespace {

TEST_F(HeapTest, FlagsOfJobAndHeapDecideOnDebugging) {
    constexpr uint32_t kDebugJob = UTIL_JOB_DEBUG_HEAPS, kNever = UTIL_HEAP_NEVER_DEBUG;
    const struct {
        uint32_t jobFlags, heapFlags;
        bool isDebug, isReported;
    } rows[] = {
        {0, 0, false, false},
        {0, UTIL_HEAP_DEBUG, true, true},
        {0, UTIL_HEAP_DEBUG | kNever, false, true},
        {kDebugJob, 0, true, false},
        {kDebugJob, kNever, false, false},
        {UTIL_JOB_TRACE, 0, false, true}, // reported because of the trace bit
    };
    const std::wstring name(40, L'n');
    for (const auto& row : rows) {
        const DebugListener ears;
        const HUTILJOB owner = UtilJobOpen(L"FLAGS", row.jobFlags);
        const HUTILHEAP heap = UtilHeapCreate(owner, name.c_str(), row.heapFlags);
        EXPECT_EQ(Node(heap).IsDebug(), row.isDebug) << row.heapFlags;
        EXPECT_EQ(Node(heap).name, name.substr(0, 32));
        const std::wstring line = L":FLAGS: UtilHeapCreate(..,'" + name + L"',..) called with DEBUG bit\n";
        EXPECT_EQ(ears.Heard(line.c_str()), row.isReported) << row.heapFlags;
        EXPECT_EQ(UtilJobClose(owner), UTIL_ERR_LEFT_BEHIND);
    }
}

TEST_F(HeapTest, RefusesInvalidHandles) {
    const GuardedPages pages;
    const HUTILHEAP deleted = UtilHeapCreate(job, L"DELETED", 0);
    EXPECT_EQ(UtilHeapDelete(deleted), UTIL_OK);
    EXPECT_EQ(UtilHeapCreate(job, L"X", UTIL_HEAP_REFUSED), nullptr);
    for (void* const pointer : {static_cast<void*>(nullptr), static_cast<void*>(deleted), pages.Untouchable(),
                                reinterpret_cast<void*>(UINTPTR_MAX), static_cast<void*>(job)}) {
        const auto heap = static_cast<HUTILHEAP>(pointer);
        for (const auto function : {UtilHeapDelete, UtilHeapSize, UtilHeapSizeObjects, UtilHeapShrink})
            EXPECT_EQ(function(heap), heap ? UTIL_ERR_HANDLE : 0);
        EXPECT_EQ(UtilHeapCreate(static_cast<HUTILJOB>(pointer), L"X", 0) != nullptr, pointer == job);
        if (heap == nullptr) continue;
        EXPECT_EQ(UtilHeapValidate(heap, nullptr), UTIL_ERR_HANDLE);
        EXPECT_EQ(UtilHeapObjectAlloc(heap, 8, 0), nullptr);
        EXPECT_EQ(UtilHeapObjectFree(heap, job), UTIL_ERR_OBJECT);
        EXPECT_EQ(UtilHeapObjectSize(heap, job), UTIL_ERR_OBJECT);
    }
}

TEST_F(HeapTest, RefusesNamesThatLeadNowhere) {
    const GuardedPages pages;
    wchar_t* const unterminated = pages.Last<wchar_t>(5);
    std::wmemset(unterminated, L'x', 5);
    listener.isAttached = true;
    for (const void* const wild :
         {static_cast<const void*>(unterminated), static_cast<const void*>(pages.Untouchable()),
          reinterpret_cast<const void*>(1)}) {
        EXPECT_EQ(UtilHeapCreate(job, static_cast<const wchar_t*>(wild), UTIL_HEAP_DEBUG), nullptr) << wild;
        std::thread([&] { EXPECT_EQ(UtilHeapDelete(UtilHeapCreate(job, L"X", 0)), UTIL_OK); }).join();
    }
    EXPECT_EQ(Reports(listener).size(), 3u);
}

TEST_F(HeapTest, ReportsWhatIsLeftWhenItEnds) {
    auto* const left = static_cast<char*>(UtilHeapObjectAlloc(debug, 3, UTIL_OBJECT_NO_STACK));
    std::memcpy(left, "abc", 4);
    UtilHeapObjectFree(debug, UtilHeapObjectAlloc(debug, 100, 0));
    UtilHeapObjectAlloc(debug, 5, UTIL_OBJECT_PLAIN); // counted, but not listed
    EXPECT_EQ(Node(debug).bytes, 3);
    listener.isAttached = true;
    EXPECT_EQ(UtilHeapDelete(plain), UTIL_OK); // never used: nothing to report
    EXPECT_EQ(UtilHeapDelete(debug), UTIL_ERR_LEFT_BEHIND);
    const std::wstring object = Text(L"-Object at %#p, 3(=0x00000003) Bytes", left);
    const Lines expected = {
        L"Error: Memory overrun, fence value has been changed",
        L" " + object,
        L"   61 62 63                 abc     ",
        L"Heap['JOB'/'DEBUG']: max 2, total 3 allocations",
        L"Warning: deleting heap, but objects are left:",
        L" Heap['JOB'/'DEBUG']: 2 objects",
        L"  Heap allocation stack trace:",
        L"  " + object,
        L"    61 62 63                 abc     ",
    };
    EXPECT_EQ(Reports(listener), expected);
    EXPECT_TRUE(listener.Heard(L":    [called by "));
}

TEST_F(HeapTest, AClosedJobDestroysItsHeapsInOrder) {
    const HUTILJOB owner = UtilJobOpen(L"OWNER", 0);
    HUTILHEAP heaps[] = {nullptr, nullptr, nullptr};
    for (HUTILHEAP& heap : heaps) heap = UtilHeapCreate(owner, nullptr, 0);
    UtilHeapObjectAlloc(heaps[0], 8, 0);
    for (const int i : {1, 2}) EXPECT_EQ(UtilHeapDelete(heaps[i]), UTIL_OK); // in the middle, at the end
    UtilHeapObjectAlloc(UtilHeapCreate(owner, L"ARENA", UTIL_HEAP_NO_WARNING), 8, 0);
    listener.isAttached = true;
    EXPECT_EQ(UtilJobClose(owner), UTIL_ERR_LEFT_BEHIND);
    const Lines expected = {
        L"Error: deleting module 'OWNER', but the following heaps are left:",
        L" Heap['OWNER'/'']: 1 objects",
        L" Heap['OWNER'/'']: max 1, total 1 allocations",
        L" Warning: deleting heap, but objects are left:",
        L"  Heap['OWNER'/'']: 1 objects",
        L" Heap['OWNER'/'ARENA']: 1 objects",
        L" Heap['OWNER'/'ARENA']: max 1, total 1 allocations",
    };
    EXPECT_EQ(Reports(listener), expected);
    EXPECT_EQ(UtilHeapDelete(heaps[0]), UTIL_ERR_HANDLE);
}

TEST_F(HeapTest, ValidatesBlocksAndSizesTheLast) {
    for (const int32_t size : {10, 20})
        EXPECT_EQ(UtilHeapValidate(debug, UtilHeapObjectAlloc(debug, size, 0)), UTIL_OK);
    const int32_t last = UtilHeapSize(debug);
    EXPECT_TRUE(last == 58 || last == 68) << last; // not the sum
    EXPECT_EQ(UtilHeapSizeObjects(debug), last);
    EXPECT_EQ(UtilHeapSize(plain), UTIL_ERR_UNAVAILABLE);
    listener.isAttached = true;
    EXPECT_EQ(UtilHeapValidate(plain, UtilHeapObjectAlloc(debug, 8, 0)), UTIL_ERR_CORRUPT);
    EXPECT_EQ(Reports(listener), (Lines{L" Error: Heap corrupted", L" Heap['JOB'/'PLAIN']: 0 objects"}));
}

TEST_F(HeapTest, KeepsCountWhenThreadsShareAHeap) {
    const HUTILHEAP shared = UtilHeapCreate(job, L"SHARED", UTIL_HEAP_NO_SERIALIZE | UTIL_HEAP_DEBUG);
    std::atomic<int> failures = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 1000; ++i) {
                const uint32_t form = (i + t) % 3 ? UTIL_OBJECT_NO_STACK : UTIL_OBJECT_PLAIN;
                void* const object = UtilHeapObjectAlloc(shared, i % 90, form | UTIL_OBJECT_FILL);
                failures += !IsFilled(object, static_cast<size_t>(i % 90), 0xF5);
                failures += UtilHeapObjectFree(shared, object) != UTIL_OK;
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(Node(shared).total, 4000);
    EXPECT_EQ(UtilHeapDelete(shared), UTIL_OK);
}

} // namespace
} // namespace vxut::test
