// Memory that ends at a page that must not be accessed.
#pragma once

#include <windows.h>

namespace vxut::test {

class GuardedPages {
public:
    // The usable pages have a protection of PAGE_READWRITE or the like, and hold at least so many bytes.
    explicit GuardedPages(DWORD protection = PAGE_READWRITE, size_t bytes = kPage)
        : usable_((bytes + kPage - 1) / kPage * kPage),
          pages_(static_cast<char*>(VirtualAlloc(nullptr, usable_ + kPage, MEM_RESERVE, PAGE_NOACCESS))) {
        VirtualAlloc(pages_, usable_, MEM_COMMIT, protection);
    }
    ~GuardedPages() { VirtualFree(pages_, 0, MEM_RELEASE); }
    GuardedPages(const GuardedPages&) = delete;
    GuardedPages& operator=(const GuardedPages&) = delete;

    // The last elements of the usable pages.
    template <class T>
    T* Last(size_t count) const {
        return reinterpret_cast<T*>(pages_ + usable_) - count;
    }
    void* Untouchable() const { return pages_ + usable_; }

private:
    static constexpr size_t kPage = 4096;
    size_t usable_;
    char* pages_;
};

} // namespace vxut::test
