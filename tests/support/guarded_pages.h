// A page of memory that is followed by an inaccessible one.
#pragma once

#include <windows.h>

namespace vxut::test {

class GuardedPages {
public:
    // The protection is that of the first page.
    explicit GuardedPages(DWORD protection = PAGE_READWRITE)
        : page_(static_cast<char*>(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE, PAGE_NOACCESS))) {
        VirtualAlloc(page_, kPage, MEM_COMMIT, protection);
    }
    ~GuardedPages() { VirtualFree(page_, 0, MEM_RELEASE); }
    GuardedPages(const GuardedPages&) = delete;
    GuardedPages& operator=(const GuardedPages&) = delete;

    // The last elements of the first page.
    template <class T>
    T* Last(size_t count) const {
        return reinterpret_cast<T*>(page_ + kPage) - count;
    }
    void* Untouchable() const { return page_ + kPage; }

private:
    static constexpr size_t kPage = 4096;
    char* page_;
};

} // namespace vxut::test
