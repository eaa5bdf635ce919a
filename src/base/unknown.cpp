#include "base/unknown.h"

namespace vxut {

HRESULT clsIUnknownImpl::QueryInterface(REFIID id, void** object) {
    if (!object) return E_POINTER;
    const bool known = IsEqualIID(id, IID_IUnknown);
    *object = known ? static_cast<INonDelegatingUnknown*>(this) : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG clsIUnknownImpl::AddRef() { return references_.fetch_add(1, std::memory_order_relaxed) + 1; }

ULONG clsIUnknownImpl::Release() {
    const ULONG left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0 && livesByReferences_)
        delete this; // NOLINT(cppcoreguidelines-owning-memory): the object owns itself
    return left;
}

} // namespace vxut
