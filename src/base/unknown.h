// Reference counting for objects that cross a COM-style boundary.
#pragma once

#include "base/owners.h"

#include <objbase.h>
#include <windows.h>

#include <atomic>
#include <cstdint>
#include <utility>

namespace vxut {

// The three operations of IUnknown under another name, for objects that also implement an interface with its
// own.
struct INonDelegatingUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

protected:
    ~INonDelegatingUnknown() = default;
};

// Counts the references of an object. The creator holds the first one. The last Release() destroys an object
// that MakeCounted() created. An object on the stack or in another owner only counts, and must outlive the
// references that it has handed out. AddRef() and Release() may be called on any thread.
class clsIUnknownImpl : public INonDelegatingUnknown {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    virtual ~clsIUnknownImpl() = default;
    clsIUnknownImpl(const clsIUnknownImpl&) = delete;
    clsIUnknownImpl& operator=(const clsIUnknownImpl&) = delete;

protected:
    clsIUnknownImpl() = default;

private:
    template <class T, class... Arguments>
    friend clsAutoRelease<T*> MakeCounted(Arguments&&... arguments);

    std::atomic<ULONG> references_{1};
    bool livesByReferences_ = false;
};

// Creates an object that its last Release() destroys, and returns the first reference. Throws std::bad_alloc
// and what the constructor throws.
template <class T, class... Arguments>
clsAutoRelease<T*> MakeCounted(Arguments&&... arguments) {
    auto object = std::make_unique<T>(std::forward<Arguments>(arguments)...);
    static_cast<clsIUnknownImpl&>(*object).livesByReferences_ = true;
    return clsAutoRelease<T*>(object.release());
}

} // namespace vxut
