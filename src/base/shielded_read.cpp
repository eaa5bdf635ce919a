#include "base/shielded_read.h"

#include <windows.h>

#include <cstring>

namespace vxut {
namespace {

// A call of its own: faults are caught in what a guarded block calls, not in its own instructions.
[[gnu::noinline]] void Copy(void* target, const void* source, size_t bytes) {
    std::memcpy(target, source, bytes);
}

[[gnu::noinline]] uint32_t Word(const void* source) {
    uint32_t word;
    std::memcpy(&word, source, sizeof word);
    return word;
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

template <>
[[gnu::noinline]] bool ReadShielded(uint32_t& target, const void* source) {
    __try {
        target = Word(source);
        return true;
    } __except (EXCEPTION_EXECUTE_HANDLER) {
        return false;
    }
}

} // namespace vxut
