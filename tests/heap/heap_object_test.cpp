// Objects: their layout in memory, and the mistakes of hosts.
#include "tests/support/guarded_pages.h"
#include "tests/support/heap_fixture.h"

#include <algorithm>
#include <memory>
#include <thread>

namespace vxut::test {
namespace {

using HeapObjectTest = HeapTest;

TEST_F(HeapObjectTest, FlagsDecideOnFormAndFill) {
    constexpr uint32_t kZero = UTIL_OBJECT_ZERO, kDebug = UTIL_OBJECT_DEBUG, kPlain = UTIL_OBJECT_PLAIN;
    const struct {
        HUTILHEAP heap;
        uint32_t flags;
        bool isDebug;
    } rows[] = {{plain, 0, false},
                {plain, kZero | kDebug, true},
                {debug, 0, true},
                {debug, kZero | kDebug | kPlain, false}};
    listener.isAttached = true;
    for (const auto& row : rows) {
        for (const int32_t size : {0, 1, 10, 400}) {
            const DWORD start = GetTickCount();
            auto* const object = static_cast<char*>(
                UtilHeapObjectAllocExt(row.heap, size, row.flags | UTIL_OBJECT_FILL, 7, 0x12345678));
            const HANDLE heap = Node(row.heap).heap.Get();
            EXPECT_EQ(HeapSize(heap, 0, object - (row.isDebug ? 44 : 4)), size + (row.isDebug ? 48u : 4u));
            EXPECT_EQ(At<uint32_t>(object, -4), row.isDebug ? 0xAFFEAFFEu : 0xFAAFFAAFu);
            if (row.isDebug) {
                EXPECT_EQ(At<uint32_t>(object, -44), 0xC0FFEEEEu);
                EXPECT_EQ(At<HANDLE>(object, -36), heap);
                EXPECT_LE(At<DWORD>(object, -28) - start, GetTickCount() - start);
                EXPECT_NE(At<clsStackSnapshot*>(object, -20)->entries[0].address, nullptr);
                EXPECT_EQ(At<uint32_t>(object, -12), 0x12345678u);
                EXPECT_EQ(At<int32_t>(object, -8), size);
                EXPECT_EQ(At<uint32_t>(object, size), 0xE5E55E5Eu);
            }
            const int fill = row.flags & kZero ? 0 : 0xF5;
            EXPECT_TRUE(IsFilled(object, static_cast<size_t>(size), fill)) << row.flags;
            EXPECT_EQ(UtilHeapObjectSize(row.heap, object), size);
            EXPECT_EQ(UtilHeapObjectFree(row.heap, object), UTIL_OK);
            // The freed block is the system's, which keeps links at its start.
            if (size == 400) EXPECT_TRUE(IsFilled(object + 64, 400 - 64, 0xCC)) << row.flags;
        }
    }
}

std::wstring ErrorLine(const wchar_t* method, const void* object) {
    return Text(L"Error: clsHeapNode['JOB'/'DEBUG']::%s(%#p)", method, object);
}

TEST_F(HeapObjectTest, KeepsAnObjectWithAnOverrunOfOneByte) {
    void* const object = UtilHeapObjectAlloc(debug, 70, UTIL_OBJECT_ZERO);
    std::memcpy(object, "0123\x1F ~\x7F", 8);
    Put<char>(object, 70, 0);
    listener.isAttached = true;
    EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_ERR_OBJECT);
    Lines dump = {Text(L" -Object at %#p, 70(=0x00000046) Bytes", object),
                  L"   30 31 32 33 1f 20 7e 7f  0123. ~."};
    dump.resize(9, L"   00 00 00 00 00 00 00 00  ........"); // no more than 64 bytes
    Lines expected = {L"Error: Memory overrun, fence value has been changed"};
    expected.insert(expected.end(), dump.begin(), dump.end());
    expected.insert(expected.end(),
                    {L" Memory object allocation stack trace:", ErrorLine(L"FreeObjectD", object),
                     L" Memory overrun, fence value has been changed (object not freed)"});
    expected.insert(expected.end(), dump.begin(), dump.end());
    EXPECT_EQ(Reports(listener), expected);
    EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_ERR_OBJECT); // its stack has been freed
    Put<uint32_t>(object, 70, 0xE5E55E5E);
    EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_OK);
}

TEST_F(HeapObjectTest, ReportsUnderrunsAndObjectsOfNoSize) {
    void* const object = UtilHeapObjectAlloc(debug, 0, UTIL_OBJECT_NO_STACK);
    listener.isAttached = true;
    EXPECT_EQ(UtilHeapObjectSize(debug, object), 0);
    Put<char>(object, -1, 0);
    EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_ERR_OBJECT);
    Put<uint32_t>(object, -4, 0xAFFEAFFE);
    Put<uint32_t>(object, -44, 0xC0FFEEEF);
    EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_ERR_OBJECT);
    const Lines expected = {
        Text(L"Warning: clsHeapNode['JOB'/'DEBUG']::SizeObject(%#p):", object),
        L" Object has a size of 0 (bad pointer?)\n",
        ErrorLine(L"FreeObject", object),
        L" bad pointer, or memory underrun (magic=0x00feaffe)",
        ErrorLine(L"FreeObjectD", object),
        L" Not allocated with UTIL or memory underrun (object not freed)",
    };
    EXPECT_EQ(Reports(listener), expected);
}

TEST_F(HeapObjectTest, RefusesPointersToAnythingElse) {
    const GuardedPages pages;
    char memory[128] = {};
    char* const forged = memory + 64;
    Put<uint32_t>(forged, -44, 0xC0FFEEEE);
    Put<uintptr_t>(forged, -20, 0x1234567812345678); // a stack pointer that leads nowhere
    Put<int32_t>(forged, -8, 8);
    Put<uint32_t>(forged, -4, 0xAFFEAFFE);
    Put<uint32_t>(forged, 8, 0xE5E55E5E);
    void* const loose = UtilHeapObjectAlloc(nullptr, 16, 0);
    void* const ofAnother = UtilHeapObjectAlloc(plain, 24, UTIL_OBJECT_FILL);
    void* const debugOfAnother = UtilHeapObjectAlloc(plain, 24, UTIL_OBJECT_DEBUG);
    void* const small = UtilHeapObjectAlloc(debug, 0, 0);
    void* const large = UtilHeapObjectAlloc(debug, 1 << 20, UTIL_OBJECT_PLAIN);
    for (const bool listens : {false, true}) {
        listener.isAttached = listens;
        for (void* const freed : {small, large}) UtilHeapObjectFree(debug, freed);
        for (void* const pointer :
             {static_cast<void*>(nullptr), reinterpret_cast<void*>(UINTPTR_MAX), pages.Untouchable(),
              static_cast<void*>(forged), loose, ofAnother, debugOfAnother, small, large}) {
            EXPECT_EQ(UtilHeapObjectFree(debug, pointer), UTIL_ERR_OBJECT) << pointer;
            EXPECT_EQ(UtilHeapObjectSize(debug, pointer), UTIL_ERR_OBJECT) << pointer;
        }
    }
    EXPECT_TRUE(listener.Heard(L": bad object size -1\n") && listener.Heard(L": error freeing object\n"));
    EXPECT_EQ(Node(debug).objectCount, 0);
    EXPECT_TRUE(IsFilled(forged, 8, 0) && IsFilled(ofAnother, 24, 0xF5)); // unchanged
    for (void* const object : {ofAnother, debugOfAnother})
        EXPECT_EQ(UtilHeapObjectFree(plain, object), UTIL_OK);
    EXPECT_EQ(UtilHeapObjectFree(nullptr, loose), UTIL_OK);
}

// The stack of an object is freed only if the pointer still leads to it.
TEST_F(HeapObjectTest, FreesObjectsWhoseStackPointerIsDamaged) {
    const GuardedPages pages;
    uint64_t readable[128] = {};
    void* const other = UtilHeapObjectAlloc(debug, 8, 0);
    const auto stackOfOther = At<uintptr_t>(other, -20);
    listener.isAttached = true;
    for (const uintptr_t damaged :
         {reinterpret_cast<uintptr_t>(pages.Untouchable()), reinterpret_cast<uintptr_t>(readable),
          uintptr_t{0x1234567812345678}, uintptr_t{8}, stackOfOther + 8}) {
        void* const object = UtilHeapObjectAlloc(debug, 8, 0);
        const std::unique_ptr<clsStackSnapshot> stack(At<clsStackSnapshot*>(object, -20));
        Put(object, -20, damaged);
        Put<char>(object, 8, 0); // an overrun, to have the object dumped
        EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_ERR_OBJECT) << damaged;
        Put<uint32_t>(object, 8, 0xE5E55E5E);
        Put(object, -20, damaged);
        EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_OK) << damaged;
        EXPECT_TRUE(listener.Heard(L"::FreeObjectD(") &&
                    listener.Heard(L": bad stack pointer (stack not freed)"));
    }
    EXPECT_TRUE(IsFilled(readable, sizeof readable, 0));
    EXPECT_EQ(UtilHeapObjectFree(debug, other), UTIL_OK);
}

// The size was overwritten with one that leads to the fence of another object.
TEST_F(HeapObjectTest, FillsNoMoreThanTheBlockOfAFreedObject) {
    void* objects[2];
    for (void*& object : objects)
        object = UtilHeapObjectAlloc(debug, 16, UTIL_OBJECT_ZERO | UTIL_OBJECT_NO_STACK);
    auto [first, second] = std::minmax(static_cast<char*>(objects[0]), static_cast<char*>(objects[1]));
    Put(first, -8, static_cast<int32_t>(second - first + 16));
    listener.isAttached = true;
    EXPECT_EQ(UtilHeapObjectFree(debug, first), UTIL_OK);
    EXPECT_EQ(UtilHeapObjectFree(debug, second), UTIL_OK);
}

// The next thread would wait for ever for a lock that a fault has left held.
TEST_F(HeapObjectTest, LeavesNoLockBehindInAWreckedHeap) {
    for (const int value : {0, 0xFF, 0x41}) {
        const HUTILHEAP heap = UtilHeapCreate(job, L"WRECK", UTIL_HEAP_DEBUG);
        void* objects[8];
        for (void*& object : objects) object = UtilHeapObjectAlloc(heap, 16, UTIL_OBJECT_NO_STACK);
        std::memset(objects[7], value, 2000); // into the free blocks
        for (int i = 0; i < 3; ++i) {
            std::thread([&] {
                UtilHeapObjectAlloc(heap, 400, UTIL_OBJECT_NO_STACK);
                UtilHeapObjectFree(heap, objects[i]);
                UtilHeapValidate(heap, objects[5]);
                UtilHeapShrink(heap);
                UtilHeapSize(heap);
            }).join();
        }
        EXPECT_EQ(UtilHeapDelete(heap), UTIL_ERR_LEFT_BEHIND) << value;
    }
    EXPECT_EQ(UtilHeapObjectFree(debug, UtilHeapObjectAlloc(debug, 8, 0)), UTIL_OK);
}

TEST_F(HeapObjectTest, SurvivesOverrunsIntoTheSystemsRecords) {
    listener.isAttached = true;
    for (const int value : {0, 0xFF, 0x41}) {
        const HUTILHEAP heap = UtilHeapCreate(job, L"WRECK", UTIL_HEAP_DEBUG);
        void* objects[8];
        for (void*& object : objects) object = UtilHeapObjectAlloc(heap, 16, UTIL_OBJECT_NO_STACK);
        std::memset(objects[3], value, 300);
        UtilHeapValidate(heap, objects[2]);
        EXPECT_EQ(UtilHeapObjectFree(heap, objects[3]), UTIL_ERR_OBJECT);
        EXPECT_EQ(UtilHeapDelete(heap), UTIL_ERR_LEFT_BEHIND);
    }
}

TEST(LooseObjectTest, BeginsWithItsSizeAndIsLookedUp) {
    void* const object = UtilHeapObjectAlloc(nullptr, 10, UTIL_OBJECT_DEBUG | UTIL_OBJECT_FILL);
    EXPECT_TRUE(IsFilled(object, 10, 0xF5));
    EXPECT_EQ(At<int64_t>(object, -8), 10);
    EXPECT_EQ(UtilHeapObjectSize(nullptr, object), 10);
    EXPECT_EQ(UtilHeapObjectFree(nullptr, object), UTIL_OK);
    const GuardedPages pages;
    int64_t forged[] = {8, 0};
    for (void* const pointer : {object, pages.Untouchable(), static_cast<void*>(forged + 1)})
        EXPECT_EQ(UtilHeapObjectFree(nullptr, pointer), UTIL_ERR_OBJECT) << pointer;
    EXPECT_EQ(UtilHeapObjectSize(nullptr, nullptr), UTIL_ERR_OBJECT);
}

} // namespace
} // namespace vxut::test
