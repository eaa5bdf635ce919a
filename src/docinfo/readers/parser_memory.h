// Memory for a parser of the system's, whose large blocks never move.
//
// Some versions of the system's parser keep a pointer into a buffer while they enlarge it, and write through
// it afterwards. A buffer that grows in place makes that harmless.
#pragma once

#include "base/unknown.h"

#include <objbase.h>
#include <windows.h>

#include <cstddef>

namespace vxut {

// On the stack: it must outlive what was made with it. Blocks that are left are lost. For one thread.
class clsParserMemory : public clsIUnknownImpl, public IMalloc {
public:
    // No block grows beyond this.
    static constexpr size_t kMostBlockBytes = size_t{256} * 1024 * 1024;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return clsIUnknownImpl::AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return clsIUnknownImpl::Release(); }

    // Return null without memory, and then leave an old block as it is.
    void* STDMETHODCALLTYPE Alloc(SIZE_T bytes) override;
    void* STDMETHODCALLTYPE Realloc(void* block, SIZE_T bytes) override;
    void STDMETHODCALLTYPE Free(void* block) override;
    SIZE_T STDMETHODCALLTYPE GetSize(void* block) override;
    int STDMETHODCALLTYPE DidAlloc(void*) override { return -1; } // not known
    void STDMETHODCALLTYPE HeapMinimize() override {}
};

} // namespace vxut
