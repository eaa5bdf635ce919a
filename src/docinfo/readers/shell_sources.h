// Properties from objects of the system: the filter of a search index, and a property store of the shell.
//
// Threads: as the objects permit. Throw std::bad_alloc.
#pragma once

#include "base/late_load.h"
#include "docinfo/document.h"
#include "text/string.h"

#include <objbase.h>
#include <windows.h>
// After windows.h, which they need:
#include <filter.h>
#include <propidl.h>
#include <propsys.h>

namespace vxut {

// Reads what a filter knows about the file. Returns 0 if that includes a subject or an author, else -1; what
// was found stays.
int ReadFilter(clsDocu& document, const String& path, IFilter& filter);

// The conversion that a property store's values need.
class clsPropSys : public CLateLoadBase {
public:
    clsPropSys() : CLateLoadBase(L"propsys") {}

    clsLateFunction<HRESULT WINAPI(const PROPVARIANT*, VARIANT*)> PropVariantToVariant{
        *this, "PropVariantToVariant", 8};
};

enum class StoreResult {
    kFound,   // a text
    kNothing, // no text
    kRefused  // a value of a type that is not taken
};

// Reads a property store. Precondition: the conversion is available.
StoreResult ReadStore(clsDocu& document, IPropertyStore& store, clsPropSys& conversion);

} // namespace vxut
