// The system's pull parser for XML.
#pragma once

#include "base/late_load.h"
#include "base/owners.h"

#include <objbase.h>
#include <windows.h>
// After objbase.h, which it needs:
#include <xmllite.h>

namespace vxut {

// The library stays loaded: loading it takes longer than reading most documents.
class clsXMLLite : public CLateLoadBase {
public:
    clsXMLLite() : CLateLoadBase(L"XmlLite") { SetFreeAtEnd(false); }

    // Returns null if the system has none. The memory must outlive the parser.
    clsAutoRelease<IXmlReader*> MakeReader(IMalloc& memory);

private:
    clsLateFunction<decltype(::CreateXmlReader)> CreateXmlReader{*this, "CreateXmlReader", 12};
};

} // namespace vxut
