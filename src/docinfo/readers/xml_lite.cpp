#include "docinfo/readers/xml_lite.h"

namespace vxut {

clsAutoRelease<IXmlReader*> clsXMLLite::MakeReader(IMalloc& memory) {
    void* reader = nullptr;
    if (!CreateXmlReader.IsAvailable()) return {};
    if (FAILED(CreateXmlReader(__uuidof(IXmlReader), &reader, &memory))) return {};
    return clsAutoRelease(static_cast<IXmlReader*>(reader));
}

} // namespace vxut
