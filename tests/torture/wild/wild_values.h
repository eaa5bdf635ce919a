// Pointers that lead to memory of every kind that a host can pass by mistake.
#pragma once

#include <windows.h>

#include <vector>

namespace vxut::test {

struct WildValue {
    const char* name;
    void* pointer;
};

// Reserves the memory that the values point to for the life of the object.
class WildMemory {
public:
    WildMemory();
    ~WildMemory();
    WildMemory(const WildMemory&) = delete;
    WildMemory& operator=(const WildMemory&) = delete;

    const std::vector<WildValue>& Values() const { return values_; }

    // Restores what calls may have changed: contents, and the guard, which the first access removes.
    void Reset() const;

private:
    char* AddPages(DWORD protection);

    std::vector<char*> pages_;
    std::vector<WildValue> values_;
    char* guard_ = nullptr;
    char* readOnly_ = nullptr;
    char* writable_ = nullptr;
};

} // namespace vxut::test
