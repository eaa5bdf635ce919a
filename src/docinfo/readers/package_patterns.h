// The properties in the XML members of office packages, found by patterns.
//
// A text has one unit for each byte of the member. Its declared encoding decides how values are decoded:
// UTF-8, else the default code page. Entities of XML are left as they are: callers rely on it.
//
// Failure: what does not match is left as it is. Throw std::bad_alloc. Threads: no shared state.
#pragma once

#include "docinfo/document.h"
#include "text/string.h"

namespace vxut {

// Office Open XML: docProps/core.xml.
void ReadCoreProperties(clsDocu& document, const String& text);

// OpenDocument: meta.xml.
void ReadOpenDocumentProperties(clsDocu& document, const String& text);

} // namespace vxut
