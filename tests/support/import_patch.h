// Puts a function of the test in the place of one of the system's, for the calls of this program and for as
// long as it lives:
//     extern "C" decltype(&HeapAlloc) __imp_HeapAlloc;
//     const ImportPatch patch(&__imp_HeapAlloc, FailingAlloc);
#pragma once

#include <windows.h>

#include <cstring>

namespace vxut::test {

template <class Function>
class ImportPatch {
public:
    ImportPatch(void* slot, Function* replacement) : slot_(slot) {
        std::memcpy(&original_, slot, sizeof original_); // the linker may have put it to an odd place
        Set(replacement);
    }
    ~ImportPatch() { Set(original_); }
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

private:
    void Set(Function* function) {
        DWORD protection = 0;
        VirtualProtect(slot_, sizeof function, PAGE_READWRITE, &protection);
        std::memcpy(slot_, &function, sizeof function);
        VirtualProtect(slot_, sizeof function, protection, &protection);
    }

    void* slot_;
    Function* original_;
};

} // namespace vxut::test
