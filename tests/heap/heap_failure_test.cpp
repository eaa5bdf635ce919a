// Heaps while memory is short.
#include "tests/support/heap_fixture.h"

#include <thread>

extern "C" decltype(&HeapAlloc) __imp_HeapAlloc;

namespace vxut::test {
namespace {

// Allocations from one heap fail, or raise an exception, for the life of the object.
struct Shortage {
    explicit Shortage(HANDLE shortHeap, DWORD raised = 0) {
        heap = shortHeap;
        exception = raised;
        Import(Alloc);
    }
    ~Shortage() { Import(real); }

    static LPVOID WINAPI Alloc(HANDLE from, DWORD flags, SIZE_T bytes) {
        if (from != heap) return real(from, flags, bytes);
        asked = bytes;
        if (exception) RaiseException(exception, 0, 0, nullptr);
        return nullptr;
    }
    static void Import(decltype(&HeapAlloc) function) {
        DWORD protection = 0;
        VirtualProtect(&__imp_HeapAlloc, sizeof function, PAGE_READWRITE, &protection);
        std::memcpy(&__imp_HeapAlloc, &function, sizeof function); // it may be misaligned
        VirtualProtect(&__imp_HeapAlloc, sizeof function, protection, &protection);
    }

    static inline const auto real = __imp_HeapAlloc;
    static inline HANDLE heap = nullptr;
    static inline DWORD exception = 0;
    static inline SIZE_T asked = 0;
};

using HeapFailureTest = HeapTest;

TEST_F(HeapFailureTest, CountsRequestsThatFail) {
    listener.isAttached = true;
    for (const auto& [heap, asked] : {std::pair{plain, 0xFFFFFFFFull + 4}, {debug, 0xFFFFFFFFull + 48}}) {
        const Shortage shortage(Node(heap).heap.Get());
        EXPECT_EQ(UtilHeapObjectAlloc(heap, -1, 0), nullptr);
        EXPECT_EQ(Shortage::asked, asked); // sizes are unsigned
    }
    const Shortage shortage(GetProcessHeap());
    EXPECT_EQ(UtilHeapCreate(job, nullptr, 0), nullptr);
    const Lines expected = {
        L"Error: clsHeapNode['JOB'/'PLAIN']::AllocObjectND(-1): Out of memory",
        L"Error: clsHeapNode['JOB'/'DEBUG']::AllocObjectD(-1)",
        L"Error: clsHeapNode['JOB'/'DEBUG']::AllocObjectD(-1): Out of memory",
        L"Error: clsModuleNode['JOB']::AddHeap('(NULL)',0x00000000): Out of Memory",
    };
    EXPECT_EQ(Reports(listener), expected);
    EXPECT_EQ(UtilHeapDelete(debug), UTIL_ERR_LEFT_BEHIND);
}

// Returns the code of the exception that reaches the host, which handles it or continues the call.
template <class Call>
[[gnu::noinline]] DWORD ExceptionOf(const Call& call, int answer) {
    DWORD code = 0;
    __try {
        call();
    } __except (code = GetExceptionCode(), answer) {
    }
    return code;
}

TEST_F(HeapFailureTest, RaisesTheSystemsExceptionWithoutTheLock) {
    constexpr auto kNoMemory = static_cast<DWORD>(STATUS_NO_MEMORY);
    const HUTILHEAP raising = UtilHeapCreate(job, L"RAISING", UTIL_HEAP_RAISE);
    for (const int answer : {EXCEPTION_EXECUTE_HANDLER, EXCEPTION_CONTINUE_EXECUTION}) {
        void* object = this;
        {
            const Shortage shortage(Node(raising).heap.Get(), kNoMemory);
            EXPECT_EQ(ExceptionOf([&] { object = UtilHeapObjectAlloc(raising, 8, 0); }, answer), kNoMemory);
        }
        EXPECT_EQ(object, answer == EXCEPTION_CONTINUE_EXECUTION ? nullptr : this);
        std::thread([&] { object = UtilHeapObjectAlloc(raising, 8, 0); }).join();
        EXPECT_NE(object, nullptr);
    }
}

} // namespace
} // namespace vxut::test
