#include "base/loader_lock.h"

#include "base/system_libraries.h"

#include <windows.h>
// After windows.h, which it needs:
#include <winternl.h>

#include <cstring>

namespace vxut {
namespace {

// Where the process block holds the address of the loader's lock.
constexpr size_t kLoaderLockOffset = sizeof(void*) == 8 ? 0x110 : 0xA0;

} // namespace

bool IsLoaderFree() {
    auto& enter = NTdll().RtlTryEnterCriticalSection;
    auto& leave = NTdll().RtlLeaveCriticalSection;
    if (!enter.IsAvailable() || !leave.IsAvailable()) return false;
    CRITICAL_SECTION* lock;
    std::memcpy(static_cast<void*>(&lock),
                reinterpret_cast<const BYTE*>(NtCurrentTeb()->ProcessEnvironmentBlock) + kLoaderLockOffset,
                sizeof(void*));
    if (!enter(lock)) return false;
    leave(lock);
    return true;
}

} // namespace vxut
