#include "wild_values.h"

#include <cstdint>
#include <cstring>

namespace vxut::test {
namespace {

constexpr size_t kPage = 4096;
// As a pointer it is in no address space, as a text it is one of letters only.
constexpr int kFill = 'A';
constexpr size_t kTerminator = 8; // bytes at the end of a page that is to hold a whole text

void* Number(uint64_t value) { return reinterpret_cast<void*>(static_cast<uintptr_t>(value)); }

void FillWithText(char* page) {
    std::memset(page, kFill, kPage);
    std::memset(page + kPage - kTerminator, 0, kTerminator);
}

} // namespace

WildMemory::WildMemory()
    : guard_(AddPages(PAGE_READWRITE)),
      readOnly_(AddPages(PAGE_READWRITE)),
      writable_(AddPages(PAGE_READWRITE)) {
    FillWithText(readOnly_);
    DWORD before = 0;
    VirtualProtect(readOnly_, kPage, PAGE_READONLY, &before);
    char* const freed =
        static_cast<char*>(VirtualAlloc(nullptr, kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    VirtualFree(freed, 0, MEM_RELEASE);
    values_ = {
        {"null", nullptr},
        {"1", Number(1)},
        {"8", Number(8)},
        {"0xFFFF", Number(0xFFFF)},
        {"0xDEADBEEF", Number(0xDEADBEEF)},
        {"0xDEADBEEFDEADBEEF", Number(0xDEADBEEFDEADBEEF)},
        {"the system's half", Number(0xFFFF800000001000)},
        {"-1", Number(UINT64_MAX)},
        {"a guard page", guard_},
        {"a read-only page", readOnly_},
        {"the end of a writable page", writable_ + kPage - 6},
        {"a page without access", writable_ + kPage},
        {"freed memory", freed},
        {"a misaligned address", writable_ + 1},
    };
}

WildMemory::~WildMemory() {
    for (char* const page : pages_) VirtualFree(page, 0, MEM_RELEASE);
}

// A page, followed by one without access.
char* WildMemory::AddPages(DWORD protection) {
    pages_.push_back(static_cast<char*>(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE, PAGE_NOACCESS)));
    VirtualAlloc(pages_.back(), kPage, MEM_COMMIT, protection);
    return pages_.back();
}

void WildMemory::Reset() const {
    std::memset(writable_, kFill, kPage);
    DWORD before = 0;
    VirtualProtect(guard_, kPage, PAGE_READWRITE | PAGE_GUARD, &before);
}

} // namespace vxut::test
