// Heaps as a whole: how they are made, what they tell, and how they end.
#include "frame/job.h"
#include "tests/support/child_process.h"
#include "tests/support/guarded_pages.h"
#include "tests/support/heap_fixture.h"

#include <atomic>
#include <thread>

namespace vxut::test {
namespace {

TEST_F(HeapTest, FlagsOfJobAndHeapDecideOnDebugging) {
    constexpr uint32_t kTrace = UTIL_JOB_TRACE, kDebugJob = UTIL_JOB_DEBUG_HEAPS;
    constexpr uint32_t kNever = UTIL_HEAP_NEVER_DEBUG;
    const struct {
        uint32_t jobFlags, heapFlags;
        bool isDebug, isTold;
    } rows[] = {
        {0, 0, false, false},
        {0, UTIL_HEAP_DEBUG, true, true},
        {0, UTIL_HEAP_DEBUG | kNever, false, true},
        {kDebugJob, 0, true, false},
        {kDebugJob, kNever, false, false},
        {kTrace, 0, false, true}, // told of by the bit of tracing
        {kTrace | kDebugJob, kNever, false, false},
    };
    const std::wstring name(40, L'n');
    for (const auto& row : rows) {
        const DebugListener ears;
        const HUTILJOB owner = UtilJobOpen(L"FLAGS", row.jobFlags);
        const HUTILHEAP heap = UtilHeapCreate(owner, name.c_str(), row.heapFlags);
        EXPECT_EQ(Node(heap).IsDebug(), row.isDebug) << row.heapFlags;
        EXPECT_EQ(Node(heap).stackSnapshot != nullptr, row.isDebug) << row.heapFlags;
        EXPECT_EQ(Node(heap).name, name.substr(0, 32));
        const std::wstring line = L":FLAGS: UtilHeapCreate(..,'" + name + L"',..) called with DEBUG bit\n";
        EXPECT_EQ(ears.Heard(line.c_str()), row.isTold) << row.heapFlags;
        EXPECT_EQ(UtilJobClose(owner), UTIL_ERR_LEFT_BEHIND);
    }
}

TEST_F(HeapTest, RefusesWhatIsNoHandle) {
    listener.isAttached = true;
    EXPECT_EQ(UtilHeapCreate(job, L"X", UTIL_HEAP_REFUSED | UTIL_HEAP_DEBUG), nullptr);
    EXPECT_EQ(UtilHeapCreate(nullptr, L"X", UTIL_HEAP_DEBUG), nullptr);
    EXPECT_EQ(UtilHeapValidate(nullptr, &listener), UTIL_OK);
    for (const auto function : {UtilHeapDelete, UtilHeapSize, UtilHeapSizeObjects, UtilHeapShrink})
        EXPECT_EQ(function(nullptr), 0);
    EXPECT_TRUE(listener.Lines().empty());

    const GuardedPages pages;
    const HUTILHEAP deleted = UtilHeapCreate(job, L"DELETED", 0);
    EXPECT_EQ(UtilHeapDelete(deleted), UTIL_OK);
    clsHeapNode stranger; // alive, but in no list
    stranger.owner = reinterpret_cast<clsModuleNode*>(job);
    EXPECT_EQ(UtilHeapDelete(reinterpret_cast<HUTILHEAP>(&stranger)), UTIL_ERR_HANDLE);
    EXPECT_TRUE(listener.Heard(
        Text(L":Error: clsModuleNode['JOB']::DeleteHeap(%#p): Invalid handle\n", &stranger).c_str()));
    for (void* const pointer : {static_cast<void*>(deleted), pages.Untouchable(), reinterpret_cast<void*>(1),
                                reinterpret_cast<void*>(UINTPTR_MAX), static_cast<void*>(job)}) {
        const auto heap = static_cast<HUTILHEAP>(pointer);
        for (const auto function : {UtilHeapDelete, UtilHeapSize, UtilHeapSizeObjects, UtilHeapShrink})
            EXPECT_EQ(function(heap), UTIL_ERR_HANDLE);
        EXPECT_EQ(UtilHeapValidate(heap, nullptr), UTIL_ERR_HANDLE);
        EXPECT_EQ(UtilHeapObjectAlloc(heap, 8, 0), nullptr);
        EXPECT_EQ(UtilHeapObjectFree(heap, job), UTIL_ERR_OBJECT);
        EXPECT_EQ(UtilHeapObjectSize(heap, job), UTIL_ERR_OBJECT);
        EXPECT_EQ(UtilHeapCreate(static_cast<HUTILJOB>(pointer), L"X", 0) != nullptr, pointer == job);
        for (const wchar_t* const line :
             {L":Error: clsModuleNode['(NULL)']::DeleteHeap(%#p): Invalid handle\n",
              L":Error: UtilHeapValidate(%#p): bad pointer\n"})
            EXPECT_TRUE(listener.Heard(Text(line, pointer).c_str()));
    }
}

TEST_F(HeapTest, UnlinksFromTheHeadTheMiddleAndTheTail) {
    for (const auto& order : {std::vector<int>{0, 1, 2}, {1, 0, 2}, {2, 1, 0}, {1, 2, 0}}) {
        const HUTILJOB owner = UtilJobOpen(L"LINKS", 0);
        HUTILHEAP heaps[3];
        for (HUTILHEAP& heap : heaps) heap = UtilHeapCreate(owner, L"H", 0);
        for (const int deleted : order) EXPECT_EQ(UtilHeapDelete(heaps[deleted]), UTIL_OK);
        EXPECT_EQ(UtilJobClose(owner), UTIL_OK);
    }
}

TEST_F(HeapTest, TellsWhatIsLeftWhenItEnds) {
    auto* const left = static_cast<char*>(UtilHeapObjectAlloc(debug, 3, UTIL_OBJECT_NO_STACK));
    std::memcpy(left, "abc", 4);
    UtilHeapObjectFree(debug, UtilHeapObjectAlloc(debug, 100, 0));
    UtilHeapObjectAlloc(debug, 5, UTIL_OBJECT_PLAIN); // is counted, but has nothing to show
    EXPECT_EQ(Node(debug).bytes, 3);
    listener.isAttached = true;
    EXPECT_EQ(UtilHeapDelete(plain), UTIL_OK); // never used: nothing to tell
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
    const HUTILHEAP first = UtilHeapCreate(owner, nullptr, 0);
    UtilHeapObjectAlloc(first, 8, 0);
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
    EXPECT_EQ(UtilHeapDelete(first), UTIL_ERR_HANDLE);
}

TEST_F(HeapTest, SizesAreThoseOfTheLastBlock) {
    EXPECT_EQ(UtilHeapSize(debug), 0);
    for (const int32_t size : {10, 20}) UtilHeapObjectAlloc(debug, size, 0);
    PROCESS_HEAP_ENTRY entry = {};
    int32_t last = 0;
    while (HeapWalk(Node(debug).heap.Get(), &entry))
        if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) last = static_cast<int32_t>(entry.cbData);
    EXPECT_TRUE(last == 58 || last == 68) << last;
    EXPECT_EQ(UtilHeapSize(debug), last);
    EXPECT_EQ(UtilHeapSizeObjects(debug), last);
}

TEST_F(HeapTest, ValidatesBlocksOfAnyForm) {
    listener.isAttached = true;
    for (const HUTILHEAP heap : {plain, debug}) {
        EXPECT_EQ(UtilHeapValidate(heap, UtilHeapObjectAlloc(heap, 20, UTIL_OBJECT_DEBUG)), UTIL_OK);
        EXPECT_EQ(UtilHeapValidate(heap, UtilHeapObjectAlloc(heap, 20, UTIL_OBJECT_PLAIN)), UTIL_OK);
    }
    EXPECT_TRUE(listener.Lines().empty());
    for (const void* const pointer : {static_cast<const void*>(job), reinterpret_cast<const void*>(1),
                                      static_cast<const void*>(UtilHeapObjectAlloc(debug, 8, 0))}) {
        const DebugListener ears;
        EXPECT_EQ(UtilHeapValidate(plain, pointer), UTIL_ERR_CORRUPT) << pointer;
        EXPECT_EQ(Reports(ears)[0], L" Error: Heap corrupted");
        EXPECT_EQ(Reports(ears)[1], L" Heap['JOB'/'PLAIN']: 2 objects");
    }
}

TEST_F(HeapTest, TracesTheCallsOfTracedJobs) {
    const HUTILJOB traced = UtilJobOpen(L"T", UTIL_JOB_TRACE);
    listener.isAttached = true;
    const HUTILHEAP heap = UtilHeapCreate(traced, nullptr, UTIL_HEAP_NEVER_DEBUG);
    UtilHeapObjectFree(heap, UtilHeapObjectAlloc(heap, 8, 0)); // objects are not traced
    UtilHeapSize(heap);
    UtilHeapSizeObjects(heap);
    UtilHeapValidate(heap, nullptr);
    UtilHeapDelete(heap);
    const auto entry = [=](const wchar_t* name) { return Text(L"%s(%#p) ['T','']", name, heap); };
    const Lines expected = {
        Text(L"UtilHeapCreate(%#p,'(NULL)',0x00000040)", traced),
        Text(L" ->%#p", heap),
        entry(L"UtilHeapSize"),
        L" UtilHeapSize will only work for DEBUG heaps, or in NT >= 3.51",
        L"  0x00000040",
        L" ->-7",
        entry(L"UtilHeapSizeObjects"),
        L" ->0",
        entry(L"UtilHeapValidate"),
        L" ->0",
        entry(L"UtilHeapDelete"),
        L" Heap['T'/'']: max 1, total 1 allocations",
        L" ->0",
    };
    EXPECT_EQ(Reports(listener), expected);
    UtilJobClose(traced);
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
                if (i % 100 == 0) failures += UtilHeapValidate(shared, object) != UTIL_OK;
                failures += UtilHeapObjectFree(shared, object) != UTIL_OK;
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(Node(shared).bytes, 0);
    EXPECT_EQ(Node(shared).total, 4000);
    EXPECT_EQ(UtilHeapDelete(shared), UTIL_OK);
}

// On systems that lack a heap function, or have one that goes astray.
TEST(HeapPlatformTest, GoesOnWithoutFunctionsOfTheSystem) {
    const std::pair<const wchar_t*, const char*> rows[] = {
        {L"heap-functions-absent", "size 10 objects -7 validate -7 shrink -7 free 0 delete 0"},
        {L"heap-walk-on-the-spot", "size 100 objects 100 validate 0 shrink -2 free 0 delete 0"},
        {L"heap-walk-astray", "size 0 objects 0 validate 0 shrink -2 free 0 delete 0"},
        {L"heap-compact", "size 58 objects 58 validate 0 shrink 0 free 0 delete 0"},
    };
    for (const auto& [task, output] : rows) EXPECT_EQ(RunChild(task).output, output) << task;
}

} // namespace
} // namespace vxut::test
