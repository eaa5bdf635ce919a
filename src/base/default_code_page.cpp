#include "base/default_code_page.h"

#include <windows.h>

#include <atomic>

namespace vxut {
namespace {

std::atomic<uint32_t> currentCodePage{0}; // 0 until first asked for

} // namespace

uint32_t DefaultCodePage() noexcept {
    const uint32_t codePage = currentCodePage.load(std::memory_order_relaxed);
    if (codePage != 0) return codePage;
    SetDefaultCodePage(GetACP());
    return GetACP();
}

void SetDefaultCodePage(uint32_t codePage) noexcept {
    currentCodePage.store(codePage & 0xFFFF, std::memory_order_relaxed);
}

} // namespace vxut
