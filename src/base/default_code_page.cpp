#include "base/default_code_page.h"

#include <windows.h>

#include <atomic>

namespace vxut {
namespace {

constexpr uint32_t kUnset = 0xFFFFFFFF; // no code page: they have 16 bits
constinit std::atomic<uint32_t> currentCodePage{kUnset};

} // namespace

uint32_t DefaultCodePage() noexcept {
    uint32_t codePage = currentCodePage.load(std::memory_order_relaxed);
    if (codePage != kUnset) return codePage;
    // Another thread may have set one meanwhile, which then counts.
    const uint32_t system = GetACP();
    return currentCodePage.compare_exchange_strong(codePage, system, std::memory_order_relaxed) ? system
                                                                                                : codePage;
}

void SetDefaultCodePage(uint32_t codePage) noexcept {
    currentCodePage.store(codePage & 0xFFFF, std::memory_order_relaxed);
}

} // namespace vxut
