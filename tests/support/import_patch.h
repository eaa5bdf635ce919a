// Puts a function of the test in the place of one of the system's, for the calls of this program and for as
// long as it lives:
//     extern "C" decltype(&HeapAlloc) __imp_HeapAlloc;
//     const ImportPatch patch(__imp_HeapAlloc, FailingAlloc);
#pragma once

#include <windows.h>

#include <utility>

namespace vxut::test {

template <class Function>
class ImportPatch {
public:
    ImportPatch(Function*& slot, Function* replacement) : slot_(slot), original_(Set(replacement)) {}
    ~ImportPatch() { Set(original_); }
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

private:
    Function* Set(Function* function) {
        DWORD protection = 0;
        VirtualProtect(&slot_, sizeof slot_, PAGE_READWRITE, &protection);
        Function* const old = std::exchange(slot_, function);
        VirtualProtect(&slot_, sizeof slot_, protection, &protection);
        return old;
    }

    Function*& slot_;
    Function* original_;
};

} // namespace vxut::test
