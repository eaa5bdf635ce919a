// What heaps do when the system does not give memory, or does not take it back.
#include "tests/support/heap_fixture.h"
#include "tests/support/import_patch.h"

#include <windows.h>

#include <thread>

extern "C" {
extern decltype(&HeapAlloc) __imp_HeapAlloc;
extern decltype(&HeapCreate) __imp_HeapCreate;
extern decltype(&HeapFree) __imp_HeapFree;
}

namespace vxut::test {
namespace {

// The system's HeapAlloc, but for one heap.
struct Alloc {
    static inline const auto real = __imp_HeapAlloc;
    static inline HANDLE heap = nullptr;
    static inline void* block = nullptr; // what that heap gives
    static inline DWORD exception = 0;   // or raises
    static inline SIZE_T asked = 0;
    static inline DWORD flags = 0;

    static LPVOID WINAPI Changed(HANDLE from, DWORD allocFlags, SIZE_T bytes) {
        if (from != heap) return real(from, allocFlags, bytes);
        asked = bytes;
        flags = allocFlags;
        if (exception) RaiseException(exception, 0, 0, nullptr);
        return block;
    }
};

class HeapFailureTest : public HeapTest {
protected:
    // Calls with the change in place; without a heap it is the process heap that is changed.
    template <class Call>
    auto Changed(HUTILHEAP heap, void* block, const Call& call) {
        Alloc::heap = heap ? Node(heap).heap.Get() : GetProcessHeap();
        Alloc::block = block;
        const ImportPatch patch(&__imp_HeapAlloc, Alloc::Changed);
        return call();
    }
    void* AllocChanged(HUTILHEAP heap, int32_t size, uint32_t flags, void* block = nullptr) {
        return Changed(heap, block, [=] { return UtilHeapObjectAlloc(heap, size, flags); });
    }
};

TEST_F(HeapFailureTest, CountsRequestsThatFail) {
    listener.isAttached = true;
    EXPECT_EQ(AllocChanged(plain, -1, UTIL_OBJECT_ZERO), nullptr);
    EXPECT_EQ(Alloc::asked, 0xFFFFFFFFull + 4); // a size has no sign
    EXPECT_EQ(Alloc::flags, static_cast<DWORD>(HEAP_ZERO_MEMORY));
    EXPECT_EQ(AllocChanged(debug, INT32_MIN, 0), nullptr);
    EXPECT_EQ(Alloc::asked, 0x80000000ull + 48);
    EXPECT_EQ(AllocChanged(nullptr, 8, 0), nullptr);
    const Lines expected = {
        L"Error: clsHeapNode['JOB'/'PLAIN']::AllocObjectND(-1): Out of memory",
        L"Error: clsHeapNode['JOB'/'DEBUG']::AllocObjectD(-2147483648)",
        L"Error: clsHeapNode['JOB'/'DEBUG']::AllocObjectD(-2147483648): Out of memory",
    };
    EXPECT_EQ(Reports(listener), expected);
    const size_t callers = listener.Lines().size() - expected.size();
    EXPECT_TRUE(callers >= 1 && callers <= 10) << callers;
    EXPECT_EQ(Node(debug).bytes, 0);
    EXPECT_EQ(Node(debug).maximum + Node(debug).total, 2);
    EXPECT_EQ(UtilHeapDelete(debug), UTIL_ERR_LEFT_BEHIND);
}

// Of the memory of such an object only the ends are there.
TEST_F(HeapFailureTest, ReportsABadSizeAndDoesNotFillIt) {
    constexpr SIZE_T kEnd = 0x100000000;
    auto* const memory = static_cast<char*>(VirtualAlloc(nullptr, kEnd + 4096, MEM_RESERVE, PAGE_NOACCESS));
    for (const SIZE_T page : {SIZE_T{0}, kEnd}) VirtualAlloc(memory + page, 4096, MEM_COMMIT, PAGE_READWRITE);
    void* const object = AllocChanged(debug, -1, UTIL_OBJECT_NO_STACK, memory);
    ASSERT_EQ(object, memory + 44);
    EXPECT_EQ(Node(debug).bytes, -1);
    EXPECT_EQ(At<uint32_t>(object, 0xFFFFFFFFll), 0xE5E55E5Eu);
    listener.isAttached = true;
    EXPECT_EQ(UtilHeapObjectFree(debug, object), UTIL_ERR_OBJECT); // is none of the system's
    const std::wstring error = Text(L"Error: clsHeapNode['JOB'/'DEBUG']::FreeObjectD(%#p)", object);
    const std::wstring dump = Text(L" -Object at %#p, -1(=0xffffffff) Bytes", object);
    EXPECT_EQ(Reports(listener),
              (Lines{error, L" bad size -1", dump, error, L" error freeing object", dump}));
    VirtualFree(memory, 0, MEM_RELEASE);
}

BOOL WINAPI FreeNothing(HANDLE, DWORD, LPVOID) { return FALSE; }

TEST_F(HeapFailureTest, TellsWhenTheSystemDoesNotFree) {
    void* const objects[] = {UtilHeapObjectAlloc(plain, 8, 0),
                             UtilHeapObjectAlloc(plain, 0, UTIL_OBJECT_DEBUG)};
    for (const bool listens : {false, true}) {
        listener.isAttached = listens;
        const ImportPatch patch(&__imp_HeapFree, FreeNothing);
        for (void* const object : objects) {
            EXPECT_EQ(UtilHeapObjectFree(plain, object), UTIL_ERR_OBJECT);
            EXPECT_EQ(listener.Heard(Text(L"(%#p)\n", object).c_str()), listens);
        }
    }
    EXPECT_TRUE(listener.Heard(L": error freeing object\n"));
    for (void* const object : objects)
        EXPECT_EQ(UtilHeapObjectFree(plain, object), UTIL_OK); // all is as it was
}

HANDLE WINAPI CreateNothing(DWORD, SIZE_T, SIZE_T) { return nullptr; }

TEST_F(HeapFailureTest, MakesNoHeapWithoutRecordOrMemory) {
    listener.isAttached = true;
    EXPECT_EQ(Changed(nullptr, nullptr, [=, this] { return UtilHeapCreate(job, L"NONE", 0); }), nullptr);
    const ImportPatch patch(&__imp_HeapCreate, CreateNothing);
    EXPECT_EQ(UtilHeapCreate(job, nullptr, 0), nullptr);
    EXPECT_EQ(Reports(listener),
              (Lines{L"Error: clsModuleNode['JOB']::AddHeap('NONE',0x00000000): Out of Memory",
                     L"Error: clsModuleNode['JOB']::AddHeap('(NULL)',0x00000000): Out of Memory"}));
}

// A host that handles the exception, or lets the call go on.
struct Host {
    DWORD code = 0;
    bool wentOn = false;

    int Answer(DWORD exception, int answer) {
        code = exception;
        return answer;
    }
    template <class Call>
    [[gnu::noinline]] void Run(const Call& call, int answer) {
        __try {
            call();
            wentOn = true;
        } __except (Answer(GetExceptionCode(), answer)) {
        }
    }
};

TEST_F(HeapFailureTest, RaisesTheSystemsExceptionWithoutTheLock) {
    const HUTILHEAP raising = UtilHeapCreate(job, L"RAISING", UTIL_HEAP_RAISE);
    for (const uint32_t form : {UTIL_OBJECT_PLAIN, UTIL_OBJECT_DEBUG}) {
        for (const int answer : {EXCEPTION_EXECUTE_HANDLER, EXCEPTION_CONTINUE_EXECUTION}) {
            Alloc::exception = static_cast<DWORD>(STATUS_NO_MEMORY);
            Host host;
            void* object = this;
            host.Run([&] { object = AllocChanged(raising, 64, form); }, answer);
            Alloc::heap = nullptr;
            EXPECT_EQ(host.code, static_cast<DWORD>(STATUS_NO_MEMORY));
            EXPECT_EQ(host.wentOn, answer == EXCEPTION_CONTINUE_EXECUTION);
            EXPECT_EQ(object, host.wentOn ? nullptr : this);
            std::thread([&] { object = UtilHeapObjectAlloc(raising, 8, 0); }).join();
            EXPECT_NE(object, nullptr);
        }
    }
    EXPECT_EQ(Node(raising).total, 8);
}

} // namespace
} // namespace vxut::test
