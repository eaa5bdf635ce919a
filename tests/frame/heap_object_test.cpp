// Objects: how they lie in memory, and what hosts do wrong with them.
#include "tests/support/guarded_pages.h"
#include "tests/support/heap_fixture.h"

namespace vxut::test {
namespace {

using HeapObjectTest = HeapTest;

TEST_F(HeapObjectTest, FlagsDecideOnTheForm) {
    constexpr uint32_t kBoth = UTIL_OBJECT_DEBUG | UTIL_OBJECT_PLAIN;
    const struct {
        HUTILHEAP heap;
        uint32_t flags;
        bool isDebug;
    } rows[] = {{plain, 0, false}, {plain, UTIL_OBJECT_DEBUG, true},  {plain, kBoth, false},
                {debug, 0, true},  {debug, UTIL_OBJECT_PLAIN, false}, {debug, kBoth, false}};
    for (const auto& row : rows) {
        for (const int32_t size : {0, 1, 10, 1 << 20}) {
            void* const object = UtilHeapObjectAllocExt(row.heap, size, row.flags, 7, 0x12345678);
            const HANDLE heap = Node(row.heap).heap.Get();
            const ptrdiff_t header = row.isDebug ? 44 : 4;
            EXPECT_EQ(HeapSize(heap, 0, static_cast<char*>(object) - header),
                      size + (row.isDebug ? 48u : 4u));
            EXPECT_EQ(At<uint32_t>(object, -4), row.isDebug ? 0xAFFEAFFEu : 0xFAAFFAAFu);
            if (row.isDebug) {
                EXPECT_EQ(At<uint32_t>(object, -44), 0xC0FFEEEEu);
                EXPECT_EQ(At<HANDLE>(object, -36), heap);
                EXPECT_LE(GetTickCount() - At<DWORD>(object, -28), 1000u);
                EXPECT_NE(At<clsStackSnapshot*>(object, -20)->entries[0].address, nullptr);
                EXPECT_EQ(At<uint32_t>(object, -12), 0x12345678u);
                EXPECT_EQ(At<int32_t>(object, -8), size);
                EXPECT_EQ(At<uint32_t>(object, size), 0xE5E55E5Eu);
            }
            EXPECT_EQ(UtilHeapObjectSize(row.heap, object), size);
            EXPECT_EQ(UtilHeapObjectFree(row.heap, object), UTIL_OK);
        }
    }
    EXPECT_EQ(At<void*>(UtilHeapObjectAlloc(debug, 8, UTIL_OBJECT_NO_STACK), -20), nullptr);
}

TEST_F(HeapObjectTest, FillsObjects) {
    constexpr int32_t kSize = 400;
    const std::pair<uint32_t, int> rows[] = {
        {UTIL_OBJECT_FILL, 0xF5}, {UTIL_OBJECT_ZERO, 0}, {UTIL_OBJECT_ZERO | UTIL_OBJECT_FILL, 0}};
    for (const HUTILHEAP heap : {plain, debug, HUTILHEAP{}}) {
        for (const bool listens : {false, true}) {
            listener.isAttached = listens;
            for (const auto& [flags, value] : rows) {
                auto* const object = static_cast<char*>(UtilHeapObjectAlloc(heap, kSize, flags));
                EXPECT_TRUE(IsFilled(object, kSize, value)) << flags;
                EXPECT_EQ(UtilHeapObjectFree(heap, object), UTIL_OK); // the fence is where it was
                // The block stays the system's, with links of its own in front.
                EXPECT_EQ(IsFilled(object + 64, kSize - 64, 0xCC), heap && listens);
            }
        }
    }
    EXPECT_TRUE(listener.Lines().empty());
}

std::wstring ErrorLine(const wchar_t* heap, const wchar_t* method, const void* object) {
    return Text(L"Error: clsHeapNode['JOB'/'%s']::%s(%#p)", heap, method, object);
}

TEST_F(HeapObjectTest, KeepsAnObjectWithAnOverrunOfOneByte) {
    void* const object = UtilHeapObjectAlloc(debug, 10, 0);
    std::memcpy(object,
                "0123\x1F ~\x7F"
                "89!",
                11);
    listener.isAttached = true;
    for (int i = 0; i < 2; ++i) { // the second time the stack has gone
        const DebugListener ears;
        EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_ERR_OBJECT);
        EXPECT_EQ(At<void*>(object, -20), nullptr);
        const std::wstring head = Text(L" -Object at %#p, 10(=0x0000000a) Bytes", object);
        Lines expected = {
            L"Error: Memory overrun, fence value has been changed",
            head,
            L"   30 31 32 33 1f 20 7e 7f  0123. ~.",
            L"   38 39                    89      ",
            L" Memory object allocation stack trace:",
            ErrorLine(L"DEBUG", L"FreeObjectD", object),
            L" Memory overrun, fence value has been changed (object not freed)",
            head,
            L"   30 31 32 33 1f 20 7e 7f  0123. ~.",
            L"   38 39                    89      ",
        };
        if (i > 0) expected.erase(expected.begin() + 4);
        EXPECT_EQ(Reports(ears), expected);
        EXPECT_EQ(ears.Heard(L":   [called by "), i == 0);
    }
    Put<uint32_t>(object, 10, 0xE5E55E5E);
    EXPECT_EQ(Node(debug).objectCount, 1);
    EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_OK);
}

TEST_F(HeapObjectTest, DumpsAtMost64Bytes) {
    for (const auto& [size, lines] :
         {std::pair<int32_t, size_t>{0, 0}, {8, 1}, {64, 8}, {65, 8}, {5000, 8}}) {
        const DebugListener ears;
        void* const object = UtilHeapObjectAlloc(debug, size, UTIL_OBJECT_NO_STACK);
        Put<char>(object, size, 0);
        EXPECT_EQ(UtilHeapValidate(debug, object),
                  UTIL_OK); // tells of the fence, but looks at the block only
        EXPECT_EQ(Reports(ears).size(), 2 + lines);
        Put<uint32_t>(object, size, 0xE5E55E5E);
        EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_OK);
    }
}

TEST_F(HeapObjectTest, TellsUnderrunsAndObjectsOfNoSize) {
    void* const object = UtilHeapObjectAlloc(debug, 0, UTIL_OBJECT_NO_STACK);
    listener.isAttached = true;
    EXPECT_EQ(UtilHeapObjectSize(debug, object), 0);
    EXPECT_EQ(UtilHeapObjectSize(plain, UtilHeapObjectAlloc(plain, 0, 0)), 0);
    Put<char>(object, -1, 0);
    EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_ERR_OBJECT);
    EXPECT_EQ(UtilHeapObjectSize(debug, object), UTIL_ERR_OBJECT);
    Put<uint32_t>(object, -4, 0xAFFEAFFE);
    Put<uint32_t>(object, -44, 0xC0FFEEEF);
    EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_ERR_OBJECT);
    const Lines expected = {
        Text(L"Warning: clsHeapNode['JOB'/'DEBUG']::SizeObject(%#p):", object),
        L" Object has a size of 0 (bad pointer?)\n",
        ErrorLine(L"DEBUG", L"FreeObject", object),
        L" bad pointer, or memory underrun (magic=0x00feaffe)",
        ErrorLine(L"DEBUG", L"SizeObject", object),
        L" bad pointer, or memory underrun (magic=0x00feaffe)\n",
        ErrorLine(L"DEBUG", L"FreeObjectD", object),
        L" Not allocated with UTIL or memory underrun (object not freed)",
    };
    EXPECT_EQ(Reports(listener), expected);
}

TEST_F(HeapObjectTest, RefusesPointersToAnythingElse) {
    const GuardedPages pages;
    char forged[128];
    std::memset(forged, 0x11, sizeof forged);
    char* const debugForged = forged + 64;
    Put<uint32_t>(debugForged, -44, 0xC0FFEEEE);
    Put<uintptr_t>(debugForged, -20, 0x1234567812345678); // a stack that leads nowhere
    Put<int32_t>(debugForged, -8, 8);
    Put<uint32_t>(debugForged, -4, 0xAFFEAFFE);
    Put<uint32_t>(debugForged, 8, 0xE5E55E5E);
    char* const plainForged = forged + 100;
    Put<uint32_t>(plainForged, -4, 0xFAAFFAAF);
    void* const loose = UtilHeapObjectAlloc(nullptr, 16, 0);
    void* const ofAnother = UtilHeapObjectAlloc(plain, 24, UTIL_OBJECT_FILL);
    void* const debugOfAnother = UtilHeapObjectAlloc(plain, 24, UTIL_OBJECT_DEBUG | UTIL_OBJECT_FILL);
    void* const small = UtilHeapObjectAlloc(debug, 0, 0);
    void* const large = UtilHeapObjectAlloc(debug, 1 << 20, UTIL_OBJECT_PLAIN);
    for (const bool listens : {false, true}) {
        listener.isAttached = listens;
        for (void* const freed : {small, large}) UtilHeapObjectFree(debug, freed);
        for (const auto address : std::initializer_list<uintptr_t>{0, 1, 4, 0xFFFF800000000000, UINTPTR_MAX})
            EXPECT_EQ(UtilHeapObjectFree(debug, reinterpret_cast<void*>(address)), UTIL_ERR_OBJECT);
        for (void* const pointer :
             {pages.Untouchable(), static_cast<void*>(debugForged), static_cast<void*>(plainForged),
              static_cast<void*>(forged + 40), loose, ofAnother, debugOfAnother, small, large}) {
            EXPECT_EQ(UtilHeapObjectFree(debug, pointer), UTIL_ERR_OBJECT) << pointer;
            EXPECT_EQ(UtilHeapObjectSize(debug, pointer), UTIL_ERR_OBJECT) << pointer;
        }
    }
    EXPECT_TRUE(listener.Heard(ErrorLine(L"DEBUG", L"FreeObjectND", ofAnother).c_str()));
    EXPECT_TRUE(listener.Heard(L": bad object size -1\n"));
    EXPECT_TRUE(listener.Heard(L": error freeing object\n"));
    EXPECT_EQ(Node(debug).objectCount, 0);
    // What is another's stays as it was.
    EXPECT_TRUE(IsFilled(debugForged, 8, 0x11) && IsFilled(ofAnother, 24, 0xF5));
    for (void* const object : {ofAnother, debugOfAnother})
        EXPECT_EQ(UtilHeapObjectFree(plain, object), UTIL_OK);
    EXPECT_EQ(UtilHeapObjectFree(nullptr, loose), UTIL_OK);
}

TEST_F(HeapObjectTest, SurvivesOverrunsIntoTheSystemsRecords) {
    for (const int value : {0, 0xFF, 0x41}) {
        const DebugListener ears;
        const HUTILHEAP heap = UtilHeapCreate(job, L"WRECK", UTIL_HEAP_DEBUG);
        void* objects[8];
        for (void*& object : objects) object = UtilHeapObjectAlloc(heap, 16, UTIL_OBJECT_NO_STACK);
        std::memset(objects[3], value, 300);
        UtilHeapValidate(heap, objects[2]);
        EXPECT_EQ(UtilHeapObjectFree(heap, objects[3]), UTIL_ERR_OBJECT);
        EXPECT_EQ(UtilHeapDelete(heap), UTIL_ERR_LEFT_BEHIND);
        EXPECT_TRUE(ears.Heard(L"Error: Memory overrun, fence value has been changed"));
    }
}

TEST(LooseObjectTest, BeginsWithItsSizeAndIsLookedUp) {
    void* const object = UtilHeapObjectAllocExt(nullptr, 10, UTIL_OBJECT_DEBUG, 1, 2);
    EXPECT_EQ(At<int64_t>(object, -8), 10);
    EXPECT_EQ(UtilHeapObjectSize(nullptr, object), 10);
    EXPECT_EQ(UtilHeapObjectFree(nullptr, object), UTIL_OK);
    void* const foreign = HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, 64);
    const GuardedPages pages;
    int64_t forged[] = {8, 0};
    EXPECT_EQ(UtilHeapObjectSize(nullptr, forged + 1), 8); // tells what stands there
    EXPECT_EQ(UtilHeapObjectSize(nullptr, nullptr), UTIL_ERR_OBJECT);
    for (void* const pointer :
         {object, static_cast<void*>(static_cast<char*>(foreign) + 8), pages.Untouchable(),
          static_cast<void*>(forged + 1), static_cast<void*>(nullptr)})
        EXPECT_EQ(UtilHeapObjectFree(nullptr, pointer), UTIL_ERR_OBJECT) << pointer;
    HeapFree(GetProcessHeap(), 0, foreign);
}

} // namespace
} // namespace vxut::test
