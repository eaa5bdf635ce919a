// How objects lie in memory, seen from the outside.
#include "tests/support/heap_fixture.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace vxut::test {
namespace {

using HeapObjectTest = HeapTest;

TEST_F(HeapObjectTest, SurroundsDebugObjects) {
    for (const int32_t size : {0, 1, 3, 4, 10, 4096, 1 << 20}) {
        const DWORD before = GetTickCount();
        void* const object = UtilHeapObjectAllocExt(debug, size, 0, 7, 0x12345678);
        ASSERT_NE(object, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(object) % 4, 0u);
        EXPECT_EQ(At<uint32_t>(object, -44), 0xC0FFEEEEu);
        EXPECT_EQ(At<HANDLE>(object, -36), Node(debug).heap.Get());
        EXPECT_LE(At<DWORD>(object, -28) - before, 1000u);
        EXPECT_NE(At<void*>(object, -20), nullptr);
        EXPECT_EQ(At<uint32_t>(object, -12), 0x12345678u);
        EXPECT_EQ(At<int32_t>(object, -8), size);
        EXPECT_TRUE(IsDebugObject(object));
        EXPECT_EQ(At<uint32_t>(object, size), 0xE5E55E5Eu);
        EXPECT_EQ(HeapSize(Node(debug).heap.Get(), 0, static_cast<char*>(object) - 44), size + 48u);
        EXPECT_EQ(UtilHeapObjectSize(debug, object), size);
        EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_OK);
    }
}

TEST_F(HeapObjectTest, KeepsTheStackOfAllocation) {
    void* const object = UtilHeapObjectAlloc(debug, 8, 0);
    const auto* stack = At<const clsStackSnapshot*>(object, -20);
    MEMORY_BASIC_INFORMATION region;
    ASSERT_NE(VirtualQuery(stack->entries[0].address, &region, sizeof region), 0u);
    EXPECT_EQ(region.AllocationBase, GetModuleHandleW(nullptr));
    EXPECT_EQ(At<uint32_t>(object, -12), 0u); // no tag
    EXPECT_EQ(At<void*>(UtilHeapObjectAlloc(debug, 8, UTIL_OBJECT_NO_STACK), -20), nullptr);
}

TEST_F(HeapObjectTest, PutsOneWordInFrontOfPlainObjects) {
    for (const int32_t size : {0, 1, 10, 1 << 20}) {
        void* const object = UtilHeapObjectAllocExt(plain, size, 0, 0, 5);
        ASSERT_NE(object, nullptr);
        EXPECT_TRUE(IsPlainObject(object));
        EXPECT_EQ(HeapSize(Node(plain).heap.Get(), 0, static_cast<char*>(object) - 4), size + 4u);
        EXPECT_EQ(UtilHeapObjectSize(plain, object), size);
        EXPECT_EQ(UtilHeapObjectFree(plain, object), UTIL_OK);
    }
}

TEST_F(HeapObjectTest, FlagsDecideOnTheForm) {
    const struct {
        HUTILHEAP heap;
        uint32_t flags;
        bool isDebug;
    } rows[] = {
        {plain, 0, false},
        {plain, UTIL_OBJECT_DEBUG, true},
        {plain, UTIL_OBJECT_DEBUG | UTIL_OBJECT_PLAIN, false},
        {debug, 0, true},
        {debug, UTIL_OBJECT_PLAIN, false},
        {debug, UTIL_OBJECT_DEBUG | UTIL_OBJECT_PLAIN, false},
    };
    for (const auto& row : rows) {
        void* const object = UtilHeapObjectAlloc(row.heap, 20, row.flags);
        EXPECT_EQ(IsDebugObject(object), row.isDebug) << std::hex << row.flags;
        EXPECT_EQ(IsPlainObject(object), !row.isDebug) << std::hex << row.flags;
        EXPECT_EQ(UtilHeapObjectSize(row.heap, object), 20);
        EXPECT_EQ(UtilHeapObjectFree(row.heap, object), UTIL_OK);
    }
}

TEST_F(HeapObjectTest, FillsAsAskedWithinTheObject) {
    constexpr int32_t kSize = 100;
    for (const HUTILHEAP heap : {plain, debug, HUTILHEAP{}}) {
        // Memory that was used before, so that zeros are no accident.
        UtilHeapObjectFree(heap, UtilHeapObjectAlloc(heap, kSize, UTIL_OBJECT_FILL));
        for (const auto& [flags, value] : {std::pair<uint32_t, int>{UTIL_OBJECT_FILL, 0xF5},
                                           {UTIL_OBJECT_ZERO, 0},
                                           {UTIL_OBJECT_ZERO | UTIL_OBJECT_FILL, 0}}) {
            void* const object = UtilHeapObjectAlloc(heap, kSize, flags);
            EXPECT_TRUE(IsFilled(object, kSize, static_cast<unsigned char>(value))) << flags;
            if (heap == debug) {
                EXPECT_EQ(At<uint32_t>(object, kSize), 0xE5E55E5Eu);
            }
            EXPECT_EQ(UtilHeapObjectFree(heap, object), UTIL_OK);
        }
    }
}

// Freed memory still belongs to the system's heap; a block of this size keeps its pages.
TEST_F(HeapObjectTest, FillsFreedObjectsWhileSomebodyListens) {
    constexpr size_t kFirst = 64; // the system's own links stand in front
    for (const HUTILHEAP heap : {plain, debug}) {
        for (const bool listens : {false, true}) {
            auto* const object = static_cast<char*>(UtilHeapObjectAlloc(heap, 400, UTIL_OBJECT_FILL));
            listener.isAttached = listens;
            EXPECT_EQ(UtilHeapObjectFree(heap, object), UTIL_OK);
            EXPECT_EQ(IsFilled(object + kFirst, 400 - kFirst, 0xCC), listens);
        }
    }
    EXPECT_TRUE(listener.Lines().empty());
}

TEST_F(HeapObjectTest, WarnsOfTheSizeZeroOnDebugHeapsOnly) {
    listener.isAttached = true;
    EXPECT_EQ(UtilHeapObjectSize(plain, UtilHeapObjectAlloc(plain, 0, 0)), 0);
    EXPECT_TRUE(listener.Lines().empty());
    for (const uint32_t flags : {0u, UTIL_OBJECT_PLAIN}) {
        void* const object = UtilHeapObjectAlloc(debug, 0, flags);
        EXPECT_EQ(UtilHeapObjectSize(debug, object), 0);
        const std::wstring warning =
            Text(L":Warning: clsHeapNode['JOB'/'DEBUG']::SizeObject(%#p):\n", object);
        EXPECT_TRUE(listener.Heard(warning.c_str()));
        EXPECT_EQ(listener.Last().substr(listener.Last().find(L": Object")),
                  L": Object has a size of 0 (bad pointer?)\n\n");
    }
}

} // namespace
} // namespace vxut::test
