// Heaps as a whole: how they are made, what they count and tell, and how they end.
#include "frame/job.h"
#include "tests/support/guarded_pages.h"
#include "tests/support/heap_fixture.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <thread>

namespace vxut::test {
namespace {

using Lines = std::vector<std::wstring>;

const clsModuleNode& Node(HUTILJOB job) { return *reinterpret_cast<const clsModuleNode*>(job); }

TEST_F(HeapTest, FlagsOfJobAndHeapDecideOnDebugging) {
    constexpr uint32_t kTrace = UTIL_JOB_TRACE, kDebugJob = UTIL_JOB_DEBUG_HEAPS;
    const struct {
        uint32_t jobFlags, heapFlags;
        bool isDebug, isTold;
    } rows[] = {
        {0, 0, false, false},
        {0, UTIL_HEAP_DEBUG, true, true},
        {0, UTIL_HEAP_DEBUG | UTIL_HEAP_NEVER_DEBUG, false, true},
        {kDebugJob, 0, true, false},
        {kDebugJob, UTIL_HEAP_NEVER_DEBUG, false, false},
        {kTrace, 0, false, true}, // told of by the bit of tracing
        {kTrace, UTIL_HEAP_NEVER_DEBUG, false, false},
        {kTrace | kDebugJob, UTIL_HEAP_NEVER_DEBUG | UTIL_HEAP_DEBUG, false, true},
    };
    for (const auto& row : rows) {
        DebugListener ears;
        const HUTILJOB owner = UtilJobOpen(L"FLAGS", row.jobFlags);
        const HUTILHEAP heap = UtilHeapCreate(owner, L"H", row.heapFlags);
        EXPECT_EQ(IsDebugObject(UtilHeapObjectAlloc(heap, 8, 0)), row.isDebug) << row.heapFlags;
        EXPECT_EQ(test::Node(heap).stackSnapshot != nullptr, row.isDebug) << row.heapFlags;
        EXPECT_EQ(ears.Heard(L":FLAGS: UtilHeapCreate(..,'H',..) called with DEBUG bit\n"), row.isTold)
            << row.heapFlags;
        EXPECT_EQ(UtilJobClose(owner), UTIL_ERR_LEFT_BEHIND);
    }
}

TEST_F(HeapTest, CutsNamesAndTakesNone) {
    listener.isAttached = true;
    const std::wstring name(40, L'n');
    EXPECT_EQ(test::Node(UtilHeapCreate(job, name.c_str(), 0)).name, std::wstring(32, L'n'));
    const HUTILHEAP nameless = UtilHeapCreate(job, nullptr, UTIL_HEAP_DEBUG);
    EXPECT_STREQ(test::Node(nameless).name, L"");
    EXPECT_EQ(Reports(listener), Lines{L"JOB: UtilHeapCreate(..,'(NULL)',..) called with DEBUG bit"});
}

TEST_F(HeapTest, PassesOptionsToTheSystem) {
    const struct {
        uint32_t flags;
        DWORD options;
    } rows[] = {{0, 0},
                {UTIL_HEAP_NO_SERIALIZE, 1},
                {UTIL_HEAP_RAISE, 4},
                {UTIL_HEAP_NO_SERIALIZE | UTIL_HEAP_RAISE, 5}};
    for (const auto& row : rows) {
        const HUTILHEAP heap = UtilHeapCreate(job, L"OPTIONS", row.flags);
        EXPECT_EQ(test::Node(heap).createOptions, row.options);
        void* const object = UtilHeapObjectAlloc(heap, 8, 0);
        EXPECT_EQ(UtilHeapObjectFree(heap, object), UTIL_OK);
        EXPECT_EQ(UtilHeapDelete(heap), UTIL_OK);
    }
}

TEST_F(HeapTest, RefusesWhatIsNoHandle) {
    listener.isAttached = true;
    EXPECT_EQ(UtilHeapCreate(job, L"X", UTIL_HEAP_REFUSED | UTIL_HEAP_DEBUG), nullptr);
    EXPECT_EQ(UtilHeapCreate(nullptr, L"X", UTIL_HEAP_DEBUG), nullptr);
    EXPECT_EQ(UtilHeapDelete(nullptr), UTIL_OK);
    EXPECT_EQ(UtilHeapSize(nullptr), 0);
    EXPECT_EQ(UtilHeapSizeObjects(nullptr), 0);
    EXPECT_EQ(UtilHeapValidate(nullptr, &listener), UTIL_OK);
    EXPECT_EQ(UtilHeapShrink(nullptr), UTIL_OK);
    EXPECT_TRUE(listener.Lines().empty());

    const GuardedPages pages;
    clsModuleNode noJob;
    alignas(clsHeapNode) char zeros[sizeof(clsHeapNode)] = {};
    const HUTILHEAP deleted = UtilHeapCreate(job, L"DELETED", 0);
    UtilHeapDelete(deleted);
    EXPECT_EQ(UtilHeapCreate(reinterpret_cast<HUTILJOB>(&noJob), L"X", 0), nullptr);
    EXPECT_TRUE(listener.Heard(Text(L":Error: UtilHeapCreate(%#p): bad pointer\n", &noJob).c_str()));
    for (void* const pointer :
         {static_cast<void*>(deleted), static_cast<void*>(zeros), pages.Untouchable(),
          reinterpret_cast<void*>(1), reinterpret_cast<void*>(~uintptr_t{0}), static_cast<void*>(job)}) {
        const auto heap = static_cast<HUTILHEAP>(pointer);
        EXPECT_EQ(UtilHeapDelete(heap), UTIL_ERR_HANDLE);
        EXPECT_EQ(UtilHeapSize(heap), UTIL_ERR_HANDLE);
        EXPECT_EQ(UtilHeapSizeObjects(heap), UTIL_ERR_HANDLE);
        EXPECT_EQ(UtilHeapValidate(heap, nullptr), UTIL_ERR_HANDLE);
        EXPECT_EQ(UtilHeapShrink(heap), UTIL_ERR_HANDLE);
        EXPECT_EQ(UtilHeapObjectAlloc(heap, 8, 0), nullptr);
        EXPECT_EQ(UtilHeapObjectFree(heap, zeros), UTIL_ERR_OBJECT);
        EXPECT_EQ(UtilHeapObjectSize(heap, zeros), UTIL_ERR_OBJECT);
        for (const wchar_t* const line :
             {L":Error: clsModuleNode['(NULL)']::DeleteHeap(%#p): Invalid handle\n",
              L":Error: UtilHeapSize(%#p): bad pointer\n", L":Error: UtilHeapValidate(%#p): bad pointer\n",
              L":Error: UtilHeapObjectAlloc(%#p): bad pointer\n",
              L":Error: UtilHeapObjectFree(%#p): bad pointer\n"})
            EXPECT_TRUE(listener.Heard(Text(line, pointer).c_str())) << line;
    }
}

// A record that looks alive but stands in no list.
TEST_F(HeapTest, DeletesHeapsOfTheJobOnly) {
    listener.isAttached = true;
    clsHeapNode stranger;
    stranger.owner = const_cast<clsModuleNode*>(&Node(job));
    EXPECT_EQ(UtilHeapDelete(reinterpret_cast<HUTILHEAP>(&stranger)), UTIL_ERR_HANDLE);
    EXPECT_EQ(Reports(listener),
              Lines{Text(L"Error: clsModuleNode['JOB']::DeleteHeap(%#p): Invalid handle", &stranger)});
}

TEST_F(HeapTest, UnlinksFromTheHeadTheMiddleAndTheTail) {
    for (const auto& order : {std::vector<int>{0, 1, 2}, {1, 0, 2}, {2, 1, 0}, {1, 2, 0}}) {
        const HUTILJOB owner = UtilJobOpen(L"LINKS", 0);
        std::vector<HUTILHEAP> heaps(3);
        for (HUTILHEAP& heap : heaps) heap = UtilHeapCreate(owner, L"H", 0);
        for (const int deleted : order) {
            EXPECT_EQ(UtilHeapDelete(heaps[deleted]), UTIL_OK);
            heaps[deleted] = nullptr;
            std::vector<const clsHeapNode*> forwards, backwards, expected;
            for (const HUTILHEAP heap : heaps)
                if (heap) expected.push_back(&test::Node(heap));
            for (auto* node = Node(owner).firstHeap; node; node = node->next) forwards.push_back(node);
            for (auto* node = Node(owner).lastHeap; node; node = node->previous)
                backwards.insert(backwards.begin(), node);
            EXPECT_EQ(forwards, expected);
            EXPECT_EQ(backwards, expected);
        }
        EXPECT_EQ(UtilJobClose(owner), UTIL_OK);
    }
}

TEST_F(HeapTest, CountsObjects) {
    void* objects[3];
    for (void*& object : objects) object = UtilHeapObjectAlloc(debug, 100, UTIL_OBJECT_NO_STACK);
    void* const plainOne = UtilHeapObjectAlloc(debug, 50, UTIL_OBJECT_PLAIN);
    const clsHeapNode& node = test::Node(debug);
    EXPECT_EQ(node.bytes, 300); // of debug objects
    UtilHeapObjectFree(debug, objects[0]);
    UtilHeapObjectFree(debug, plainOne);
    UtilHeapObjectAlloc(debug, 1, 0);
    EXPECT_EQ(node.objectCount, 3);
    EXPECT_EQ(node.bytes, 201);
    EXPECT_EQ(node.total, 5);
    EXPECT_EQ(node.maximum, 4);
}

TEST_F(HeapTest, TellsTheCountersWhenItEnds) {
    listener.isAttached = true;
    EXPECT_EQ(UtilHeapDelete(plain), UTIL_OK); // never used: nothing to tell
    EXPECT_TRUE(listener.Lines().empty());
    void* const first = UtilHeapObjectAlloc(debug, 1, 0);
    void* const second = UtilHeapObjectAlloc(debug, 1, 0);
    UtilHeapObjectFree(debug, first);
    UtilHeapObjectFree(debug, second);
    UtilHeapObjectFree(debug, UtilHeapObjectAlloc(debug, 1, 0));
    EXPECT_EQ(UtilHeapDelete(debug), UTIL_OK);
    EXPECT_EQ(Reports(listener), Lines{L"Heap['JOB'/'DEBUG']: max 2, total 3 allocations"});
}

TEST_F(HeapTest, ListsTheObjectsThatAreLeft) {
    listener.isAttached = true;
    auto* const left = static_cast<char*>(UtilHeapObjectAlloc(debug, 3, UTIL_OBJECT_NO_STACK));
    std::memcpy(left, "abc", 3);
    UtilHeapObjectAlloc(debug, 3, UTIL_OBJECT_PLAIN); // is counted, but has nothing to show
    EXPECT_EQ(UtilHeapDelete(debug), UTIL_ERR_LEFT_BEHIND);
    const Lines expected = {
        L"Heap['JOB'/'DEBUG']: max 2, total 2 allocations",
        L"Warning: deleting heap, but objects are left:",
        L" Heap['JOB'/'DEBUG']: 2 objects",
        L"  Heap allocation stack trace:",
        Text(L"  -Object at %#p, 3(=0x00000003) Bytes", left),
        L"    61 62 63                 abc     ",
    };
    EXPECT_EQ(ReportsWithoutCallers(listener), expected);
    EXPECT_TRUE(listener.Heard(L":    [called by "));
}

TEST_F(HeapTest, EndsInSilenceIfTheHostWantsIt) {
    listener.isAttached = true;
    const HUTILHEAP arena = UtilHeapCreate(job, L"ARENA", UTIL_HEAP_NO_WARNING);
    UtilHeapObjectAlloc(arena, 3, 0);
    EXPECT_EQ(UtilHeapDelete(arena), UTIL_ERR_LEFT_BEHIND);
    EXPECT_EQ(Reports(listener), Lines{L"Heap['JOB'/'ARENA']: max 1, total 1 allocations"});
}

TEST_F(HeapTest, FindsOverrunsInObjectsThatAreLeft) {
    auto* const object = static_cast<char*>(UtilHeapObjectAlloc(debug, 3, UTIL_OBJECT_NO_STACK));
    object[3] = 0;
    listener.isAttached = true;
    UtilHeapDelete(debug);
    EXPECT_EQ(Reports(listener)[0], L"Error: Memory overrun, fence value has been changed");
}

TEST_F(HeapTest, AClosedJobDestroysItsHeapsInOrder) {
    const HUTILJOB owner = UtilJobOpen(L"OWNER", 0);
    const HUTILHEAP first = UtilHeapCreate(owner, L"FIRST", 0);
    UtilHeapCreate(owner, L"SECOND", UTIL_HEAP_NO_WARNING);
    UtilHeapObjectAlloc(first, 8, 0);
    listener.isAttached = true;
    EXPECT_EQ(UtilJobClose(owner), UTIL_ERR_LEFT_BEHIND);
    const Lines expected = {
        L"Error: deleting module 'OWNER', but the following heaps are left:",
        L" Heap['OWNER'/'FIRST']: 1 objects",
        L" Heap['OWNER'/'FIRST']: max 1, total 1 allocations",
        L" Warning: deleting heap, but objects are left:",
        L"  Heap['OWNER'/'FIRST']: 1 objects",
        L" Heap['OWNER'/'SECOND']: 0 objects",
    };
    EXPECT_EQ(Reports(listener), expected);
    EXPECT_EQ(UtilHeapDelete(first), UTIL_ERR_HANDLE);
}

// The size of the busy block that the system's walk sees last.
int32_t LastBusyBlock(HUTILHEAP heap) {
    PROCESS_HEAP_ENTRY entry = {};
    DWORD size = 0;
    while (HeapWalk(test::Node(heap).heap.Get(), &entry))
        if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) size = entry.cbData;
    return static_cast<int32_t>(size);
}

TEST_F(HeapTest, SizesAreThoseOfTheLastBlock) {
    listener.isAttached = true;
    EXPECT_EQ(UtilHeapSize(debug), 0);
    for (const int32_t size : {10, 20}) UtilHeapObjectAlloc(debug, size, 0);
    const int32_t last = LastBusyBlock(debug);
    EXPECT_TRUE(last == 58 || last == 68) << last;
    EXPECT_EQ(UtilHeapSize(debug), last);
    EXPECT_EQ(UtilHeapSizeObjects(debug), last);
    EXPECT_TRUE(listener.Lines().empty());

    UtilHeapObjectAlloc(plain, 10, 0);
    EXPECT_EQ(UtilHeapSizeObjects(plain), 14);
    EXPECT_EQ(UtilHeapSize(plain), UTIL_ERR_UNAVAILABLE);
    const Lines expected = {L"UtilHeapSize will only work for DEBUG heaps, or in NT >= 3.51", L" 0x00000000"};
    EXPECT_EQ(Reports(listener), expected);
}

TEST_F(HeapTest, ValidatesObjectsOfAnyForm) {
    listener.isAttached = true;
    for (const HUTILHEAP heap : {plain, debug}) {
        EXPECT_EQ(UtilHeapValidate(heap, nullptr), UTIL_OK);
        EXPECT_EQ(UtilHeapValidate(heap, UtilHeapObjectAlloc(heap, 20, 0)), UTIL_OK);
    }
    EXPECT_EQ(UtilHeapValidate(debug, UtilHeapObjectAlloc(debug, 20, UTIL_OBJECT_PLAIN)), UTIL_OK);
    EXPECT_TRUE(listener.Lines().empty());

    auto* const object = static_cast<char*>(UtilHeapObjectAlloc(plain, 20, 0));
    const void* const strangers[] = {object + 8, reinterpret_cast<void*>(1), &listener,
                                     UtilHeapObjectAlloc(debug, 8, 0)};
    for (const void* const pointer : strangers) {
        DebugListener ears;
        EXPECT_EQ(UtilHeapValidate(plain, pointer), UTIL_ERR_CORRUPT) << pointer;
        EXPECT_EQ(Reports(ears), (Lines{L" Error: Heap corrupted", L" Heap['JOB'/'PLAIN']: 2 objects"}));
    }
}

TEST_F(HeapTest, ValidationReportsTheFirstDamagedObject) {
    listener.isAttached = true;
    for (int i = 0; i < 3; ++i) static_cast<char*>(UtilHeapObjectAlloc(debug, 8, 0))[8] = 0;
    EXPECT_EQ(UtilHeapValidate(debug, nullptr), UTIL_OK); // the fences do not decide
    const Lines reports = Reports(listener);
    EXPECT_EQ(
        std::count(reports.begin(), reports.end(), L"Error: Memory overrun, fence value has been changed"),
        1);
}

TEST_F(HeapTest, TracesTheCallsOfTracedJobs) {
    listener.isAttached = true;
    const HUTILJOB traced = UtilJobOpen(L"T", UTIL_JOB_TRACE);
    const HUTILHEAP heap = UtilHeapCreate(traced, nullptr, UTIL_HEAP_NEVER_DEBUG);
    UtilHeapObjectFree(heap, UtilHeapObjectAlloc(heap, 8, 0)); // objects are not traced
    UtilHeapSize(heap);
    UtilHeapSizeObjects(heap);
    UtilHeapValidate(heap, nullptr);
    UtilHeapDelete(heap);
    Lines reports = Reports(listener);
    reports.erase(reports.begin(), reports.begin() + 2); // of the job
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
    EXPECT_EQ(reports, expected);
    UtilJobClose(traced);
}

TEST_F(HeapTest, KeepsCountWhenThreadsShareAHeap) {
    const HUTILHEAP shared = UtilHeapCreate(job, L"SHARED", UTIL_HEAP_NO_SERIALIZE | UTIL_HEAP_DEBUG);
    std::atomic<int> failures = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 1000; ++i) {
                const int32_t size = i % 90;
                const uint32_t form = (i + t) % 3 ? UTIL_OBJECT_NO_STACK : UTIL_OBJECT_PLAIN;
                void* const object = UtilHeapObjectAlloc(shared, size, form | UTIL_OBJECT_FILL);
                failures += !IsFilled(object, static_cast<size_t>(size), 0xF5);
                if (i % 100 == 0) failures += UtilHeapValidate(shared, object) != UTIL_OK;
                failures += UtilHeapObjectFree(shared, object) != UTIL_OK;
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(test::Node(shared).objectCount, 0);
    EXPECT_EQ(test::Node(shared).bytes, 0);
    EXPECT_EQ(test::Node(shared).total, 4000);
    EXPECT_EQ(UtilHeapDelete(shared), UTIL_OK);
}

TEST(LooseObjectTest, BeginsWithItsSize) {
    for (const int32_t size : {0, 1, 100, 1 << 20}) {
        void* const object = UtilHeapObjectAllocExt(nullptr, size, UTIL_OBJECT_DEBUG, 1, 2);
        ASSERT_NE(object, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(object) % 8, 0u);
        EXPECT_EQ(At<int64_t>(object, -8), size);
        EXPECT_EQ(UtilHeapObjectSize(nullptr, object), size);
        EXPECT_EQ(UtilHeapObjectFree(nullptr, object), UTIL_OK);
    }
}

TEST(LooseObjectTest, RefusesWhatIsNone) {
    const GuardedPages pages;
    struct {
        uint64_t size = 8;
        char data[8] = {};
    } forged;
    EXPECT_EQ(UtilHeapObjectSize(nullptr, forged.data), 8); // is not looked up
    void* const foreign = HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, 64);
    void* const freed = UtilHeapObjectAlloc(nullptr, 16, 0);
    ASSERT_EQ(UtilHeapObjectFree(nullptr, freed), UTIL_OK);
    for (void* const pointer :
         {static_cast<void*>(nullptr), reinterpret_cast<void*>(8), pages.Untouchable(),
          static_cast<void*>(forged.data), static_cast<void*>(static_cast<char*>(foreign) + 8), freed})
        EXPECT_EQ(UtilHeapObjectFree(nullptr, pointer), UTIL_ERR_OBJECT) << pointer;
    EXPECT_EQ(UtilHeapObjectSize(nullptr, nullptr), UTIL_ERR_OBJECT);
    HeapFree(GetProcessHeap(), 0, foreign);
}

} // namespace
} // namespace vxut::test
