#include "frame/shielded_read.h"

#include <windows.h>

#include <cstring>

namespace vxut {
namespace {

// A call of its own: faults are caught in what a guarded block calls, not in its own instructions.
[[gnu::noinline]] void Copy(void* target, const void* source, size_t bytes) {
    std::memcpy(target, source, bytes);
}

} // namespace

// Not inlined: a caller has the C++ run-time's handler instead of this one.
[[gnu::noinline]] bool ReadShielded(void* target, const void* source, size_t bytes) {
    __try {
        Copy(target, source, bytes);
        return true;
    } __except (EXCEPTION_EXECUTE_HANDLER) {
        return false;
    }
}

} // namespace vxut
