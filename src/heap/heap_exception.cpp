#include "heap/heap_exception.h"

namespace vxut {

int clsHeapException::Keep(const EXCEPTION_POINTERS* exception) noexcept {
    code_ = exception->ExceptionRecord->ExceptionCode;
    flags_ = exception->ExceptionRecord->ExceptionFlags;
    return EXCEPTION_EXECUTE_HANDLER;
}

// Not inlined: a function has one handler, and that of a caller may be the C++ run-time's.
[[gnu::noinline]] void* AllocateShielded(HANDLE heap, DWORD flags, SIZE_T bytes,
                                         clsHeapException& exception) {
    __try {
        return HeapAlloc(heap, flags, bytes);
    } __except (exception.Keep(GetExceptionInformation())) {
        return nullptr;
    }
}

} // namespace vxut
