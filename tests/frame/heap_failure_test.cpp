// What heaps do when the system does not give memory.
#include "tests/support/heap_fixture.h"
#include "tests/support/import_patch.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <thread>

extern "C" {
extern decltype(&HeapAlloc) __imp_HeapAlloc;
extern decltype(&HeapCreate) __imp_HeapCreate;
extern decltype(&HeapFree) __imp_HeapFree;
}

namespace vxut::test {
namespace {

using Lines = std::vector<std::wstring>;

// Stands in for the system's heap functions, for one heap; without one, for the process heap.
struct System {
    static inline decltype(&HeapAlloc) realAlloc = nullptr;
    static inline HANDLE heap = nullptr;
    static inline SIZE_T asked = 0;
    static inline DWORD flags = 0;
    static inline DWORD exception = 0;
    static inline void* block = nullptr; // what the heap gives

    static LPVOID WINAPI Alloc(HANDLE from, DWORD allocFlags, SIZE_T bytes) {
        if (from != heap) return realAlloc(from, allocFlags, bytes);
        asked = bytes;
        flags = allocFlags;
        if (exception) RaiseException(exception, 0, 0, nullptr);
        return block;
    }
    static HANDLE WINAPI CreateNone(DWORD, SIZE_T, SIZE_T) { return nullptr; }
    static BOOL WINAPI FreeNone(HANDLE, DWORD, LPVOID) { return FALSE; }
};

class HeapFailureTest : public HeapTest {
protected:
    void Serve(HUTILHEAP heap) {
        System::realAlloc = __imp_HeapAlloc;
        System::heap = heap ? Node(heap).heap.Get() : GetProcessHeap();
        System::exception = 0;
        System::block = nullptr;
    }
};

TEST_F(HeapFailureTest, CountsRequestsThatFail) {
    listener.isAttached = true;
    for (const HUTILHEAP heap : {plain, debug}) {
        Serve(heap);
        const ImportPatch patch(__imp_HeapAlloc, System::Alloc);
        EXPECT_EQ(UtilHeapObjectAlloc(heap, 10, UTIL_OBJECT_ZERO), nullptr);
        EXPECT_EQ(Node(heap).objectCount, 1);
        EXPECT_EQ(Node(heap).total, 1);
        EXPECT_EQ(Node(heap).maximum, 1);
        EXPECT_EQ(Node(heap).bytes, 0);
    }
    const Lines expected = {L"Error: clsHeapNode['JOB'/'PLAIN']::AllocObjectND(10): Out of memory",
                            L"Error: clsHeapNode['JOB'/'DEBUG']::AllocObjectD(10): Out of memory"};
    EXPECT_EQ(Reports(listener), expected);
    EXPECT_EQ(UtilHeapDelete(plain), UTIL_ERR_LEFT_BEHIND);
}

TEST_F(HeapFailureTest, TakesSizesBelowZeroAsTheyStandWithoutSign) {
    listener.isAttached = true;
    Serve(plain);
    const ImportPatch patch(__imp_HeapAlloc, System::Alloc);
    EXPECT_EQ(UtilHeapObjectAlloc(plain, -1, UTIL_OBJECT_ZERO | UTIL_OBJECT_FILL), nullptr);
    EXPECT_EQ(System::asked, 0xFFFFFFFFull + 4);
    EXPECT_EQ(System::flags, HEAP_ZERO_MEMORY);
    Serve(debug);
    EXPECT_EQ(UtilHeapObjectAlloc(debug, INT32_MIN, 0), nullptr);
    EXPECT_EQ(System::asked, 0x80000000ull + 48);
    const Lines expected = {L"Error: clsHeapNode['JOB'/'PLAIN']::AllocObjectND(-1): Out of memory",
                            L"Error: clsHeapNode['JOB'/'DEBUG']::AllocObjectD(-2147483648)",
                            L"Error: clsHeapNode['JOB'/'DEBUG']::AllocObjectD(-2147483648): Out of memory"};
    EXPECT_EQ(ReportsWithoutCallers(listener), expected);
    const size_t callers = Reports(listener).size() - expected.size();
    EXPECT_GE(callers, 1u);
    EXPECT_LE(callers, 10u);
}

// Such an object lies in memory of which only the ends are there.
TEST_F(HeapFailureTest, AnObjectOfBadSizeIsReportedAndNotFilled) {
    constexpr SIZE_T kSpan = 0x100000000 + 0x10000;
    auto* const memory = static_cast<char*>(VirtualAlloc(nullptr, kSpan, MEM_RESERVE, PAGE_NOACCESS));
    ASSERT_NE(memory, nullptr);
    VirtualAlloc(memory, 4096, MEM_COMMIT, PAGE_READWRITE);
    VirtualAlloc(memory + 0x100000000, 4096, MEM_COMMIT, PAGE_READWRITE);
    Serve(debug);
    System::block = memory;
    {
        const ImportPatch patch(__imp_HeapAlloc, System::Alloc);
        EXPECT_EQ(UtilHeapObjectAlloc(debug, -1, UTIL_OBJECT_NO_STACK), memory + 44);
    }
    EXPECT_EQ(Node(debug).bytes, -1);
    EXPECT_EQ(At<uint32_t>(memory, 44 + 0xFFFFFFFFll), 0xE5E55E5Eu);
    listener.isAttached = true;
    EXPECT_EQ(UtilHeapObjectFree(debug, memory + 44), UTIL_ERR_OBJECT); // is none of the system's
    const std::wstring error = Text(L"Error: clsHeapNode['JOB'/'DEBUG']::FreeObjectD(%#p)", memory + 44);
    const std::wstring dump = Text(L" -Object at %#p, -1(=0xffffffff) Bytes", memory + 44);
    const Lines expected = {error, L" bad size -1", dump, error, L" error freeing object", dump};
    EXPECT_EQ(Reports(listener), expected);
    VirtualFree(memory, 0, MEM_RELEASE);
}

TEST_F(HeapFailureTest, TellsWhenTheSystemDoesNotFree) {
    listener.isAttached = true;
    void* const plainObject = UtilHeapObjectAlloc(plain, 8, 0);
    void* const debugObject = UtilHeapObjectAlloc(debug, 8, UTIL_OBJECT_NO_STACK);
    const ImportPatch patch(__imp_HeapFree, System::FreeNone);
    EXPECT_EQ(UtilHeapObjectFree(plain, plainObject), UTIL_ERR_OBJECT);
    EXPECT_EQ(UtilHeapObjectFree(debug, debugObject), UTIL_ERR_OBJECT);
    const Lines expected = {Text(L"Error: clsHeapNode['JOB'/'PLAIN']::FreeObjectND(%#p)", plainObject),
                            L" error freeing object",
                            Text(L"Error: clsHeapNode['JOB'/'DEBUG']::FreeObjectD(%#p)", debugObject),
                            L" error freeing object",
                            Text(L" -Object at %#p, 8(=0x00000008) Bytes", debugObject),
                            L"   cc cc cc cc cc cc cc cc  ........"};
    EXPECT_EQ(Reports(listener), expected);
    EXPECT_EQ(Node(plain).objectCount + Node(debug).objectCount, 2);
}

TEST_F(HeapFailureTest, MakesNoHeapWithoutRecordOrMemory) {
    listener.isAttached = true;
    Serve(nullptr);
    {
        const ImportPatch patch(__imp_HeapAlloc, System::Alloc);
        EXPECT_EQ(UtilHeapCreate(job, L"NONE", 0), nullptr);
        EXPECT_EQ(UtilHeapObjectAlloc(nullptr, 8, 0), nullptr);
    }
    const ImportPatch patch(__imp_HeapCreate, System::CreateNone);
    EXPECT_EQ(UtilHeapCreate(job, nullptr, 0), nullptr);
    const Lines expected = {L"Error: clsModuleNode['JOB']::AddHeap('NONE',0x00000000): Out of Memory",
                            L"Error: clsModuleNode['JOB']::AddHeap('(NULL)',0x00000000): Out of Memory"};
    EXPECT_EQ(Reports(listener), expected);
    EXPECT_EQ(UtilHeapObjectSize(plain, UtilHeapObjectAlloc(plain, 8, 0)), 8); // the others are as they were
}

// A host that handles the system's exception, or lets the call go on.
struct Host {
    DWORD code = 0;
    void* object = nullptr;
    bool wentOn = false;
};
[[gnu::noinline]] void* Alloc(HUTILHEAP heap, uint32_t flags) { return UtilHeapObjectAlloc(heap, 64, flags); }
int Note(Host& host, DWORD code, int answer) {
    host.code = code;
    return answer;
}
[[gnu::noinline]] void AllocHandled(Host& host, HUTILHEAP heap, uint32_t flags, int answer) {
    __try {
        host.object = Alloc(heap, flags);
        host.wentOn = true;
    } __except (Note(host, GetExceptionCode(), answer)) {
    }
}

bool AnotherThreadCanAllocate(HUTILHEAP heap) {
    void* object = nullptr;
    std::thread([&] { object = UtilHeapObjectAlloc(heap, 8, 0); }).join();
    return object != nullptr;
}

TEST_F(HeapFailureTest, RaisesTheSystemsExceptionWithoutTheLock) {
    const HUTILJOB traced = UtilJobOpen(L"T", UTIL_JOB_TRACE);
    const HUTILHEAP raising = UtilHeapCreate(traced, L"RAISING", UTIL_HEAP_RAISE);
    listener.isAttached = true;
    for (const uint32_t form : {UTIL_OBJECT_PLAIN, UTIL_OBJECT_DEBUG}) {
        for (const int answer : {EXCEPTION_EXECUTE_HANDLER, EXCEPTION_CONTINUE_EXECUTION}) {
            Serve(raising);
            System::exception = STATUS_NO_MEMORY;
            const int32_t total = Node(raising).total;
            Host host;
            {
                const ImportPatch patch(__imp_HeapAlloc, System::Alloc);
                AllocHandled(host, raising, form, answer);
            }
            EXPECT_EQ(host.code, static_cast<DWORD>(STATUS_NO_MEMORY));
            EXPECT_EQ(host.wentOn, answer == EXCEPTION_CONTINUE_EXECUTION);
            EXPECT_EQ(host.object, nullptr);
            EXPECT_EQ(System::flags & HEAP_GENERATE_EXCEPTIONS, form == UTIL_OBJECT_PLAIN ? 4u : 0u);
            EXPECT_EQ(Node(raising).total, total + 1);
            EXPECT_TRUE(AnotherThreadCanAllocate(raising));
            EXPECT_TRUE(listener.Last().find(L":Error: clsHeapNode['T'/'RAISING']::AllocObject") !=
                        std::wstring::npos);
        }
    }
    UtilJobClose(traced);
}

TEST_F(HeapFailureTest, RaisesNothingByItself) {
    const HUTILHEAP raising = UtilHeapCreate(job, L"RAISING", UTIL_HEAP_RAISE);
    Host host;
    AllocHandled(host, raising, 0, EXCEPTION_EXECUTE_HANDLER);
    EXPECT_EQ(host.code, 0u);
    EXPECT_EQ(UtilHeapObjectFree(raising, host.object), UTIL_OK);
}

} // namespace
} // namespace vxut::test
