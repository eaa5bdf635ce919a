// What hosts do wrong with objects, and what they are told.
#include "tests/support/guarded_pages.h"
#include "tests/support/heap_fixture.h"

#include <gtest/gtest.h>

#include <functional>

namespace vxut::test {
namespace {

using HeapFaultTest = HeapTest;
using Lines = std::vector<std::wstring>;

// An object of 10 bytes, "0123456789", without a stack.
void* AllocDigits(HUTILHEAP heap) {
    void* const object = UtilHeapObjectAlloc(heap, 10, UTIL_OBJECT_NO_STACK);
    std::memcpy(object, "0123456789", 10);
    return object;
}

Lines DumpOfDigits(const void* object, const std::wstring& indent) {
    return {indent + Text(L"-Object at %#p, 10(=0x0000000a) Bytes", object),
            indent + L"  30 31 32 33 34 35 36 37  01234567", indent + L"  38 39                    89      "};
}

Lines operator+(Lines left, const Lines& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

std::wstring ErrorLine(const wchar_t* heap, const wchar_t* method, const void* object) {
    return Text(L"Error: clsHeapNode['JOB'/'%s']::%s(%#p)", heap, method, object);
}

TEST_F(HeapFaultTest, AnOverrunOfOneByteKeepsTheObject) {
    listener.isAttached = true;
    void* const object = AllocDigits(debug);
    Put<char>(object, 10, '!');
    EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_ERR_OBJECT);
    const Lines expected = Lines{L"Error: Memory overrun, fence value has been changed"} +
                           DumpOfDigits(object, L" ") +
                           Lines{ErrorLine(L"DEBUG", L"FreeObjectD", object),
                                 L" Memory overrun, fence value has been changed (object not freed)"} +
                           DumpOfDigits(object, L" ");
    EXPECT_EQ(Reports(listener), expected);
    EXPECT_EQ(Node(debug).objectCount, 1);

    Put<uint32_t>(object, 10, 0xE5E55E5E); // repaired
    EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_OK);
    EXPECT_EQ(Node(debug).objectCount, 0);
}

TEST_F(HeapFaultTest, UnderrunsAreToldByTheMagics) {
    listener.isAttached = true;
    void* const object = AllocDigits(debug);
    Put<char>(object, -1, 0);
    EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_ERR_OBJECT);
    EXPECT_EQ(UtilHeapObjectSize(debug, object), UTIL_ERR_OBJECT);
    Put<uint32_t>(object, -4, 0xAFFEAFFE);
    Put<uint32_t>(object, -44, 0xC0FFEEEF);
    EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_ERR_OBJECT);
    const Lines expected = {
        ErrorLine(L"DEBUG", L"FreeObject", object),
        L" bad pointer, or memory underrun (magic=0x00feaffe)",
        ErrorLine(L"DEBUG", L"SizeObject", object),
        L" bad pointer, or memory underrun (magic=0x00feaffe)\n",
        ErrorLine(L"DEBUG", L"FreeObjectD", object),
        L" Not allocated with UTIL or memory underrun (object not freed)",
    };
    EXPECT_EQ(Reports(listener), expected);
    EXPECT_EQ(Node(debug).objectCount, 1);
}

TEST_F(HeapFaultTest, APointerToAnythingElseIsRefused) {
    const GuardedPages pages;
    char onTheStack[64] = {};
    char* const inside = static_cast<char*>(UtilHeapObjectAlloc(debug, 64, UTIL_OBJECT_ZERO));
    void* const pointers[] = {
        nullptr,
        reinterpret_cast<void*>(1),
        reinterpret_cast<void*>(4),
        reinterpret_cast<void*>(uintptr_t{0xFFFF800000000000}),
        reinterpret_cast<void*>(~uintptr_t{0}),
        pages.Untouchable(),
        static_cast<char*>(pages.Untouchable()) + 4,
        onTheStack + 32,
        inside + 1,
        inside + 32,
        UtilHeapObjectAlloc(nullptr, 16, 0),
    };
    for (const bool listens : {false, true}) {
        listener.isAttached = listens;
        for (void* const pointer : pointers) {
            for (const HUTILHEAP heap : {plain, debug}) {
                EXPECT_EQ(UtilHeapObjectFree(heap, pointer), UTIL_ERR_OBJECT) << pointer;
                EXPECT_EQ(UtilHeapObjectSize(heap, pointer), UTIL_ERR_OBJECT) << pointer;
            }
        }
    }
    EXPECT_TRUE(listener.Heard(ErrorLine(L"PLAIN", L"FreeObject", nullptr).c_str()));
    EXPECT_TRUE(listener.Heard(L"magic=0x00000000"));
    EXPECT_EQ(Node(debug).objectCount, 1);
    EXPECT_EQ(UtilHeapObjectFree(nullptr, pointers[10]), UTIL_OK);
}

// Memory that looks like an object of the heap but is none is neither filled nor freed.
TEST_F(HeapFaultTest, AForgedObjectIsRefused) {
    listener.isAttached = true;
    char forged[128];
    char* const object = forged + 64;
    for (const uint32_t magic : {0xFAAFFAAFu, 0xAFFEAFFEu}) {
        std::memset(forged, 0x11, sizeof forged);
        Put<uint32_t>(object, -44, 0xC0FFEEEE);
        Put<HANDLE>(object, -36, Node(debug).heap.Get());
        Put<uintptr_t>(object, -20, 0x1234567812345678); // a stack that leads nowhere
        Put<int32_t>(object, -8, 8);
        Put<uint32_t>(object, -4, magic);
        Put<uint32_t>(object, 8, 0xE5E55E5E);
        EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_ERR_OBJECT);
        EXPECT_TRUE(IsFilled(object, 8, 0x11));
        EXPECT_EQ(UtilHeapObjectSize(debug, object), UTIL_ERR_OBJECT);
    }
    EXPECT_TRUE(listener.Heard(ErrorLine(L"DEBUG", L"FreeObjectD", object).c_str()));
    EXPECT_TRUE(listener.Heard(ErrorLine(L"DEBUG", L"FreeObjectND", object).c_str()));
    EXPECT_TRUE(listener.Heard(L" bad object size -1\n"));
    EXPECT_TRUE(listener.Heard(L" error freeing object\n"));
    // A length that was overwritten leads the search for the fence astray.
    Put<int32_t>(object, -8, INT32_MAX);
    EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_ERR_OBJECT);
}

TEST_F(HeapFaultTest, AnObjectOfAnotherHeapStaysWhole) {
    for (const bool listens : {false, true}) {
        listener.isAttached = listens;
        for (const uint32_t form : {UTIL_OBJECT_PLAIN, UTIL_OBJECT_DEBUG}) {
            void* const object = UtilHeapObjectAlloc(plain, 24, form | UTIL_OBJECT_FILL);
            EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_ERR_OBJECT);
            EXPECT_EQ(UtilHeapObjectSize(debug, object), UTIL_ERR_OBJECT);
            EXPECT_TRUE(IsFilled(object, 24, 0xF5));
            if (form == UTIL_OBJECT_DEBUG) {
                EXPECT_NE(At<void*>(object, -20), nullptr);
            }
            EXPECT_EQ(UtilHeapObjectFree(plain, object), UTIL_OK);
        }
    }
    EXPECT_EQ(Node(debug).objectCount, 0);
    EXPECT_EQ(Node(plain).objectCount, 0);
}

TEST_F(HeapFaultTest, FreeingTwiceIsRefused) {
    for (const bool listens : {false, true}) {
        listener.isAttached = listens;
        for (const HUTILHEAP heap : {plain, debug}) {
            for (const int32_t size : {0, 100, 1 << 20}) { // the pages of the last one are gone
                void* const object = UtilHeapObjectAlloc(heap, size, 0);
                ASSERT_EQ(UtilHeapObjectFree(heap, object), UTIL_OK);
                EXPECT_EQ(UtilHeapObjectFree(heap, object), UTIL_ERR_OBJECT);
                EXPECT_EQ(UtilHeapObjectSize(heap, object), UTIL_ERR_OBJECT);
            }
            EXPECT_EQ(Node(heap).objectCount, 0);
        }
    }
}

TEST_F(HeapFaultTest, AKeptObjectLosesItsStackOnce) {
    void* const object = UtilHeapObjectAlloc(debug, 10, 0);
    Put<char>(object, 10, '!');
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_ERR_OBJECT);
        EXPECT_EQ(At<void*>(object, -20), nullptr);
    }
}

TEST_F(HeapFaultTest, DumpsAtMost64BytesAndTheStack) {
    listener.isAttached = true;
    for (const auto& [size, lines] :
         {std::pair<int32_t, size_t>{0, 0}, {8, 1}, {64, 8}, {65, 8}, {5000, 8}}) {
        DebugListener inner;
        char* const object = static_cast<char*>(UtilHeapObjectAlloc(debug, size, UTIL_OBJECT_ZERO));
        if (size > 4) std::memcpy(object, "\x1F !~\x7F", 5);
        object[size] = 0;
        UtilHeapValidate(debug, nullptr);
        Lines reports = ReportsWithoutCallers(inner);
        ASSERT_EQ(reports.size(), 3 + lines);
        EXPECT_EQ(reports[1], Text(L" -Object at %#p, %d(=0x%08x) Bytes", object, size, size));
        if (lines) {
            EXPECT_EQ(reports[2], L"   1f 20 21 7e 7f 00 00 00  . !~....");
        }
        EXPECT_EQ(reports.back(), L" Memory object allocation stack trace:");
        EXPECT_TRUE(inner.Heard(L":   [called by "));
        Put<uint32_t>(object, size, 0xE5E55E5E);
        EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_OK);
    }
}

// An overrun that reaches the system's own records.
TEST_F(HeapFaultTest, SurvivesWhatDestroysTheSystemsRecords) {
    listener.isAttached = true;
    for (const int value : {0, 0xFF, 0x41}) {
        const HUTILHEAP heap = UtilHeapCreate(job, L"WRECK", UTIL_HEAP_DEBUG);
        void* objects[8];
        for (void*& object : objects) object = UtilHeapObjectAlloc(heap, 16, UTIL_OBJECT_NO_STACK);
        std::memset(objects[3], value, 300);
        UtilHeapValidate(heap, objects[2]);
        UtilHeapSizeObjects(heap);
        EXPECT_EQ(UtilHeapObjectFree(heap, objects[3]), UTIL_ERR_OBJECT);
        EXPECT_EQ(UtilHeapDelete(heap), UTIL_ERR_LEFT_BEHIND);
    }
    EXPECT_TRUE(listener.Heard(L"Error: Memory overrun, fence value has been changed"));
}

} // namespace
} // namespace vxut::test
